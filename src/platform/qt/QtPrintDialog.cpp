#include "platform/qt/QtPrintDialog.h"

#include "platform/Texts.h"

#include <QApplication>
#include <QImage>
#include <QPainter>
#include <QPointer>
#include <QPrintDialog>
#include <QPrinter>

namespace drx9 {

namespace {

/// In the middle of the page.
bool printOn(QPrinter& printer, const QImage& picture) {
    QPainter painter;
    if (!painter.begin(&printer)) {
        return false;
    }
    const QRect page(QPoint(), printer.pageLayout().paintRectPixels(printer.resolution()).size());
    QRect place(QPoint(), picture.size().scaled(page.size(), Qt::KeepAspectRatio));
    place.moveCenter(page.center());
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(place, picture);
    return painter.end() && printer.printerState() != QPrinter::Error;
}

} // namespace

PrintDialog::Result QtPrintDialog::printPicture(const std::string& title, std::string_view png) {
    const QImage picture =
        QImage::fromData(reinterpret_cast<const uchar*>(png.data()), static_cast<int>(png.size()));
    QPrinter printer(QPrinter::HighResolution);
    printer.setDocName(QString::fromStdString(title));
    printer.setPageOrientation(picture.width() > picture.height() ? QPageLayout::Landscape
                                                                  : QPageLayout::Portrait);
    const QPointer<QPrintDialog> dialog = new QPrintDialog(&printer, QApplication::activeWindow());
    dialog->setObjectName("PrintDialog");
    dialog->setOption(QAbstractPrintDialog::PrintPageRange, false);
    const bool accepted = dialog->exec() == QDialog::Accepted;
    delete dialog.data(); // null where it went away with the window it was open over
    if (!accepted) {
        return {};
    }
    const bool printed = !picture.isNull() && printOn(printer, picture);
    return {printed, printed ? std::string() : platformText::kPrinterRefuses};
}

} // namespace drx9
