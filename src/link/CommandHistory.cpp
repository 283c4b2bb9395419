#include "link/CommandHistory.h"

namespace drx9 {

void CommandHistory::add(const std::string& command) {
    if (!command.empty() && (commands_.empty() || commands_.back() != command)) {
        commands_.push_back(command);
    }
    if (commands_.size() > kMost) {
        commands_.erase(commands_.begin());
    }
    at_ = commands_.size();
    typed_.clear();
}

std::string CommandHistory::older(const std::string& line) {
    if (at_ == 0) {
        return line;
    }
    if (at_ == commands_.size()) {
        typed_ = line;
    }
    return commands_[--at_];
}

std::string CommandHistory::newer(const std::string& line) {
    if (at_ == commands_.size()) {
        return line;
    }
    ++at_;
    return at_ == commands_.size() ? typed_ : commands_[at_];
}

} // namespace drx9
