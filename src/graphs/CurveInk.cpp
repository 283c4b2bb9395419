#include "graphs/CurveInk.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace drx9 {

namespace {
constexpr int kParts = 4;     ///< parts of a pixel column that a line's edges are told apart by
constexpr int kTile = 16;     ///< columns painted together: pixels of one cache line
constexpr int kShortEdge = 8; ///< rows that are not worth a search for equal ones
constexpr float kNone = std::numeric_limits<float>::infinity();

std::uint32_t mixed(std::uint32_t under, std::uint32_t over, std::uint32_t cover) {
    const std::uint32_t rest = 255 - cover;
    const std::uint32_t redBlue = ((over & 0xff00ff) * cover + (under & 0xff00ff) * rest + 0x800080) >> 8;
    const std::uint32_t green = ((over & 0x00ff00) * cover + (under & 0x00ff00) * rest + 0x008000) >> 8;
    return 0xff000000 | (redBlue & 0xff00ff) | (green & 0x00ff00);
}

/// The points up to where the next piece starts.
std::span<const CurvePoint> takePiece(std::span<const CurvePoint>& rest) {
    std::size_t count = 1;
    while (count < rest.size() && !rest[count].start) {
        ++count;
    }
    const std::span<const CurvePoint> piece = rest.first(count);
    rest = rest.subspan(count);
    return piece;
}

/// Some columns of a curve on their way into the picture: of each the rows that are full, and before and
/// behind them those of which the line covers a share.
template<int Parts>
class Tile {
public:
    Tile(const float* tops, const float* bottoms, int count, int height)
        : tops_(tops)
        , bottoms_(bottoms)
        , count_(count)
        , height_(height) {
        for (int i = 0; i < count; ++i) {
            takeRows(i);
        }
    }
    void paint(std::uint32_t* pixels, int stride, std::uint32_t color) const {
        paintFull(pixels, stride, color);
        for (int i = 0; i < count_; ++i) {
            paintShares(pixels + i, stride, i, first_[i], std::min(fullFrom_[i], last_[i]), color);
            paintShares(pixels + i, stride, i, std::max(fullTo_[i], first_[i]), last_[i], color);
        }
    }

private:
    void takeRows(int i) {
        const float* tops = tops_ + static_cast<std::ptrdiff_t>(i) * Parts;
        const float* bottoms = bottoms_ + static_cast<std::ptrdiff_t>(i) * Parts;
        const auto limit = [this](float edge) { return std::clamp(edge, 0.0F, static_cast<float>(height_)); };
        const float top = limit(*std::min_element(tops, tops + Parts));
        const float bottom = limit(*std::max_element(bottoms, bottoms + Parts));
        const float fullTop = limit(*std::max_element(tops, tops + Parts));
        const float fullBottom = limit(*std::min_element(bottoms, bottoms + Parts));
        first_[i] = static_cast<int>(std::floor(top));
        last_[i] = std::max(first_[i], static_cast<int>(std::ceil(bottom)));
        fullFrom_[i] = static_cast<int>(std::ceil(fullTop));
        fullTo_[i] = static_cast<int>(std::floor(fullBottom));
        if (fullFrom_[i] >= fullTo_[i]) {
            fullFrom_[i] = fullTo_[i] = last_[i];
        }
    }
    void paintFull(std::uint32_t* pixels, int stride, std::uint32_t color) const {
        int from = height_;
        int to = 0;
        int allFrom = 0;
        int allTo = height_;
        for (int i = 0; i < count_; ++i) {
            const bool any = fullFrom_[i] < fullTo_[i];
            from = any ? std::min(from, fullFrom_[i]) : from;
            to = any ? std::max(to, fullTo_[i]) : to;
            allFrom = std::max(allFrom, fullFrom_[i]);
            allTo = std::min(allTo, fullTo_[i]);
        }
        for (int row = from; row < to; ++row) {
            std::uint32_t* line = pixels + static_cast<std::ptrdiff_t>(row) * stride;
            if (allFrom <= row && row < allTo) {
                std::fill_n(line, count_, color);
            } else {
                paintRow(line, row, color);
            }
        }
    }
    void paintRow(std::uint32_t* line, int row, std::uint32_t color) const {
        if (count_ < kTile) {
            for (int i = 0; i < count_; ++i) {
                line[i] = fullFrom_[i] <= row && row < fullTo_[i] ? color : line[i];
            }
            return;
        }
        std::array<std::uint32_t, kTile> mixed; // the known count lets the compiler take several at a time
        for (std::size_t i = 0; i < kTile; ++i) {
            const std::uint32_t inside = (fullFrom_[i] <= row ? ~0U : 0U) & (row < fullTo_[i] ? ~0U : 0U);
            mixed[i] = (color & inside) | (line[i] & ~inside);
        }
        std::copy(mixed.begin(), mixed.end(), line);
    }
    void paintShares(std::uint32_t* column, int stride, int i, int from, int to, std::uint32_t color) const {
        for (int row = from; row < to;) {
            const auto cover = static_cast<std::uint32_t>(share(i, row) * 255 + 0.5F);
            const int end = to - from > kShortEdge ? std::min(to, endOfShare(i, row)) : row + 1;
            for (; row < end && cover > 0; ++row) {
                std::uint32_t& pixel = column[static_cast<std::ptrdiff_t>(row) * stride];
                pixel = mixed(pixel, color, cover);
            }
            row = end;
        }
    }
    /// Up to where the line covers as much of the column as in the row: in steep edges that is far.
    [[nodiscard]] int endOfShare(int i, int row) const {
        int end = height_;
        const auto take = [row, &end, most = static_cast<float>(height_)](float edge) {
            // The row of the edge is covered in part, those behind it as the next edge says.
            const int at = static_cast<int>(std::floor(std::clamp(edge, -1.0F, most)));
            end = at > row ? std::min(end, at) : at == row ? row + 1 : end;
        };
        for (int part = i * Parts; part < (i + 1) * Parts; ++part) {
            take(tops_[part]);
            take(bottoms_[part]);
        }
        return end;
    }
    /// Of the pixel, what the line covers.
    [[nodiscard]] float share(int i, int row) const {
        const auto upper = static_cast<float>(row);
        const auto covered = [upper](float top, float bottom) {
            const float from = top < upper ? upper : top;
            const float to = bottom < upper + 1 ? bottom : upper + 1;
            return to > from ? to - from : 0;
        };
        float sum = 0;
        for (int part = i * Parts; part < (i + 1) * Parts; ++part) {
            sum += covered(tops_[part], bottoms_[part]);
        }
        return sum / Parts;
    }

