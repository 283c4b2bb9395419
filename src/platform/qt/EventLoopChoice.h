#pragma once

namespace drx9 {

/// Lives while the QApplication is made: takes Qt's own event loop where nothing needs GLib's, which costs
/// about twice as much a poll (each serial packet registers and drops a notifier, and GLib wakes itself up
/// for both). GLib's stays under desktops whose file and colour dialogs GTK draws (GNOME, Cinnamon, MATE,
/// Xfce, LXDE, Unity): those would not come alive without it. QT_NO_GLIB set by the user is left as it is;
/// ours is gone with this object, so that programs which we start do not inherit it.
class EventLoopChoice {
public:
    EventLoopChoice();
    ~EventLoopChoice();
    EventLoopChoice(const EventLoopChoice&) = delete;
    EventLoopChoice& operator=(const EventLoopChoice&) = delete;

private:
    bool ours_ = false;
};

} // namespace drx9
