#pragma once

namespace drx9 {

/// What the monitor needs of the main window. The window pulls what it shows from the monitor after
/// changed().
class MonitorWindow {
public:
    virtual ~MonitorWindow() = default;
    /// Shows the window and lets it be painted: pumps events.
    virtual void showWindow() = 0;
    virtual void setHourglass(bool on) = 0;
    /// Something that the window shows may have changed. Called often: the window sets only what differs.
    virtual void changed() = 0;
    virtual void closeOtherWindows() = 0;
};

} // namespace drx9
