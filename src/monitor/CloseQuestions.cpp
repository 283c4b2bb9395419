#include "monitor/CloseQuestions.h"

#include <utility>
#include <vector>

namespace drx9 {

/// A window's place in the round.
class CloseQuestions::Place : public Tenure {
public:
    Place(Round& round, Question question)
        : round_(round)
        , mine_(round.insert(round.begin(), std::make_shared<Question>(std::move(question)))) {}
    ~Place() override { round_.erase(mine_); }
    Place(const Place&) = delete;
    Place& operator=(const Place&) = delete;

private:
    Round& round_;
    Round::iterator mine_;
};

std::unique_ptr<Tenure> CloseQuestions::beforeClose(Question question) {
    return std::make_unique<Place>(round_, std::move(question));
}

void CloseQuestions::askAll(const std::function<void(const std::exception&)>& fault) {
    // A window may go while another is asked, and its question with it.
    const std::vector<std::weak_ptr<Question>> all(round_.begin(), round_.end());
    for (const std::weak_ptr<Question>& each : all) {
        try {
            if (const auto question = each.lock()) {
                (*question)();
            }
        } catch (const std::exception& error) {
            fault(error);
        }
    }
}

} // namespace drx9
