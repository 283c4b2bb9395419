#include "graphs/CurveInk.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>

namespace drx9 {

namespace {
constexpr double kMostStroke = 200000; ///< pixels of a curve that are drawn as an outline
constexpr double kFar = 20000;         ///< pixels beyond which a point's height makes no difference
constexpr int kTile = 16;              ///< columns painted together: pixels of one cache line

std::uint32_t mixed(std::uint32_t under, std::uint32_t over, std::uint32_t cover) {
    const std::uint32_t rest = 255 - cover;
    const std::uint32_t redBlue = ((over & 0xff00ff) * cover + (under & 0xff00ff) * rest + 0x800080) >> 8;
    const std::uint32_t green = ((over & 0x00ff00) * cover + (under & 0x00ff00) * rest + 0x008000) >> 8;
    return 0xff000000 | (redBlue & 0xff00ff) | (green & 0x00ff00);
}

CurvePoint nearby(const CurvePoint& point) {
    return {std::clamp(point.x, -kFar, kFar), std::clamp(point.y, -kFar, kFar), point.start};
}

/// A straight piece of a line, asked for its ink on a pixel.
class Stroke {
public:
    Stroke(const CurvePoint& a, const CurvePoint& b, double half)
        : x_(static_cast<float>(a.x - 0.5)) // a pixel is taken at its middle
        , y_(static_cast<float>(a.y - 0.5))
        , reach_(static_cast<float>(half + 0.5))
        , most_(static_cast<float>(std::min(1.0, 2 * half))) {
        const double length = std::hypot(b.x - a.x, b.y - a.y);
        length_ = static_cast<float>(length);
        alongX_ = length > 0 ? static_cast<float>((b.x - a.x) / length) : 1;
        alongY_ = length > 0 ? static_cast<float>((b.y - a.y) / length) : 0;
    }
    /// 0 to 255, by the pixel's distance from the stroke.
    [[nodiscard]] std::uint8_t ink(int column, int row) const {
        const float x = static_cast<float>(column) - x_;
        const float y = static_cast<float>(row) - y_;
        const float along = x * alongX_ + y * alongY_;
        float distance = std::fabs(x * alongY_ - y * alongX_);
        const float beyond = along < 0 ? -along : along - length_;
        if (beyond > 0) {
            distance = std::sqrt(distance * distance + beyond * beyond);
        }
        const float cover = std::clamp(reach_ - distance, 0.0F, most_);
        return static_cast<std::uint8_t>(cover * 255 + 0.5F);
    }

private:
    float x_;
    float y_;
    float reach_;
    float most_;
    float length_;
    float alongX_;
    float alongY_;
};

/// Length of the curve's strokes, as far as they lie in the picture's height.
double strokeLength(std::span<const CurvePoint> curve, int height) {
    double length = 0;
    for (std::size_t i = 1; i < curve.size(); ++i) {
        const double y1 = std::clamp(curve[i - 1].y, 0.0, static_cast<double>(height));
        const double y2 = std::clamp(curve[i].y, 0.0, static_cast<double>(height));
        length += std::fabs(y2 - y1) + 2;
    }
    return length;
}
} // namespace

void CurveInk::line(const PixelArea& area, std::span<const CurvePoint> curve, double width,
                    std::uint32_t color) {
    if (strokeLength(curve, area.height) > kMostStroke) {
        thinLine(area, curve, 1, color);
        return;
    }
    width_ = area.width;
    height_ = area.height;
    mask_.resize(static_cast<std::size_t>(width_) * static_cast<std::size_t>(height_));
    top_ = height_;
    bottom_ = 0;
    for (std::size_t i = 0; i < curve.size(); ++i) {
        const bool alone = curve[i].start && (i + 1 == curve.size() || curve[i + 1].start);
        if (!curve[i].start || alone) {
            stroke(nearby(curve[alone ? i : i - 1]), nearby(curve[i]), width / 2);
        }
    }
    paintMask(area, color);
}

/// Covers the pixels around the stroke by their distance from it.
void CurveInk::stroke(const CurvePoint& a, const CurvePoint& b, double half) {
    const Stroke shape(a, b, half);
    const double reach = half + 0.5;
    const double dx = b.x - a.x;
    const double dy = b.y - a.y;
    const int top = std::max(0, static_cast<int>(std::floor(std::min(a.y, b.y) - reach)));
    const int bottom = std::min(height_ - 1, static_cast<int>(std::floor(std::max(a.y, b.y) + reach)));
    top_ = std::min(top_, top);
    bottom_ = std::max(bottom_, bottom + 1);
    const double across = dy == 0 ? 0 : reach * std::hypot(dx, dy) / std::fabs(dy);
    const double left = std::min(a.x, b.x) - reach;
    const double right = std::max(a.x, b.x) + reach;
    for (int row = top; row <= bottom; ++row) {
        const double y = row + 0.5 - a.y;
        double from = left;
        double to = right;
        if (dy != 0) { // only where the stroke passes this row
            const double middle = a.x + dx * y / dy;
            from = std::max(left, middle - across);
            to = std::min(right, middle + across);
        }
        const int first = std::max(0, static_cast<int>(std::floor(from)));
        const int last = std::min(width_ - 1, static_cast<int>(std::floor(to)));
        std::uint8_t* cells = mask_.data() + static_cast<std::size_t>(row) * static_cast<std::size_t>(width_);
        for (int column = first; column <= last; ++column) {
            if (cells[column] != 255) {
                cells[column] = std::max(cells[column], shape.ink(column, row));
            }
        }
    }
}

/// Brings the mask onto the picture and empties it.
void CurveInk::paintMask(const PixelArea& area, std::uint32_t color) {
    for (int row = top_; row < bottom_; ++row) {
        std::uint8_t* cells = mask_.data() + static_cast<std::size_t>(row) * static_cast<std::size_t>(width_);
        std::uint32_t* pixels = area.pixels + static_cast<std::ptrdiff_t>(row) * area.stride;
        for (int column = 0; column < width_;) {
            std::uint64_t eight = 0;
            if (column + 8 <= width_) {
                std::memcpy(&eight, cells + column, 8);
                if (eight == 0) {
                    column += 8;
                    continue;
                }
            }
            const int end = std::min(column + 8, width_);
            for (; column < end; ++column) {
                if (cells[column] != 0) {
                    pixels[column] = mixed(pixels[column], color, cells[column]);
                    cells[column] = 0;
                }
            }
        }
    }
}

void CurveInk::thinLine(const PixelArea& area, std::span<const CurvePoint> curve, int width,
                        std::uint32_t color) {
    width_ = area.width;
    height_ = area.height;
    columns_.assign(static_cast<std::size_t>(width_), {1, 0});
    for (std::size_t i = 0; i < curve.size(); ++i) {
        markColumns(nearby(curve[curve[i].start ? i : i - 1]), nearby(curve[i]));
    }
    if (width > 1) {
        widen();
    }
    paintColumns(area, width / 2.0, color | 0xff000000);
}

void CurveInk::extend(int column, double y1, double y2) {
    if (column < 0 || column >= width_) {
        return;
    }
    Heights& heights = columns_[static_cast<std::size_t>(column)];
    const auto top = static_cast<float>(std::min(y1, y2));
    const auto bottom = static_cast<float>(std::max(y1, y2));
    const bool empty = heights.top > heights.bottom;
    heights.top = empty ? top : std::min(heights.top, top);
    heights.bottom = empty ? bottom : std::max(heights.bottom, bottom);
}

/// The heights that a stroke runs through in each column.
void CurveInk::markColumns(const CurvePoint& a, const CurvePoint& b) {
    const int first = static_cast<int>(std::floor(a.x));
    const int last = static_cast<int>(std::floor(b.x));
    double y = a.y;
    for (int column = std::max(first, 0); column < std::min(last, width_); ++column) {
        if (column == std::max(first, 0) && first < 0) {
            y = a.y + (b.y - a.y) * (0 - a.x) / (b.x - a.x);
        }
        const double end = a.y + (b.y - a.y) * (column + 1 - a.x) / (b.x - a.x);
        extend(column, y, end);
        y = end;
    }
    extend(last, first == last ? a.y : y, b.y);
}

/// Each column takes in what the one before it covers.
void CurveInk::widen() {
    for (std::size_t i = columns_.size(); i-- > 1;) {
        const Heights& before = columns_[i - 1];
        if (before.top <= before.bottom) {
            extend(static_cast<int>(i), before.top, before.bottom);
        }
    }
}

void CurveInk::paintColumns(const PixelArea& area, double half, std::uint32_t color) const {
    for (int left = 0; left < width_; left += kTile) {
        const int count = std::min(kTile, width_ - left);
        float top[kTile];
        float bottom[kTile];
        float highest = static_cast<float>(height_);
        float lowest = 0;
        for (int i = 0; i < count; ++i) {
            const Heights& heights = columns_[static_cast<std::size_t>(left + i)];
            const bool empty = heights.top > heights.bottom;
            top[i] = empty ? static_cast<float>(height_) : heights.top - static_cast<float>(half);
            bottom[i] = empty ? 0 : heights.bottom + static_cast<float>(half);
            highest = std::min(highest, top[i]);
            lowest = std::max(lowest, bottom[i]);
        }
        const int end = std::min(height_, static_cast<int>(std::ceil(lowest)));
        for (int row = std::max(0, static_cast<int>(std::floor(highest))); row < end; ++row) {
            std::uint32_t* pixels = area.pixels + static_cast<std::ptrdiff_t>(row) * area.stride + left;
            const auto upper = static_cast<float>(row);
            const float lower = upper + 1;
            for (int i = 0; i < count; ++i) {
                if (top[i] <= upper && lower <= bottom[i]) {
                    pixels[i] = color;
                } else if (top[i] < lower && upper < bottom[i]) {
                    const float cover = std::min(lower, bottom[i]) - std::max(upper, top[i]);
                    pixels[i] = mixed(pixels[i], color, static_cast<std::uint32_t>(cover * 255 + 0.5F));
                }
            }
        }
    }
}

} // namespace drx9
