#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace drx9 {

/// The commands that were sent, walked with the arrow keys. The line that was being typed comes after the
/// newest one and comes back.
class CommandHistory {
public:
    static constexpr std::size_t kMost = 100;

    /// Keeps a sent command as the newest one; an empty one and the newest once more are not kept twice. Ends
    /// the walk.
    void add(const std::string& command);
    /// The line to show instead of `line`: the next older one, or `line` where there is none.
    std::string older(const std::string& line);
    /// The next newer one, the line that was being typed, or `line` where nothing is newer.
    std::string newer(const std::string& line);

private:
    std::vector<std::string> commands_;
    std::size_t at_ = 0; ///< what is shown; commands_.size() is the line that is being typed
    std::string typed_;
};

} // namespace drx9
