#include "graphs/controls/ChartOutput.h"

#include "graphs/ChartFile.h"
#include "graphs/Texts.h"
#include "graphs/controls/ChartPainter.h"
#include "graphs/controls/SvgPicture.h"
#include "platform/AtomicReplace.h"
#include "util/Paths.h"
#include "util/Text.h"

#include <QBuffer>
#include <QPainter>
#include <QPdfWriter>
#include <QPointer>
#include <QWidget>

namespace drx9 {

namespace {
constexpr double kPictureScale = 2;
constexpr int kPdfDots = 96;

bool endsWith(const std::string& path, const std::string& ending) {
    return path.size() >= ending.size() && equalNoCase(path.substr(path.size() - ending.size()), ending);
}

PictureFormat formatOf(const std::string& path) {
    if (endsWith(path, ".svg")) {
        return PictureFormat::Svg;
    }
    return endsWith(path, ".pdf") ? PictureFormat::Pdf : PictureFormat::Png;
}

ChartPainter painterFor(const ChartModel& model, const QWidget& chart) {
    return {model, Theme::of(chart.palette()), chart.font(), chart.locale().decimalPoint().at(0).toLatin1()};
}
} // namespace

ChartOutput::ChartOutput(const ChartModel& model, ChartPorts ports, std::function<void(const QString&)> say)
    : model_(model)
    , ports_(std::move(ports))
    , say_(std::move(say)) {}

bool ChartOutput::hasFiles() const {
    return ports_.files != nullptr && ports_.dialogs != nullptr && ports_.whenIdle != nullptr;
}

QImage ChartOutput::image(const QWidget& chart, double scale) const {
    QImage picture(chart.size() * scale, QImage::Format_RGB32);
    picture.setDevicePixelRatio(scale);
    QPainter painter(&picture);
    ChartSurface surface;
    painterFor(model_, chart).paint(painter, chart.rect(), scale, &surface);
    return picture;
}

QByteArray ChartOutput::pdf(const QWidget& chart) const {
    QBuffer bytes;
    bytes.open(QIODevice::WriteOnly);
    QPdfWriter writer(&bytes);
    writer.setResolution(kPdfDots);
    writer.setPageSize(QPageSize(QSizeF(chart.size()) * 72 / kPdfDots, QPageSize::Point));
    writer.setPageMargins(QMarginsF());
    writer.setTitle(QString::fromStdString(model_.look().y.title));
    QPainter painter(&writer);
    painterFor(model_, chart).paint(painter, chart.rect(), 1, nullptr);
    painter.end();
    return bytes.data();
}

QByteArray ChartOutput::svg(const QWidget& chart) const {
    SvgPicture picture(chart.size());
    QPainter painter(&picture);
    painterFor(model_, chart).paint(painter, chart.rect(), 1, nullptr);
    painter.end();
    return picture.bytes();
}

QByteArray ChartOutput::picture(PictureFormat format, const QWidget& chart) const {
    if (format == PictureFormat::Pdf) {
        return pdf(chart);
    }
    if (format == PictureFormat::Svg) {
        return svg(chart);
    }
    QBuffer bytes;
    bytes.open(QIODevice::WriteOnly);
    image(chart, kPictureScale).save(&bytes, "PNG");
    return bytes.data();
}

/// Asks for a file when nothing is on the stack, and saves what is rendered then.
void ChartOutput::choose(QWidget& chart, const FileDialogRequest& request,
                         const std::function<QByteArray(const std::string&)>& render, const char* what) {
    if (!hasFiles()) {
        return;
    }
    const QPointer<QWidget> alive(&chart);
    ports_.whenIdle([this, alive, request, render, what] {
        const std::string path = alive != nullptr ? ports_.dialogs->saveFile(request) : std::string();
        if (path.empty() || alive == nullptr) {
            return;
        }
        const QByteArray bytes = render(path);
        const FileStatus status =
            replaceFile(*ports_.files, path, {bytes.constData(), static_cast<std::size_t>(bytes.size())});
        say_(QString::fromStdString(status.ok() ? filled(graphText::kSavedAs, {what, bareName(path)})
                                                : filled(graphText::kNotSaved, {what, status.reason()})));
    });
}

void ChartOutput::savePicture(QWidget& chart) {
    FileDialogRequest request;
    request.title = "Save Picture";
    request.filter = "PNG (*.png)|*.png|SVG (*.svg)|*.svg|PDF (*.pdf)|*.pdf";
    request.defaultExtension = "png";
    request.fileName = std::string(model_.design().heading);
    request.overwritePrompt = true;
    request.suffixByFilter = true;
    choose(
        chart, request, [this, &chart](const std::string& path) { return picture(formatOf(path), chart); },
        graphText::kPicture);
}

bool ChartOutput::hasPrinter() const {
    return ports_.printer != nullptr && ports_.whenIdle != nullptr;
}

/// What is printed is the chart as it was when the dialog came.
void ChartOutput::print(QWidget& chart) {
    if (!hasPrinter()) {
        return;
    }
    ports_.whenIdle([this, alive = QPointer<QWidget>(&chart)] {
        if (alive == nullptr) {
            return;
        }
        const QByteArray bytes = picture(PictureFormat::Png, *alive);
        const PrintDialog::Result result =
            ports_.printer->printPicture(std::string(model_.design().heading),
                                         {bytes.constData(), static_cast<std::size_t>(bytes.size())});
        if (alive != nullptr && (result.printed || !result.reason.empty())) {
            say_(QString::fromStdString(result.printed ? graphText::kPrinted
                                                       : filled(graphText::kNotPrinted, {result.reason})));
        }
    });
}

void ChartOutput::exportData(QWidget& chart) {
    FileDialogRequest request;
    request.title = "Export Data";
    request.filter = "Text (*.txt)|*.txt|All Files (*.*)|*.*";
    request.defaultExtension = "txt";
    request.fileName = std::string(model_.design().heading) + ".txt";
    request.overwritePrompt = true;
    choose(
        chart, request, [this](const std::string&) { return QByteArray::fromStdString(chartExport(model_)); },
        graphText::kData);
}

} // namespace drx9
