#include "graphs/controls/SvgPicture.h"

#include <QPaintEngine>
#include <QPainterPath>
#include <QPen>

namespace drx9 {

namespace {
constexpr int kDotsPerInch = 96;

QByteArray number(double value) {
    return QByteArray::number(std::round(value * 100) / 100, 'g', 8);
}

QByteArray attribute(const char* name, const QByteArray& value) {
    return " " + QByteArray(name) + "=\"" + value + "\"";
}
} // namespace

/// Writes one element for each thing drawn.
class SvgEngine : public QPaintEngine {
public:
    SvgEngine()
        : QPaintEngine(QPaintEngine::AllFeatures) {}

    [[nodiscard]] const QByteArray& elements() const { return elements_; }

    bool begin(QPaintDevice*) override { return true; }
    bool end() override { return true; }
    [[nodiscard]] Type type() const override { return QPaintEngine::User; }
    void drawPixmap(const QRectF&, const QPixmap&, const QRectF&) override {}

    void updateState(const QPaintEngineState& now) override {
        pen_ = now.state() & DirtyPen ? now.pen() : pen_;
        brush_ = now.state() & DirtyBrush ? now.brush() : brush_;
        if (now.state() & (DirtyClipPath | DirtyClipRegion | DirtyClipEnabled)) {
            takeClip(now);
        }
    }

    void drawPath(const QPainterPath& path) override {
        QByteArray data;
        for (int i = 0; i < path.elementCount(); ++i) {
            const QPainterPath::Element element = path.elementAt(i);
            const char* command = element.isMoveTo()    ? "M"
                                  : element.isLineTo()  ? "L"
                                  : element.isCurveTo() ? "C"
                                                        : " ";
            data += command + number(element.x) + "," + number(element.y);
        }
        elements_ += "<path" + attribute("d", data) + fill() + stroke() + clip_ + "/>\n";
    }

    void drawPolygon(const QPointF* points, int count, PolygonDrawMode mode) override {
        const bool open = mode == PolylineMode;
        QByteArray data;
        for (int i = 0; i < count; ++i) {
            data += (i > 0 ? " " : "") + number(points[i].x()) + "," + number(points[i].y());
        }
        elements_ += QByteArray(open ? "<polyline" : "<polygon") + attribute("points", data) +
                     (open ? attribute("fill", "none") : fill()) + stroke() + clip_ + "/>\n";
    }
    using QPaintEngine::drawPolygon;

    void drawTextItem(const QPointF& at, const QTextItem& item) override {
        const QFont font = item.font();
        elements_ += "<text" + attribute("x", number(at.x())) + attribute("y", number(at.y())) +
                     attribute("font-family", font.family().toHtmlEscaped().toUtf8()) +
                     attribute("font-size", number(QFontInfo(font).pixelSize())) +
                     attribute("font-weight", font.bold() ? "bold" : "normal") +
                     attribute("fill", pen_.color().name().toUtf8()) + clip_ + ">" +
                     item.text().toHtmlEscaped().toUtf8() + "</text>\n";
    }

private:
    void takeClip(const QPaintEngineState& now) {
        clip_.clear();
        const QRectF rect = now.clipPath().isEmpty() ? QRectF(now.clipRegion().boundingRect())
                                                     : now.clipPath().boundingRect();
        if (!now.isClipEnabled() || rect.isEmpty()) {
            return;
        }
        const QByteArray name = "clip" + QByteArray::number(++clips_);
        elements_ += "<clipPath" + attribute("id", name) + "><rect" + attribute("x", number(rect.x())) +
                     attribute("y", number(rect.y())) + attribute("width", number(rect.width())) +
                     attribute("height", number(rect.height())) + "/></clipPath>\n";
        clip_ = attribute("clip-path", "url(#" + name + ")");
    }

    [[nodiscard]] QByteArray fill() const {
        return attribute("fill", brush_.style() == Qt::NoBrush ? "none" : brush_.color().name().toUtf8());
    }

    [[nodiscard]] QByteArray stroke() const {
        if (pen_.style() == Qt::NoPen) {
            return {};
        }
        QByteArray text = attribute("stroke", pen_.color().name().toUtf8()) +
                          attribute("stroke-width", number(std::max(1.0, pen_.widthF())));
        if (pen_.joinStyle() == Qt::BevelJoin) {
            text += attribute("stroke-linejoin", "bevel");
        }
        return text;
    }

    QByteArray elements_;
    QByteArray clip_;
    QPen pen_;
    QBrush brush_;
    int clips_ = 0;
};

SvgPicture::SvgPicture(const QSize& size)
    : size_(size)
    , engine_(std::make_unique<SvgEngine>()) {}

SvgPicture::~SvgPicture() = default;

QPaintEngine* SvgPicture::paintEngine() const {
    return engine_.get();
}

QByteArray SvgPicture::bytes() const {
    const QByteArray width = QByteArray::number(size_.width());
    const QByteArray height = QByteArray::number(size_.height());
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<svg xmlns=\"http://www.w3.org/2000/svg\"" +
           attribute("width", width) + attribute("height", height) +
           attribute("viewBox", "0 0 " + width + " " + height) + ">\n" + engine_->elements() + "</svg>\n";
}

int SvgPicture::metric(PaintDeviceMetric metric) const {
    switch (metric) {
    case PdmWidth:
        return size_.width();
    case PdmHeight:
        return size_.height();
    case PdmWidthMM:
        return size_.width() * 254 / (10 * kDotsPerInch);
    case PdmHeightMM:
        return size_.height() * 254 / (10 * kDotsPerInch);
    case PdmDpiX:
    case PdmDpiY:
    case PdmPhysicalDpiX:
    case PdmPhysicalDpiY:
        return kDotsPerInch;
    case PdmDepth:
        return 32;
    case PdmNumColors:
        return 0x7fffffff;
    case PdmDevicePixelRatio:
        return 1;
    default: // PdmDevicePixelRatioScaled
        return static_cast<int>(QPaintDevice::devicePixelRatioFScale());
    }
}

} // namespace drx9
