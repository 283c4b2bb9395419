#pragma once

/// What the charts and their windows tell the operator, apart from captions. "{}" stands for what `filled`
/// puts in. Each has an entry in the manual.
namespace drx9::graphText {

inline constexpr const char* kPaused = "Following paused. Home returns";
inline constexpr const char* kSavedAs = "{} saved as {}"; ///< one of the next two, then the file's name
inline constexpr const char* kNotSaved = "{} not saved: {}";
inline constexpr const char* kPrinted = "Picture printed";
inline constexpr const char* kNotPrinted = "Picture not printed: {}";
inline constexpr const char* kPicture = "Picture";
inline constexpr const char* kData = "Data";
inline constexpr const char* kSettingsNotSaved = "Graph settings not saved: {}";
inline constexpr const char* kSettingsNotSavedBrief = "Graph settings not saved";
inline constexpr const char* kNoFolder = "no folder for it";
inline constexpr const char* kNotOrdered = "Y Axis Min. is not below Y Axis Max.: the axis stays as it is.";
inline constexpr const char* kAtOnce = "The chart shows each change at once. Cancel takes all back.";

} // namespace drx9::graphText
