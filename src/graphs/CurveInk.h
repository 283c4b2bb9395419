#pragma once

#include "graphs/ChartCurves.h"

#include <cstdint>
#include <span>
#include <vector>

namespace drx9 {

/// A picture in memory, rows from the top, 0xffRRGGBB a pixel. `stride` is in pixels.
struct PixelArea {
    std::uint32_t* pixels;
    int width;
    int height;
    int stride;
};

/// Draws curves into a picture with the same ink everywhere: each pixel takes the share of itself that the
/// line covers, once, however often the curve comes back to it.
///
/// Written for curves of thousands of short pieces, where general outline drawing takes ten times as long.
class CurveInk {
public:
    /// `width` in pixels. A curve whose strokes are so long that they would cost more than a frame is drawn
    /// as thinLine() does.
    void line(const PixelArea& area, std::span<const CurvePoint> curve, double width, std::uint32_t color);
    /// A line of `width` pixel columns, 1 or 2, covering in each the heights that the curve runs through
    /// there.
    void thinLine(const PixelArea& area, std::span<const CurvePoint> curve, int width, std::uint32_t color);

private:
    struct Heights {
        float top;
        float bottom;
    };
    void stroke(const CurvePoint& a, const CurvePoint& b, double half);
    void markColumns(const CurvePoint& a, const CurvePoint& b);
    void extend(int column, double y1, double y2);
    void widen();
    void paintColumns(const PixelArea& area, double half, std::uint32_t color) const;
    void paintMask(const PixelArea& area, std::uint32_t color);

    std::vector<std::uint8_t> mask_;
    std::vector<Heights> columns_;
    int width_ = 0;
    int height_ = 0;
    int top_ = 0; ///< rows of the mask that hold ink
    int bottom_ = 0;
};

} // namespace drx9
