#pragma once

#include <string>

namespace drx9 {

/// How numbers and dates are written for people, in Monitor.ini and in the log. Passed to whoever formats or
/// parses; what goes over the wire never uses it.
struct NumberLocale {
    char decimal = '.';
    char group = ',';
    /// Short date with the fields "d", "dd", "M", "MM", "yyyy"; a two-digit year of the system's pattern is
    /// widened to four before it comes here.
    std::string shortDate = "M/d/yyyy";
};

} // namespace drx9
