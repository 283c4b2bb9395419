#include "graphs/RunPoints.h"

#include <algorithm>
#include <cmath>

namespace drx9 {

namespace {
constexpr float kNoValue = std::numeric_limits<float>::quiet_NaN();
constexpr double kMost = std::numeric_limits<float>::max();
constexpr std::size_t kSample = 64; ///< steps that tell the usual one
} // namespace

void ValueRange::add(float value) { // NaN changes nothing
    least = value < least ? value : least;
    greatest = value > greatest ? value : greatest;
}

void ValueRange::add(const ValueRange& other) {
    add(other.least);
    add(other.greatest);
}

RunPoints::Piece::Piece(std::size_t columns)
    : value(columns * kPiece, kNoValue)
    , spans(columns * (kPiece / kSpan)) {}

std::size_t RunPoints::spanIndex(std::size_t column, std::size_t row) {
    return column * (kPiece / kSpan) + row % kPiece / kSpan;
}

std::size_t RunPoints::rowOf(std::size_t column, std::size_t n) const {
    const Used& used = used_[column];
    if (n >= used.count) {
        return used.end;
    }
    if (used.end - used.first == used.count) {
        return used.first + n;
    }
    std::size_t row = used.first;
    for (std::size_t found = 0;; ++row) {
        found += std::isnan(value(column, row)) ? 0 : 1;
        if (found > n) {
            return row;
        }
    }
}

std::size_t RunPoints::firstAt(double wanted, std::size_t low) const {
    std::size_t high = low == 0 ? rows_ : low;
    for (std::size_t step = 1; high < rows_ && time(high) < wanted; step *= 2) {
        low = high + 1;
        high = std::min(rows_, high + step);
    }
    while (low < high) {
        const std::size_t middle = low + (high - low) / 2;
        if (time(middle) < wanted) {
            low = middle + 1;
        } else {
            high = middle;
        }
    }
    return low;
}

double RunPoints::usualStep() const {
    if (rows_ <= kSample) {
        return 0;
    }
    std::array<double, kSample> steps{};
    for (std::size_t i = 0; i < kSample; ++i) {
        steps[i] = time(i + 1) - time(i);
    }
    std::nth_element(steps.begin(), steps.begin() + kSample / 2, steps.end());
    return steps[kSample / 2];
}

ValueRange RunPoints::range(std::size_t column, std::size_t from, std::size_t to) const {
    ValueRange range;
    for (std::size_t row = from; row < to;) {
        if (row % kSpan == 0 && row + kSpan <= to) {
            range.add(piece(row).spans[spanIndex(column, row)]);
            row += kSpan;
        } else {
            range.add(value(column, row));
            ++row;
        }
    }
    return range;
}

std::size_t RunPoints::rowAt(double wanted) {
    if (rows_ == 0 || wanted > time(rows_ - 1)) {
        addRow(wanted);
        return rows_ - 1;
    }
    const std::size_t row = wanted == time(rows_ - 1) ? rows_ - 1 : firstAt(wanted);
    if (time(row) != wanted) {
        dropFrom(row);
        addRow(wanted);
    }
    return row;
}

void RunPoints::addRow(double time) {
    if (rows_ == pieces_.size() * kPiece) {
        pieces_.push_back(std::make_unique<Piece>(columns_));
    }
    Piece& last = piece(rows_);
    last.time[rows_ % kPiece] = time;
    last.gaps[rows_ % kPiece] = rows_ > 0 ? gaps(rows_ - 1) : 0;
    ++rows_;
}

void RunPoints::markGap(std::size_t row) {
    if (!gapBefore(row)) {
        for (; row < rows_; ++row) { // almost always the newest one
            ++piece(row).gaps[row % kPiece];
        }
    }
}

void RunPoints::set(std::size_t column, std::size_t row, double value) {
    if (std::isnan(value)) {
        return;
    }
    const auto held = static_cast<float>(std::clamp(value, -kMost, kMost));
    Piece& target = piece(row);
    target.value[column * kPiece + row % kPiece] = held;
    target.spans[spanIndex(column, row)].add(held);
    Used& used = used_[column];
    used.first = used.count == 0 ? row : used.first;
    used.end = row + 1;
    ++used.count;
}

void RunPoints::cut(std::size_t column, std::size_t count) {
    if (count < used_[column].count) {
        cutRows(column, count == 0 ? used_[column].first : rowOf(column, count));
    }
    if (std::all_of(used_.begin(), used_.end(), [](const Used& used) { return used.count == 0; })) {
        clear();
    }
}

/// Takes the column's values from a row on, and what the spans knew of them.
void RunPoints::cutRows(std::size_t column, std::size_t end) {
    Used& used = used_[column];
    losses_ += end < used.end ? 1 : 0;
    for (std::size_t row = end; row < used.end; ++row) {
        float& held = piece(row).value[column * kPiece + row % kPiece];
        used.count -= std::isnan(held) ? 0 : 1;
        held = kNoValue;
        if (row == end || row % kSpan == 0) {
            piece(row).spans[spanIndex(column, row)] = {};
        }
    }
    if (end < used.end) {
        renewSpan(column, end);
    }
    used.end = std::min(used.end, end);
    while (used.end > 0 && used.count > 0 && std::isnan(value(column, used.end - 1))) {
        --used.end;
    }
    if (used.count == 0) {
        used = {};
    }
}

void RunPoints::renewSpan(std::size_t column, std::size_t row) {
    ValueRange& span = piece(row).spans[spanIndex(column, row)];
    for (std::size_t at = row - row % kSpan; at < row; ++at) {
        span.add(value(column, at));
    }
}

void RunPoints::dropFrom(std::size_t row) {
    for (std::size_t column = 0; column < columns_; ++column) {
        cutRows(column, row);
    }
    rows_ = row;
    pieces_.resize((rows_ + kPiece - 1) / kPiece);
}

void RunPoints::clear() {
    ++losses_;
    pieces_.clear();
    rows_ = 0;
    used_.assign(columns_, {});
}

} // namespace drx9
