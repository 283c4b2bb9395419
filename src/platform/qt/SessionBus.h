#pragma once

#include <QFileInfo>
#include <QString>

namespace drx9 {

/// False where asking for the session bus would start one.
inline bool sessionBusStands() {
    return qEnvironmentVariableIsSet("DBUS_SESSION_BUS_ADDRESS") ||
           QFileInfo::exists(qEnvironmentVariable("XDG_RUNTIME_DIR") + QStringLiteral("/bus"));
}

} // namespace drx9
