#pragma once

#include "graphs/ChartModel.h"

#include <functional>

namespace drx9 {

/// What an editor does to a chart's look, and how it is taken back: only what was changed here, and only
/// where nobody has changed it again since. The operator's view and what the run moves stay.
class LookEdit {
public:
    /// The model outlives the edit.
    explicit LookEdit(ChartModel& model);

    /// Carries a change out on the chart. A Y axis that it changes is home from now on.
    void change(const std::function<void(ChartLook&)>& change);
    void takeBack();

private:
    struct State {
        ChartLook look;
        ValueSpan home;
    };
    [[nodiscard]] State withoutChanges() const;

    ChartModel& model_;
    State before_; ///< the chart as it would be without the changes
    State edited_; ///< as the last one left it
};

} // namespace drx9
