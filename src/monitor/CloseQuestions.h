#pragma once

#include "link/MonitorAccess.h"

#include <exception>
#include <functional>
#include <list>
#include <memory>

namespace drx9 {

/// The round before closing: each open window asks its question or ends its transfer, newest window first.
class CloseQuestions : public CloseRound {
public:
    [[nodiscard]] std::unique_ptr<Tenure> beforeClose(Question question) override;
    [[nodiscard]] bool sessionEnds() const override { return sessionEnds_; }

    /// The desktop's session ends, or the system asked the program to: no question is asked from now on.
    void setSessionEnds() { sessionEnds_ = true; }
    /// Asks them all; what one throws goes to `fault`, and the next is asked. Pumps events where a box is
    /// shown.
    void askAll(const std::function<void(const std::exception&)>& fault);

private:
    class Place;
    using Round = std::list<std::shared_ptr<Question>>;

    Round round_;
    bool sessionEnds_ = false;
};

} // namespace drx9
