// What a screen reader meets in the windows: names, roles, actions, tab order, Esc.
#include "ui/UiFixture.h"

#include "app/Manual.h"
#include "controls/NoticePlate.h"
#include "monitor/frmDataLog.h"
#include "util/frmAbout.h"

#include <QAccessible>
#include <QComboBox>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QRadioButton>
#include <QTabBar>

#include <set>

namespace drx9 {
namespace {

class Accessibility : public UiFixture {
protected:
    Accessibility() {
        bringUp();
        tick();
        choose("mnuFileLog");
        choose("mnuHelpAbout");
        QApplication::processEvents();
    }
    QAccessibleInterface& interfaceOf(const char* name) {
        QObject* object = window->findChild<QObject*>(QString::fromLatin1(name));
        QAccessibleInterface* found = QAccessible::queryAccessibleInterface(object);
        EXPECT_NE(found, nullptr) << name;
        return *found;
    }
    /// Every node that is not passed over, from the windows down.
    static void walk(QAccessibleInterface* node, const std::function<void(QAccessibleInterface&)>& visit) {
        if (node == nullptr || !node->isValid()) {
            return;
        }
        if (!node->state().invisible) {
            visit(*node);
        }
        for (int i = 0; i < node->childCount(); ++i) {
            walk(node->child(i), visit);
        }
    }
    void walkAll(const std::function<void(QAccessibleInterface&)>& visit) {
        for (QWidget* top :
             {static_cast<QWidget*>(window.get()), static_cast<QWidget*>(window->findChild<frmDataLog*>()),
              static_cast<QWidget*>(window->findChild<frmAbout*>())}) {
            walk(QAccessible::queryAccessibleInterface(top), visit);
        }
    }
    static void act(QAccessibleInterface& node, const QString& action) {
        ASSERT_NE(node.actionInterface(), nullptr);
        EXPECT_TRUE(node.actionInterface()->actionNames().contains(action));
        node.actionInterface()->doAction(action);
        QTest::qWait(150); // a press is shown before it acts
    }
    static std::string nameOf(const QAccessibleInterface& node) {
        return node.text(QAccessible::Name).toStdString();
    }
};

TEST_F(Accessibility, EverythingThatCanBeReachedHasANameAndARole) {
    std::set<std::string> said;
    walkAll([&](QAccessibleInterface& node) {
        const std::string object = node.object() != nullptr ? node.object()->objectName().toStdString() : "";
        const bool chart = node.object() != nullptr && object.rfind("oc2", 0) == 0;
        if (node.state().focusable && !chart) {
            EXPECT_NE(nameOf(node), "") << object;
        }
        EXPECT_NE(node.role(), QAccessible::NoRole) << object;
        said.insert(nameOf(node));
    });
    for (const char* text : {"Film", "START", "Rate 1 (A/s)", "Interval, seconds", "Idle"}) {
        EXPECT_EQ(said.count(text), 1u) << text;
    }
    EXPECT_EQ(interfaceOf("lblNotice").role(), QAccessible::AlertMessage);
    EXPECT_EQ(interfaceOf("staLink").parent()->parent()->role(), QAccessible::StatusBar);
}

/// What takes the focus under `top`, and of option buttons and tab bars the one that is chosen.
std::set<std::string> stopsUnder(const QWidget& top) {
    std::set<std::string> names;
    for (const QWidget* widget : top.findChildren<QWidget*>()) {
        const auto* radio = qobject_cast<const QRadioButton*>(widget);
        const bool part =
            widget->focusProxy() != nullptr ||
            (widget->objectName().startsWith("qt_") && qobject_cast<const QTabBar*>(widget) == nullptr);
        if (widget->isVisible() && widget->isEnabled() && (widget->focusPolicy() & Qt::TabFocus) != 0 &&
            !part && (radio == nullptr || radio->isChecked())) {
            names.insert(widget->objectName().toStdString());
        }
    }
    return names;
}

TEST_F(Accessibility, EachWindowNamesAllThatItHasAndIsWalkedAndLeftByKeys) {
    window->findChild<frmDataLog*>()->close();
    window->findChild<frmAbout*>()->close();
    WindowPlaces nowhere({});
    Manual manual(nowhere);
    const auto menu = [this](const char* name) { return std::pair(name, [this, name] { choose(name); }); };
    const std::pair<const char*, std::function<void()>> ways[] = {
        menu("mnuFileLog"),
        menu("mnuSetupFilms"),
        menu("mnuSetupSystem"),
        menu("mnuSetupComm"),
        menu("mnuSetupGraphs"),
        menu("mnuHelpAbout"),
        {"chart editor", [this] { charts.chart(1).openEditor(window.get()); }},
        {"manual", [&] { manual.showIndex(); }}};
    for (const auto& [way, open] : ways) {
        SCOPED_TRACE(way);
        open();
        QApplication::processEvents();
        QPointer<QWidget> top = QApplication::activeWindow();
        ASSERT_NE(top, window.get());
        walk(QAccessible::queryAccessibleInterface(top), [&](QAccessibleInterface& node) {
            const auto* widget = qobject_cast<QWidget*>(node.object());
            if (widget == nullptr || !node.state().focusable || widget->objectName().startsWith("qt_")) {
                return;
            }
            const std::string name = widget->objectName().toStdString();
            EXPECT_NE(nameOf(node), "") << name << " " << widget->metaObject()->className();
            EXPECT_EQ(node.text(QAccessible::Description).isEmpty(),
                      widget->toolTip().isEmpty() && widget->accessibleDescription().isEmpty())
                << name;
        });
        std::set<std::string> walked;
        for (int i = 0; i < 60; ++i) {
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
            walked.insert(QApplication::focusWidget()->objectName().toStdString());
        }
        EXPECT_EQ(walked, stopsUnder(*top));
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
        QApplication::processEvents();
        EXPECT_TRUE(top == nullptr || !top->isVisible());
        tick();
    }
}

TEST_F(Accessibility, ActionsDoWhatAClickDoes) {
    const QString press = QAccessibleActionInterface::pressAction();
    const QString toggle = QAccessibleActionInterface::toggleAction();
    for (const auto& [name, mode] : {std::pair{"optLog_0", LogMode::None},
                                     {"optLog_1", LogMode::Overwrite},
                                     {"optLog_2", LogMode::Append}}) {
        act(interfaceOf(name), toggle);
        EXPECT_EQ(settings.log.Type, mode) << name;
    }
    interfaceOf("spnIntSec").valueInterface()->setCurrentValue(42);
    EXPECT_EQ(settings.log.Interval, 42);
    act(interfaceOf("cmdZero"), press);
    EXPECT_TRUE(core.desk.waiting().zero);
    act(interfaceOf("cmdForm"), press);
    EXPECT_EQ(window->findChild<frmDataLog*>(), nullptr);
}

TEST_F(Accessibility, ReadOnlyTextsAreReadAndTakeNothing) {
    for (const char* name : {"TxtData_1", "TxtData_3", "txtLogFile"}) {
        QAccessibleInterface& node = interfaceOf(name);
        const QString before = find<QLineEdit>(name)->text();
        EXPECT_EQ(node.text(QAccessible::Value), before);
        node.setText(QAccessible::Value, "999.99");
        EXPECT_EQ(find<QLineEdit>(name)->text(), before);
    }
}

TEST_F(Accessibility, ANoticeChangesItsNameOnceAndItsDescriptionEachTime) {
    auto* plate = find<NoticePlate>("lblNotice");
    QAccessibleInterface& node = interfaceOf("lblNotice");
    EXPECT_TRUE(node.state().invisible);
    for (const char* text : {"No reply for 14 s", "No reply for 15 s"}) {
        plate->showNotice(7, QString::fromLatin1(text), {});
        EXPECT_EQ(nameOf(node), "No reply for 14 s");
        EXPECT_EQ(node.text(QAccessible::Description).toStdString(), text);
    }
    EXPECT_FALSE(node.state().invisible);
}

TEST_F(Accessibility, TabWalksTheDataLogAndEscClosesWindows) {
    files.append("/app/drx9.txt", "x");
    auto* dialog = window->findChild<frmDataLog*>();
    QApplication::setActiveWindow(dialog);
    find<QWidget>("cmdView")->setEnabled(true);
    find<QRadioButton>("optLog_2")->setFocus();
    for (const char* next : {"cmdNew", "cmdView", "spnStartHour", "spnStartMin", "spnStartSec", "spnEndHour",
                             "spnEndMin", "spnEndSec", "spnIntMin", "spnIntSec", "cmdForm"}) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        EXPECT_EQ(QApplication::focusWidget()->objectName().toStdString(), next);
    }
    for (QWidget* top :
         {static_cast<QWidget*>(dialog), static_cast<QWidget*>(window->findChild<frmAbout*>())}) {
        QTest::keyClick(top, Qt::Key_Escape);
        EXPECT_FALSE(top->isVisible());
    }
}

} // namespace
} // namespace drx9
