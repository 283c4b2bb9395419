#pragma once

#include "platform/FilePort.h"

namespace drx9 {

/// The file port of the operating system the program was built for (POSIX or Win32, no Qt).
std::unique_ptr<FilePort> makeOsFilePort();

} // namespace drx9
