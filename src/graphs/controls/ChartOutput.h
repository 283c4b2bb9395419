#pragma once

#include "graphs/ChartModel.h"
#include "platform/Desktop.h"
#include "platform/EventPump.h"
#include "platform/FilePort.h"

#include <QByteArray>
#include <QImage>

#include <functional>

namespace drx9 {

struct Theme;

/// What a chart needs of the program. Without files, dialogs or whenIdle it offers no files.
struct ChartPorts {
    FilePort* files = nullptr;
    FileDialogs* dialogs = nullptr;
    PrintDialog* printer = nullptr; ///< null: no printing
    /// Runs an action when nothing of ours is on the stack. Called no earlier than an operator's click.
    std::function<void(std::function<void()>)> whenIdle;
    EventPump* pump = nullptr;
    std::string folder; ///< of the graphs' configuration files
    /// Puts a window, not yet shown, where it was when it was last closed; may be empty.
    std::function<void(QWidget&)> place;
};

enum class PictureFormat { Png, Svg, Pdf };

/// Pictures and exports of one chart. Everything is rendered into memory and saved through the file port; the
/// dialogs come when nothing of ours is on the stack.
class ChartOutput {
public:
    /// `say` tells the operator what came of it, in words.
    ChartOutput(const ChartModel& model, ChartPorts ports, std::function<void(const QString&)> say);

    [[nodiscard]] bool hasFiles() const;
    /// As the chart looks now in its window; Png at twice its size.
    [[nodiscard]] QByteArray picture(PictureFormat format, const QWidget& chart) const;
    [[nodiscard]] QImage image(const QWidget& chart, double scale) const;

    void savePicture(QWidget& chart);
    void exportData(QWidget& chart);
    [[nodiscard]] bool hasPrinter() const;
    void print(QWidget& chart);

private:
    void choose(QWidget& chart, const FileDialogRequest& request,
                const std::function<QByteArray(const std::string&)>& render, const char* what);
    [[nodiscard]] QByteArray pdf(const QWidget& chart) const;
    [[nodiscard]] QByteArray svg(const QWidget& chart) const;

    const ChartModel& model_;
    ChartPorts ports_;
    std::function<void(const QString&)> say_;
};

} // namespace drx9
