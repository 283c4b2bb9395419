#pragma once

#include "platform/Desktop.h"

#include <memory>

namespace drx9 {

/// Asks the desktop not to suspend or lock: over D-Bus the screen saver's service, else the desktop portal;
/// on Windows the execution state. Asks without waiting; without a desktop that answers it has no effect.
class QtSleepInhibitor : public SleepInhibitor {
public:
    QtSleepInhibitor();
    ~QtSleepInhibitor() override;

    void hold(const std::string& reason) override; ///< a second hold() has no effect until release()
    void release() override;

private:
    class Backend;
    std::unique_ptr<Backend> backend_;
    bool held_ = false;
};

} // namespace drx9
