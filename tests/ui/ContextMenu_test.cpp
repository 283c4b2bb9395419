// Nothing that the operator does in a window runs an event loop of its own: an exchange may lie under it.
#include "ui/UiFixture.h"

#include "controls/SpinBox.h"
#include "controls/TextView.h"
#include "monitor/frmDataLog.h"
#include "util/frmAbout.h"

#include <QContextMenuEvent>
#include <QLineEdit>
#include <QMenu>
#include <QWheelEvent>

namespace drx9 {
namespace {

class ContextMenus : public UiFixture {
protected:
    ContextMenus() {
        bringUp();
        tick();
        choose("mnuFileLog");
        choose("mnuHelpAbout");
    }
    /// False when an event loop ran inside the action; what is open is closed then.
    static bool returnsAtOnce(const std::function<void()>& action) {
        bool ran = false;
        QObject inside;
        QTimer::singleShot(0, &inside, [&ran] {
            ran = true;
            while (QWidget* popup = QApplication::activePopupWidget()) {
                popup->close();
            }
        });
        action();
        return !ran;
    }
    static QMenu* openMenu(QWidget& on, QContextMenuEvent::Reason reason) {
        const QPoint at = on.rect().center();
        QContextMenuEvent event(reason, at, on.mapToGlobal(at));
        EXPECT_TRUE(returnsAtOnce([&] { QApplication::sendEvent(&on, &event); })) << nameOf(on);
        return qobject_cast<QMenu*>(QApplication::activePopupWidget());
    }
    static std::string nameOf(const QWidget& widget) {
        return widget.objectName().toStdString() + " " + widget.metaObject()->className();
    }
};

TEST_F(ContextMenus, OpenFromEveryWidgetAndReturnAtOnce) {
    int widgets = 0;
    int menus = 0;
    for (QWidget* top : QApplication::topLevelWidgets()) {
        for (QWidget* widget : top->findChildren<QWidget*>()) {
            for (const auto reason : {QContextMenuEvent::Mouse, QContextMenuEvent::Keyboard}) {
                if (QMenu* menu = openMenu(*widget, reason)) {
                    menu->close();
                    ++menus;
                }
                ++widgets;
            }
        }
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    EXPECT_GT(widgets, 150);
    EXPECT_GT(menus, 50);
}

TEST_F(ContextMenus, TextIsNeverDragged) {
    const auto send = [](QWidget& to, QEvent::Type type, const QPoint& at) {
        const Qt::MouseButton changed = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
        const Qt::MouseButtons held = type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton;
        QMouseEvent event(type, at, to.mapToGlobal(QPointF(at)), changed, held, Qt::NoModifier);
        QApplication::sendEvent(&to, &event);
    };
    const auto drag = [&](QWidget& widget, const QPoint& from) {
        EXPECT_TRUE(returnsAtOnce([&] {
            send(widget, QEvent::MouseButtonPress, from);
            send(widget, QEvent::MouseMove, from + QPoint(30, 0));
            send(widget, QEvent::MouseMove, from + QPoint(60, 2));
            send(widget, QEvent::MouseButtonRelease, from + QPoint(60, 2));
        })) << nameOf(widget);
    };
    int texts = 0;
    for (QLineEdit* line : window->findChildren<QLineEdit*>()) {
        line->selectAll();
        drag(*line, QPoint(line->width() - 12, line->height() / 2));
        EXPECT_FALSE(line->acceptDrops());
        ++texts;
    }
    EXPECT_GT(texts, 19);
    auto* text = window->findChild<TextView*>();
    text->selectAll();
    drag(*text->viewport(), QPoint(30, 20));
}

TEST_F(ContextMenus, SpinBoxTakesAWheelOnlyWithTheFocus) {
    auto* box = find<SpinBox>("spnIntSec");
    QApplication::processEvents();
    QApplication::setActiveWindow(box->window());
    find("cmdForm")->setFocus();
    const auto wheel = [&] {
        QWheelEvent event(QPointF(5, 5), box->mapToGlobal(QPointF(5, 5)), {}, {0, 120}, Qt::NoButton,
                          Qt::NoModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(box, &event);
        return box->value();
    };
    const int before = box->value();
    EXPECT_EQ(wheel(), before);
    EXPECT_FALSE(box->hasFocus());
    box->setFocus();
    EXPECT_EQ(wheel(), before + 1);
}

} // namespace
} // namespace drx9
