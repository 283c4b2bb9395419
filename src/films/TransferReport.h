#pragma once

#include "films/FilmLibrary.h"

#include <string>
#include <vector>

namespace drx9 {

/// What is to be said of a transfer when it is over: how many films went through, and which did not and why.
class TransferReport {
public:
    /// `deed` is what was to be done: "read", "sent".
    explicit TransferReport(std::string deed)
        : deed_(std::move(deed)) {}

    void expect(int films) { expected_ = films; }
    void done(int films) { done_ += films; }
    /// What was done so far is gone.
    void undo() { done_ = 0; }
    /// A film to be named under a heading such as "Not sent".
    void name(const std::string& heading, const std::string& film);
    /// Something that went wrong as a whole; what was said first stays.
    void fail(const std::string& reason);
    [[nodiscard]] LibraryNotice notice() const;

private:
    struct Named {
        std::string heading;
        std::vector<std::string> films;
    };

    std::string deed_;
    int expected_ = 0;
    int done_ = 0;
    std::vector<Named> named_;
    std::string failure_;
};

} // namespace drx9
