#pragma once

#include <cstdint>
#include <string>

namespace drx9 {

enum class ProgressOwner { MainWindow, FilmWindow };

/// The modeless progress window.
class Progress {
public:
    virtual ~Progress() = default;
    /// Saves the owner's pointer, sets the hourglass, lets pending events run, sets the bar to 0 and the
    /// text, shows the window. Pumps events.
    virtual void ProgressShow(const std::string& text, ProgressOwner owner) = 0;
    /// Percent outside 0..100 is ignored. Does not pump.
    virtual void setProgress(std::int16_t percent) = 0;
    virtual void ProgressHide() = 0;
};

} // namespace drx9
