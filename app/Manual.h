#pragma once

#include "controls/ManualViewer.h"
#include "controls/WindowPlaces.h"
#include "platform/Desktop.h"

#include <QObject>

#include <memory>

namespace drx9 {

/// The manual that is compiled into the program. Takes F1 in every window, modal ones too, and opens at that
/// window's chapter. Touches windows only, so it may come at any time, also in mid-exchange. Needs a
/// QApplication; its window is made when it is first wanted.
class Manual : public QObject, public HelpViewer {
public:
    explicit Manual(WindowPlaces& places);

    void showIndex() override;
    void showChapter(const std::string& window) override;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void openAt(const QString& link);

    WindowPlaces& places_;
    std::unique_ptr<ManualViewer> viewer_;
};

} // namespace drx9
