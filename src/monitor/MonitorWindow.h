#pragma once

namespace drx9 {

/// What the monitor needs of the main window. The window pulls what it shows after changed().
class MonitorWindow {
public:
    virtual ~MonitorWindow() = default;
    /// Shows the window and lets it be painted: pumps events.
    virtual void showWindow() = 0;
    virtual void setHourglass(bool on) = 0;
    /// Something that the window shows may have changed. Called several times a tick: the window sets only
    /// what differs, which takes microseconds where nothing does (program_bench).
    virtual void changed() = 0;
    virtual void closeOtherWindows() = 0;
};

/// The place of the main window, which is made after all that knows it. Does nothing while it is empty.
class WindowSlot : public MonitorWindow {
public:
    void set(MonitorWindow& window) { window_ = &window; }
    /// Before the window goes.
    void clear() { window_ = nullptr; }

    void showWindow() override;
    void setHourglass(bool on) override;
    void changed() override;
    void closeOtherWindows() override;

private:
    MonitorWindow* window_ = nullptr;
};

} // namespace drx9