    const float* tops_;
    const float* bottoms_;
    int count_;
    int height_;
    std::array<int, kTile> first_{};
    std::array<int, kTile> fullFrom_{};
    std::array<int, kTile> fullTo_{};
    std::array<int, kTile> last_{};
};
} // namespace

void CurveInk::line(const PixelArea& area, std::span<const CurvePoint> curve, double width,
                    std::uint32_t color) {
    const double half = width / 2;
    while (!curve.empty()) {
        const std::span<const CurvePoint> piece = takePiece(curve);
        begin(area, piece, half, kParts, 0);
        addDot(piece[0], half);
        for (std::size_t i = 1; i < piece.size(); ++i) {
            addEdges(piece[i - 1], piece[i], half);
            addDot(piece[i], half);
        }
        paint<kParts>(area, color | 0xff000000);
    }
}

void CurveInk::thinLine(const PixelArea& area, std::span<const CurvePoint> curve, int width,
                        std::uint32_t color) {
    while (!curve.empty()) {
        const std::span<const CurvePoint> piece = takePiece(curve);
        begin(area, piece, width - 1, 1, width - 1); // what the column before covers
        for (std::size_t i = 0; i < piece.size(); ++i) {
            markColumns(piece[i > 0 ? i - 1 : 0], piece[i]);
        }
        thicken(width);
        paint<1>(area, color | 0xff000000);
    }
}

/// Makes the spans of the columns that a piece can reach, all empty; `before` of them left of the area.
void CurveInk::begin(const PixelArea& area, std::span<const CurvePoint> piece, double reach, int parts,
                     int before) {
    const double width = area.width;
    height_ = area.height;
    left_ = static_cast<int>(
        std::clamp(std::floor(piece.front().x - reach), -static_cast<double>(before), width));
    right_ = static_cast<int>(std::clamp(std::floor(piece.back().x + reach) + 1, double(left_), width));
    tops_.assign(static_cast<std::size_t>((right_ - left_) * parts), kNone);
    bottoms_.assign(tops_.size(), -kNone);
}

