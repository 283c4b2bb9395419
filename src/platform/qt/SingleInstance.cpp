#include "platform/qt/SingleInstance.h"

namespace drx9 {

SingleInstance::SingleInstance(const std::string& dataFolder)
    : lock_(QString::fromStdString(dataFolder + "/Monitor.lock"))
    , first_(true) {
    // A run can last for days: age alone never makes the lock stale, only the end of its process.
    lock_.setStaleLockTime(0);
    if (!lock_.tryLock(0)) {
        first_ = lock_.error() != QLockFile::LockFailedError;
    }
}

} // namespace drx9
