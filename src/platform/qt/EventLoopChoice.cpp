#include "platform/qt/EventLoopChoice.h"

#include <QByteArray>

#include <algorithm>
#include <array>

namespace drx9 {

namespace {

constexpr const char* kVariable = "QT_NO_GLIB";

/// As Qt names the desktops for which it loads its GTK theme.
bool gtkDrawsDialogs() {
    const QByteArray desktop = qgetenv("QT_QPA_PLATFORMTHEME") + ':' + qgetenv("XDG_CURRENT_DESKTOP") + ':' +
                               qgetenv("XDG_SESSION_DESKTOP") + ':' + qgetenv("DESKTOP_SESSION") + ':' +
                               qgetenv("GNOME_DESKTOP_SESSION_ID");
    static constexpr std::array<const char*, 8> kNames = {"GTK",  "GNOME", "CINNAMON", "UNITY",
                                                          "MATE", "XFCE",  "LXDE",     "UBUNTU"};
    return std::any_of(kNames.begin(), kNames.end(),
                       [&](const char* name) { return desktop.toUpper().contains(name); });
}

} // namespace

EventLoopChoice::EventLoopChoice() {
    ours_ = !qEnvironmentVariableIsSet(kVariable) && !gtkDrawsDialogs();
    if (ours_) {
        qputenv(kVariable, "1");
    }
}

EventLoopChoice::~EventLoopChoice() {
    if (ours_) {
        qunsetenv(kVariable);
    }
}

} // namespace drx9