void CurveInk::extend(double index, double top, double bottom) {
    const auto at = static_cast<std::size_t>(index);
    const double limit = height_ + 1.0; // what lies further out makes no difference
    tops_[at] = std::min(tops_[at], static_cast<float>(std::clamp(top, -1.0, limit)));
    bottoms_[at] = std::max(bottoms_[at], static_cast<float>(std::clamp(bottom, -1.0, limit)));
}

/// The round of the line at a point of the curve.
void CurveInk::addDot(const CurvePoint& point, double half) {
    const double x = (point.x - left_) * kParts - 0.5; // of the point, counted in parts' middles
    const double reach = half * kParts;
    const double last = std::min(std::floor(x + reach), static_cast<double>(tops_.size()) - 1);
    for (double at = std::max(0.0, std::ceil(x - reach)); at <= last; ++at) {
        const double rise = std::sqrt(std::max(0.0, reach * reach - (at - x) * (at - x))) / kParts;
        extend(at, point.y - rise, point.y + rise);
    }
}

/// The two edges of the line between two points of the curve.
void CurveInk::addEdges(const CurvePoint& a, const CurvePoint& b, double half) {
    const double dx = b.x - a.x;
    const double dy = b.y - a.y;
    const double length = std::sqrt(dx * dx + dy * dy);
    if (!(dx > 0)) {
        return; // the rounds at its ends say all
    }
    const double aside = half * dy / length;
    const double rise = half * dx / length;
    addEdge(a.x + aside, b.x + aside, a.y - rise, dy / dx, true);
    addEdge(a.x - aside, b.x - aside, a.y + rise, dy / dx, false);
}

void CurveInk::addEdge(double from, double to, double y, double slope, bool upper) {
    const double first = std::max(0.0, std::ceil((from - left_) * kParts - 0.5));
    const double last =
        std::min(std::floor((to - left_) * kParts - 0.5), static_cast<double>(tops_.size()) - 1);
    const double limit = height_ + 1.0;
    const double start = left_ + 0.5 / kParts - from;
    for (double at = first; at <= last; ++at) {
        const auto edge = static_cast<float>(std::clamp(y + slope * (start + at / kParts), -1.0, limit));
        const auto index = static_cast<std::size_t>(at);
        if (upper) {
            tops_[index] = std::min(tops_[index], edge);
        } else {
            bottoms_[index] = std::max(bottoms_[index], edge);
        }
    }
}

/// The heights that a stroke runs through in each column.
void CurveInk::markColumns(const CurvePoint& a, const CurvePoint& b) {
    const double first = std::floor(a.x);
    const double last = std::floor(b.x);
    const double slope = b.x > a.x ? (b.y - a.y) / (b.x - a.x) : 0;
    for (double column = std::max<double>(first, left_); column <= std::min<double>(last, right_ - 1);
         ++column) {
        const double from = column > first ? a.y + slope * (column - a.x) : a.y;
        const double to = column < last ? a.y + slope * (column + 1 - a.x) : b.y;
        extend(column - left_, std::min(from, to), std::max(from, to));
    }
}

/// Gives the marked heights the line's width; with two columns each takes in what the one before it covers.
void CurveInk::thicken(int width) {
    const float half = static_cast<float>(width) / 2;
    for (std::size_t i = tops_.size(); i-- > 0;) {
        if (width > 1 && i > 0) {
            tops_[i] = std::min(tops_[i], tops_[i - 1]);
            bottoms_[i] = std::max(bottoms_[i], bottoms_[i - 1]);
        }
        tops_[i] -= half;
        bottoms_[i] += half;
    }
}

template<int Parts>
void CurveInk::paint(const PixelArea& area, std::uint32_t color) const {
    for (int left = std::max(left_, 0); left < right_; left += kTile) {
        const auto first = static_cast<std::size_t>((left - left_) * Parts);
        const Tile<Parts> tile(tops_.data() + first, bottoms_.data() + first, std::min(kTile, right_ - left),
                               area.height);
        tile.paint(area.pixels + left, area.stride, color);
    }
}

} // namespace drx9
