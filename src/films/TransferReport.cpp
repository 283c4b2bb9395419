#include "films/TransferReport.h"

#include <algorithm>

namespace drx9 {

namespace {
constexpr std::size_t kMostNamed = 4; ///< films under one heading

std::string listed(const std::vector<std::string>& films) {
    std::string text;
    for (std::size_t i = 0; i < std::min(films.size(), kMostNamed); ++i) {
        text += (i == 0 ? "" : ", ") + films[i];
    }
    const std::size_t more = films.size() - std::min(films.size(), kMostNamed);
    return more == 0 ? text : text + " and " + std::to_string(more) + " more";
}
} // namespace

void TransferReport::name(const std::string& heading, const std::string& film) {
    auto there = std::find_if(named_.begin(), named_.end(),
                              [&](const Named& entry) { return entry.heading == heading; });
    if (there == named_.end()) {
        there = named_.insert(named_.end(), {heading, {}});
    }
    if (std::find(there->films.begin(), there->films.end(), film) == there->films.end()) {
        there->films.push_back(film);
    }
}

void TransferReport::fail(const std::string& reason) {
    failure_ = failure_.empty() ? reason : failure_;
}

LibraryNotice TransferReport::notice() const {
    std::string text = failure_.empty() ? "" : failure_ + ". ";
    text += std::to_string(done_) + (done_ == expected_ ? "" : " of " + std::to_string(expected_)) +
            (expected_ == 1 ? " film " : " films ") + deed_;
    for (const Named& entry : named_) {
        text += ". " + entry.heading + ": " + listed(entry.films);
    }
    return {text, failure_.empty() && named_.empty() ? Tone::Plain : Tone::Alarm};
}

} // namespace drx9
