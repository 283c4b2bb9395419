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
/// A curve never goes back in x, so the line drawn along it covers one span of heights at each x. The spans
/// are found first and painted then: what a curve costs is the ink that is seen, whatever its width and
/// however many strokes run over each other.
class CurveInk {
public:
    /// `width` in pixels. The line's ends and bends are round.
    void line(const PixelArea& area, std::span<const CurvePoint> curve, double width, std::uint32_t color);
    /// A line of `width` pixel columns, 1 or 2, covering in each the heights that the curve runs through
    /// there.
    void thinLine(const PixelArea& area, std::span<const CurvePoint> curve, int width, std::uint32_t color);

private:
    void begin(const PixelArea& area, std::span<const CurvePoint> piece, double reach, int parts, int before);
    void extend(double index, double top, double bottom);
    void addDot(const CurvePoint& point, double half);
    void addEdges(const CurvePoint& a, const CurvePoint& b, double half);
    void addEdge(double from, double to, double y, double slope, bool upper);
    void markColumns(const CurvePoint& a, const CurvePoint& b);
    void thicken(int width);
    template<int Parts>
    void paint(const PixelArea& area, std::uint32_t color) const;

    /// The heights that are covered in the parts of each column from left_ to right_ - 1; empty where a top
    /// is below its bottom.
    std::vector<float> tops_;
    std::vector<float> bottoms_;
    int left_ = 0;
    int right_ = 0;
    int height_ = 0;
};

} // namespace drx9
