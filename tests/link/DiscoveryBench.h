#pragma once

#include "fakes/MemoryFilePort.h"
#include "link/Discovery.h"
#include "link/LinkBench.h"

namespace drx9 {

/// And what finds the instrument over the bench's link.
struct DiscoveryBench : LinkBench {
    MemoryFilePort files;
    NumberLocale locale;
    CErrHandler errors{CErrHandlerParts{files, boxes, clock, locale, {}, {}}};
    Discovery discovery{link, settings, transports, pump, clock, actions, boxes, errors};
};

} // namespace drx9
