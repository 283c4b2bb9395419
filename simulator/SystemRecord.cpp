#include "simulator/SystemRecord.h"

#include <algorithm>
#include <span>

#include "simulator/Text.h"

namespace drx9::sim {

namespace {
constexpr std::size_t kGeneral = 11;
constexpr std::size_t kLimits = 7;

std::string joined(std::span<const double> values) {
    std::string text;
    for (const double value : values) {
        text += (text.empty() ? "" : " ") + plainText(value);
    }
    return text;
}

bool take(std::string_view fields, std::span<double> values) {
    const auto numbers = numbersIn(fields, values.size());
    if (!numbers || joined(*numbers).size() > kMaxReplyData) {
        return false;
    }
    std::copy(numbers->begin(), numbers->end(), values.begin());
    return true;
}
} // namespace

// Timebase (s), simulate, frequency display, rate resolution, rate filter, six toolings (%); then minimum and
// maximum crystal frequency (MHz), minimum and maximum rate (Å/s), minimum and maximum thickness (kÅ), etch
// mode.
SystemRecord::SystemRecord()
    : values_{0.25, 0, 0, 1, 4, 100, 100, 100, 100, 100, 100, 5, 6, 0, 20, 0, 5, 0} {}

std::string SystemRecord::general() const {
    return joined(std::span(values_).first<kGeneral>());
}

std::string SystemRecord::limits() const {
    return joined(std::span(values_).last<kLimits>());
}

bool SystemRecord::setGeneral(std::string_view fields) {
    return take(fields, std::span(values_).first<kGeneral>());
}

bool SystemRecord::setLimits(std::string_view fields) {
    return take(fields, std::span(values_).last<kLimits>());
}

} // namespace drx9::sim
