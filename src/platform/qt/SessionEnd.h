#pragma once

#include <QObject>

#include <functional>

class QSocketNotifier;

namespace drx9 {

/// Tells when the program has to end without being asked: the desktop's session ends, or the system sends
/// SIGTERM, SIGINT or SIGHUP. Make one, after the QApplication. The action runs from the event loop, once.
///
/// Where the window system goes first, Qt ends the process by exit(3) and no event runs any more: then
/// `lost` runs inside exit(3). It must not throw and must touch no window.
class SessionEnd : public QObject {
public:
    SessionEnd(std::function<void()> ended, std::function<void()> lost);
    ~SessionEnd() override;
    SessionEnd(const SessionEnd&) = delete;
    SessionEnd& operator=(const SessionEnd&) = delete;

private:
    void listenToSignals();
    static void atExit();
    void come();

    std::function<void()> ended_;
    std::function<void()> lost_;
    bool came_ = false;
};

} // namespace drx9
