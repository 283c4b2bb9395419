#pragma once

#include "platform/Clock.h"

#include <cstdint>
#include <string>

namespace drx9 {

/// What became of the operator's requests that the instrument did not take, in words. Each request is carried
/// out once and never again by itself, so that the operator must be told.
class RequestReport {
public:
    explicit RequestReport(const Clock& clock)
        : clock_(clock) {}

    /// The requests of a tick begin: the first of them takes away what was said of earlier ones.
    void beginRound() { fresh_ = true; }
    /// A request has been carried out; `status` is that of its exchanges that failed first, 0 when all were
    /// accepted. `inStep` is false when an answer came late or unasked: then nobody can tell which was the
    /// request's own.
    void ended(const char* request, std::uint16_t status, bool inStep);
    /// A request that could not wait any longer was dropped.
    void notSent(const char* request);
    void clear();

    /// "Zero: no reply", until the next request or run; empty when all went well.
    [[nodiscard]] const std::string& text() const { return text_; }
    /// "Zero: no reply. Press again if needed." for the first seconds, then empty.
    [[nodiscard]] std::string notice() const;

private:
    void add(const std::string& text, const char* advice);

    const Clock& clock_;
    bool fresh_ = false;
    std::string text_;
    std::string advice_;
    double saidAt_ = -1; ///< monotonic
};

} // namespace drx9
