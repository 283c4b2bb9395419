#pragma once

#include <QByteArray>
#include <QPaintDevice>
#include <QSize>

#include <memory>

namespace drx9 {

class SvgEngine;

/// Takes what a QPainter draws on it as the text of an SVG picture: lines, shapes in one colour, upright
/// text, one rectangular clip. That is all that a chart needs.
class SvgPicture : public QPaintDevice {
public:
    explicit SvgPicture(const QSize& size);
    ~SvgPicture() override;

    /// The whole picture, once the painter has ended.
    [[nodiscard]] QByteArray bytes() const;

    [[nodiscard]] QPaintEngine* paintEngine() const override;

protected:
    [[nodiscard]] int metric(PaintDeviceMetric metric) const override;

private:
    QSize size_;
    std::unique_ptr<SvgEngine> engine_;
};

} // namespace drx9
