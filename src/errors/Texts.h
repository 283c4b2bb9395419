#pragma once

/// What the error handler tells the operator and writes into reports, apart from a report's headings. "{}"
/// stands for what `filled` puts in. Each has an entry in the manual.
namespace drx9::errorText {

inline constexpr const char* kOccurred =
    "The following error has occurred in procedure: \n{} on line {}\nError ({}) {}";
inline constexpr const char* kUnknownLine = "<unknown>";
inline constexpr const char* kOperation = "Current Operation: {}";
inline constexpr const char* kNonFatal = "Non Fatal Error:\n{}";
inline constexpr const char* kStackAtEnd = "Error Trace Stack = {} on Terminate.\nProcedure: {}";
inline constexpr const char* kOverflow = "Error Stack Overflow.";
inline constexpr const char* kUnderflow = "Error Stack Underflow.";
inline constexpr const char* kNoSink = "Invalid object type: Nothing";
inline constexpr const char* kTimesBefore = " (and {} times before)";

} // namespace drx9::errorText
