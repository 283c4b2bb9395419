#pragma once

#include <QLockFile>

#include <string>

namespace drx9 {

/// Holds a data folder for one running program, by the file "Monitor.lock" in it. A lock left behind by a
/// program that has crashed counts for nothing.
class SingleInstance {
public:
    explicit SingleInstance(const std::string& dataFolder);

    /// False when another program that runs now holds the folder. A folder in which no lock can be made
    /// counts as free: it would never be.
    [[nodiscard]] bool isFirst() const { return first_; }

private:
    QLockFile lock_;
    bool first_;
};

} // namespace drx9
