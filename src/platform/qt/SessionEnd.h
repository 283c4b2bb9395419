#pragma once

#include <QObject>

#include <functional>

class QSocketNotifier;

namespace drx9 {

/// Tells when the program has to end without being asked: the desktop's session ends, or the system sends
/// SIGTERM, SIGINT or SIGHUP. Make one, after the QApplication. The action runs from the event loop, once.
class SessionEnd : public QObject {
public:
    explicit SessionEnd(std::function<void()> ended);
    ~SessionEnd() override;
    SessionEnd(const SessionEnd&) = delete;
    SessionEnd& operator=(const SessionEnd&) = delete;

private:
    void listenToSignals();
    void come();

    std::function<void()> ended_;
    bool came_ = false;
};

} // namespace drx9
