// What a screen reader meets in the windows: names, roles, actions, tab order, Esc.
#include "ui/UiFixture.h"

#include "controls/NoticePlate.h"
#include "controls/SpinBox.h"
#include "monitor/frmDataLog.h"
#include "util/frmAbout.h"

#include <QAccessible>
#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>

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
    for (const char* text :
         {"DRX9 Comm - [Ver. 4.08]", "Film", "Zero", "START", "Rate 1 (A/s)", "Log File", "Append",
          "Interval, seconds", "Idle", "No line written yet", "About DRX9 Comm"}) {
        EXPECT_EQ(said.count(text), 1u) << text;
    }
    const struct {
        const char* name;
        QAccessible::Role role;
    } roles[] = {{"lblNotice", QAccessible::AlertMessage},  {"lblNotFound", QAccessible::StaticText},
                 {"staLink", QAccessible::StaticText},      {"mrkFilm", QAccessible::StaticText},
                 {"lblState", QAccessible::StaticText},     {"TxtData_1", QAccessible::EditableText},
                 {"txtLogFile", QAccessible::EditableText}, {"cboFilms", QAccessible::ComboBox},
                 {"spnIntSec", QAccessible::SpinBox},       {"optLog_1", QAccessible::RadioButton}};
    for (const auto& c : roles) {
        EXPECT_EQ(interfaceOf(c.name).role(), c.role) << c.name;
    }
    QAccessibleInterface* bar = interfaceOf("staLink").parent()->parent();
    EXPECT_EQ(bar->role(), QAccessible::StatusBar);
}

TEST_F(Accessibility, ActionsDoWhatAClickDoes) {
    const QString press = QAccessibleActionInterface::pressAction();
    const QString toggle = QAccessibleActionInterface::toggleAction();
    for (const auto& [name, mode] : {std::pair{"optLog_0", kLogNone}, {"optLog_1", kLogOverwrite}}) {
        act(interfaceOf(name), toggle);
        EXPECT_EQ(settings.log.Type, mode) << name;
    }
    interfaceOf("spnIntSec").valueInterface()->setCurrentValue(42);
    EXPECT_EQ(settings.log.Interval, 42);
    act(interfaceOf("cmdZero"), press);
    EXPECT_TRUE(monitor.requests().waiting().zero);
    act(interfaceOf("cmdForm"), press);
    EXPECT_EQ(window->findChild<frmDataLog*>(), nullptr);
    walk(QAccessible::queryAccessibleInterface(window.get()), [&](QAccessibleInterface& node) {
        if (nameOf(node) == "View") {
            for (int i = 0; i < node.child(0)->childCount(); ++i) {
                if (nameOf(*node.child(0)->child(i)) == "Sensor Frequency Display") {
                    act(*node.child(0)->child(i), press);
                }
            }
        }
    });
    EXPECT_EQ(textOf("LblData_3"), "Freq 1 (Hz)");
}

TEST_F(Accessibility, ReadOnlyTextsAreReadAndTakeNothing) {
    for (const char* name : {"TxtData_1", "TxtData_3", "txtLogFile"}) {
        QAccessibleInterface& node = interfaceOf(name);
        const QString before = find<QLineEdit>(name)->text();
        EXPECT_TRUE(node.state().readOnly) << name;
        EXPECT_EQ(node.text(QAccessible::Value), before);
        node.setText(QAccessible::Value, "999.99");
        EXPECT_EQ(find<QLineEdit>(name)->text(), before);
        EXPECT_EQ(node.editableTextInterface(), nullptr);
        ASSERT_NE(node.textInterface(), nullptr);
        node.textInterface()->setSelection(0, 1, 3);
        EXPECT_EQ(find<QLineEdit>(name)->selectedText(), before.mid(1, 2));
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
