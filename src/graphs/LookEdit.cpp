#include "graphs/LookEdit.h"

#include "graphs/ChartFile.h"

namespace drx9 {

LookEdit::LookEdit(ChartModel& model)
    : model_(model)
    , before_{model.look(), model.yHome()}
    , edited_(before_) {}

LookEdit::State LookEdit::withoutChanges() const {
    const ValueSpan home = model_.yHome();
    return {takenBack(before_.look, edited_.look, model_.look()), home == edited_.home ? before_.home : home};
}

void LookEdit::change(const std::function<void(ChartLook&)>& change) {
    before_ = withoutChanges();
    ChartLook look = model_.look();
    change(look);
    const ValueSpan y{look.y.minimum, look.y.maximum};
    const bool moved = y != ValueSpan{model_.look().y.minimum, model_.look().y.maximum};
    model_.setLook(std::move(look));
    if (moved) {
        model_.markYHome();
    }
    edited_ = {model_.look(), model_.yHome()};
}

void LookEdit::takeBack() {
    State state = withoutChanges();
    model_.setLook(std::move(state.look));
    model_.setYHome(state.home);
}

} // namespace drx9
