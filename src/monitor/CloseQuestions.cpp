#include "monitor/CloseQuestions.h"

#include <utility>
#include <vector>

namespace drx9 {

/// A window's place in the round.
class CloseQuestions::Place : public Tenure {
public:
    Place(std::list<Question>& questions, Question question)
        : questions_(questions)
        , mine_(questions.insert(questions.begin(), std::move(question))) {}
    ~Place() override { questions_.erase(mine_); }
    Place(const Place&) = delete;
    Place& operator=(const Place&) = delete;

private:
    std::list<Question>& questions_;
    std::list<Question>::iterator mine_;
};

std::unique_ptr<Tenure> CloseQuestions::beforeClose(Question question) {
    return std::make_unique<Place>(questions_, std::move(question));
}

void CloseQuestions::askAll(const std::function<void(const std::exception&)>& fault) {
    const std::vector<Question> all(questions_.begin(),
                                    questions_.end()); // a window may go while it is asked
    for (const Question& question : all) {
        try {
            question();
        } catch (const std::exception& error) {
            fault(error);
        }
    }
}

} // namespace drx9
