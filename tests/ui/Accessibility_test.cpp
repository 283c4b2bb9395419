// What a screen reader meets in the windows: names, roles, actions, tab order, Esc.
#include "ui/UiFixture.h"

#include "app/Manual.h"
#include "controls/NoticePlate.h"
#include "films/FilmBench.h"
#include "films/frmStatus.h"

#include <QAbstractItemView>
#include <QAccessible>
#include <QComboBox>
#include <QPointer>

#include <set>

namespace drx9 {
namespace {

/// What each kind of widget is to a screen reader; the first that fits counts.
constexpr std::pair<const char*, QAccessible::Role> kRoles[] = {
    {"QPushButton", QAccessible::PushButton},
    {"QRadioButton", QAccessible::RadioButton},
    {"QCheckBox", QAccessible::CheckBox},
    {"QComboBox", QAccessible::ComboBox},
    {"QAbstractSpinBox", QAccessible::SpinBox},
    {"QLineEdit", QAccessible::EditableText},
    {"drx9::ChartControl", QAccessible::Chart},
    {"QTreeView", QAccessible::Tree},
    {"QTabBar", QAccessible::PageTabList},
    {"QTableView", QAccessible::Table},
    {"QProgressBar", QAccessible::ProgressBar},
    {"QGroupBox", QAccessible::Grouping},
    {"drx9::NoticePlate", QAccessible::AlertMessage},
    {"QLabel", QAccessible::StaticText}};

/// Shows with what is worked next.
bool later() {
    return true;
}

/// A control worked by its accessible action, and what becomes of that, at once or with a later one.
struct Work {
    const char* control;
    std::function<bool()> done = later;
    const char* value = "";
};

class Accessibility : public UiFixture {
protected:
    Accessibility() {
        FilmBench bench;
        bench.make({{"ONE"}});
        files.put("/app/Monitor.mdb", bench.bytes());
        bringUp();
        tick();
    }
    [[nodiscard]] QWidget& top() const override { return front != nullptr ? *front : *window; }
    QAccessibleInterface& interfaceOf(const char* name) {
        return *QAccessible::queryAccessibleInterface(find(name));
    }
    static std::string nameOf(const QAccessibleInterface& node) {
        return node.text(QAccessible::Name).toStdString();
    }
    /// At every node that is not passed over, from this one down.
    void look(QAccessibleInterface* node) {
        if (node == nullptr || !node->isValid()) {
            return;
        }
        if (!node->state().invisible) {
            expectSpoken(*node);
        }
        for (int i = 0; i < node->childCount(); ++i) {
            look(node->child(i));
        }
    }
    void expectSpoken(QAccessibleInterface& node) {
        said.insert(nameOf(node));
        const auto* widget = qobject_cast<QWidget*>(node.object());
        if (widget == nullptr || widget->objectName().startsWith("qt_scrollarea")) {
            return;
        }
        SCOPED_TRACE(widget->objectName().toStdString() + " " + widget->metaObject()->className());
        const auto* kind = std::find_if(std::begin(kRoles), std::end(kRoles),
                                        [&](const auto& role) { return widget->inherits(role.first); });
        EXPECT_TRUE(kind == std::end(kRoles) || node.role() == kind->second);
        EXPECT_NE(node.role(), QAccessible::NoRole);
        EXPECT_FALSE(node.childCount() == 0 && nameOf(node).empty() && node.role() == QAccessible::Client);
        if (node.role() == QAccessible::EditableText && node.state().readOnly) {
            const QString before = node.text(QAccessible::Value);
            node.setText(QAccessible::Value, "999.99");
            EXPECT_EQ(node.text(QAccessible::Value), before);
            EXPECT_EQ(widget->property("text"), before);
        }
        if (node.state().focusable) {
            EXPECT_NE(nameOf(node), "");
            EXPECT_TRUE(widget->focusProxy() != nullptr || names.insert({node.role(), nameOf(node)}).second)
                << nameOf(node);
            EXPECT_EQ(node.text(QAccessible::Description).isEmpty(),
                      widget->toolTip().isEmpty() && widget->accessibleDescription().isEmpty());
        }
    }
    static void act(QAccessibleInterface& node, const QString& action) {
        ASSERT_NE(node.actionInterface(), nullptr);
        EXPECT_TRUE(node.actionInterface()->actionNames().contains(action));
        node.actionInterface()->doAction(action);
        QTest::qWait(150); // a press is shown before it acts
    }
    void work(const Work& what) {
        using Action = QAccessibleActionInterface;
        QAccessibleInterface& node = interfaceOf(what.control);
        const QAccessible::Role role = node.role();
        if (role == QAccessible::SpinBox) {
            node.valueInterface()->setCurrentValue(QString(what.value).toInt());
        } else if (role == QAccessible::EditableText) {
            node.setText(QAccessible::Value, what.value);
        } else if (role == QAccessible::ComboBox) {
            act(node, Action::showMenuAction());
            QWidget* list = find<QComboBox>(what.control)->view();
            QTest::keyClick(list, Qt::Key_Down);
            QTest::keyClick(list, Qt::Key_Return);
        } else if (role == QAccessible::Tree) {
            act(*node.tableInterface()->cellAt(0, 1), Action::toggleAction());
        } else if (role == QAccessible::PageTabList) {
            act(*node.child(QString(what.value).toInt()), Action::pressAction());
        } else {
            act(node, role == QAccessible::PushButton ? Action::pressAction() : Action::toggleAction());
        }
        pump.runPosted();
        EXPECT_TRUE(what.done()) << what.control;
    }
    static std::string focused() {
        QWidget* at = QApplication::focusWidget();
        return at->objectName().isEmpty() ? nameOf(*QAccessible::queryAccessibleInterface(at))
                                          : at->objectName().toStdString();
    }
    /// Where Tab leads, from the first stop until it comes there again.
    std::string stopsFrom(const std::string& first) {
        find(first.c_str())->setFocus();
        std::string walked = focused();
        for (int i = 0; i < 80; ++i) {
            key(Qt::Key_Tab);
            if (focused() == first) {
                break;
            }
            walked += walked.ends_with(" " + focused()) ? "" : " " + focused(); // a page's links are one stop
        }
        return walked;
    }

    QPointer<QWidget> front; ///< where controls are looked for; null: in the main window
    std::set<std::string> said;
    std::set<std::pair<int, std::string>> names; ///< of one window's controls: no two are alike
};

TEST_F(Accessibility, EachWindowNamesAllThatItHasActsIsWalkedAndLeftByKeys) {
    WindowPlaces nowhere({});
    Manual manual(nowhere);
    const auto openEditor = [this] { charts.chart(1).openEditor(window.get()); };
    const ChartGraph& graph = charts.graph(1);
    const LinkSettings& wire = settings.link;
    const DataLogSettings& logged = settings.log;
    const auto film = [this] { return FilmBench::rowsIn(files, "/app/Monitor.mdb", "Film")[0]; };
    const auto sent = [this] { return systemPayloadB(settings.system) + systemPayloadC(settings.system); };
    const auto described = [this] { return charts.chart(1).accessibleDescription(); };
    const struct {
        const char* way; ///< the menu item, or the window
        std::string stops;
        std::vector<Work> works = {};
        std::function<void()> open = {};
    } windows[] = {
        {"main window",
         "cboFilms cmdZero cmdShutter cmdStartStop TxtData_1 oc2AvgRate",
         {{"cboFilms", [&] { return core.desk.waiting().film; }},
          {"cmdZero", [&] { return core.desk.waiting().zero; }}},
         [] {}},
        {"mnuFileLog",
         "optLog_2 cmdNew spnStartHour spnStartMin spnStartSec spnEndHour spnEndMin spnEndSec spnIntMin "
         "spnIntSec cmdForm",
         {{"optLog_0", [&] { return logged.Type == LogMode::None; }},
          {"optLog_1", [&] { return logged.Type == LogMode::Overwrite; }},
          {"optLog_2", [&] { return logged.Type == LogMode::Append; }},
          {"spnIntSec", [&] { return logged.Interval == 42; }, "42"},
          {"cmdNew", [&] { return dialogs.asked == 1; }}}},
        {"mnuSetupFilms",
         "lstDBFilms cmdAddFilm cmdDelete txtParam_5 txtParam_0 txtParam_3 txtParam_4 spnMinutes spnSeconds "
         "dbcMaterial cmdNewMat txtParam_1 txtParam_2 chkSensAvg_0 chkSensAvg_1 cmdUpload cmdDownload_0 "
         "cmdDownload_1 cmdDefaults cmdClose",
         {{"lstDBFilms", [&] { return textOf("txtParam_5") == "ONE"; }},
          {"txtParam_0", [&] { return film() == "1|ONE|Gold|90|1|0.5|60|3"; }, "90"},
          {"chkSensAvg_1", [&] { return film().back() == '1'; }}}},
        {"mnuSetupSystem",
         "spnSysParam_0 spnRateFilt spnSysParam_1 spnSysParam_2 spnSysParam_4 spnSysParam_3 spnSysParam_5 "
         "spnSysParam_6 spnXTool_1 spnXTool_2 spnXTool_3 spnXTool_4 spnXTool_5 spnXTool_6 optEtchMode_1 "
         "optRateRes_1 optFreqDisp_0 optSimMode_0 cmdRead cmdSave cmdOK",
         {{"optEtchMode_1"},
          {"spnXTool_6", later, "95"},
          {"txtRateFilt", later, "5"},
          {"cmdSave",
           [&] {
               return sent() == "B .25  0  0  1  5  100  100  100  100  100  95 C 5  6  0  10  0  100  1 ";
           }}}},
        {"mnuSetupGraphs",
         "spnSetup_3 spnSetup_4 spnSetup_5 chkYDiv spnSetup_2 chkXDiv spnSetup_0 spnSetup_1 CmdAdvanced "
         "cmdOK cmdCancel",
         {{"chkXDiv"},
          {"spnSetup_1", later, "45"},
          {"cmdOK", [&] { return !graph.XGrid_Enable() && graph.Xwide() != 300; }}}},
        {"chart editor",
         "edtYMin edtYMax edtYGrid edtYLabels edtYTicks edtYGridOn edtXGrid edtXLabels edtXTicks edtXGridOn "
         "OK Cancel qt_tabwidget_tabbar",
         {{"edtYGridOn", [&] { return !graph.YGrid_Enable(); }},
          {"edtYMax", [&] { return graph.shownYMax() == 25.5F; }, "2550"}},
         openEditor},
        {"chart editor's titles",
         "edtYTitle edtXTitle edtYFormat edtXFormat edtFontSize edtLegend OK Cancel qt_tabwidget_tabbar",
         {{"qt_tabwidget_tabbar", later, "2"},
          {"edtYTitle", [&] { return QTest::qWaitFor([&] { return described().startsWith("Left"); }, 1500); },
           "Left"}},
         openEditor},
        {"mnuSetupComm", "optComm_2 txtEAddr txtEport cmdESetup cmdFind txtSend cmdSend txtRcv cmdOK"},
        {"mnuSetupComm",
         "optComm_0 cboRS232 cboBaud cmdFind txtSend cmdSend txtRcv cmdOK",
         {{"txtEAddr", later, "10.0.0.9"},
          {"optComm_0", [&] { return wire.CommType == LinkType::Serial && wire.EAddress == "10.0.0.9"; }},
          {"cboRS232", [&] { return wire.Port == 2; }},
          {"cboBaud", [&] { return wire.Baud != 19200; }},
          {"txtSend", later, "J"},
          {"cmdSend", [&] { return textOf("txtRcv") == "DRX-9 2"; }}}},
        {"mnuSetupComm",
         "optComm_1 cboUSB cmdFind txtSend cmdSend txtRcv cmdOK",
         {{"optComm_1", [&] { return wire.CommType == LinkType::Usb; }}}},
        {"mnuHelpAbout",
         "cmdOK Licences cmdSysInfo",
         {{"cmdOK", [&] { return front == nullptr || !front->isVisible(); }}}},
        {"manual", "txtFind treContents txtPage cmdContents", {}, [&] { manual.showIndex(); }}};
    for (const auto& row : windows) {
        SCOPED_TRACE(row.way);
        const auto open = [&] {
            row.open ? row.open() : choose(row.way);
            QApplication::processEvents();
            front = QApplication::activeWindow();
        };
        open();
        ASSERT_EQ(front == window.get(), row.way == windows[0].way);
        std::for_each(row.works.begin(), row.works.end(), [this](const Work& each) { work(each); });
        if (front == nullptr || !front->isVisible()) {
            open();
        }
        names.clear();
        look(QAccessible::queryAccessibleInterface(front));
        EXPECT_EQ(stopsFrom(row.stops.substr(0, row.stops.find(' '))), row.stops);
        if (front != window.get()) {
            key(Qt::Key_Escape);
            QApplication::processEvents();
            EXPECT_TRUE(front == nullptr || !front->isVisible());
        }
        front = nullptr;
        tick();
    }
    frmStatus progressWindow(pump);
    progressWindow.ProgressShow("Reading films", ProgressOwner::MainWindow);
    look(QAccessible::queryAccessibleInterface(&progressWindow));
    for (const char* text :
         {"Film", "START", "Rate 1 (A/s)", "Interval, seconds", "Idle", "Sensor 1", "Reading films"}) {
        EXPECT_EQ(said.count(text), 1u) << text;
    }
    EXPECT_EQ(interfaceOf("staLink").parent()->parent()->role(), QAccessible::StatusBar);
}

TEST_F(Accessibility, ANoticeChangesItsNameOnceAndItsDescriptionEachTime) {
    auto* plate = find<NoticePlate>("lblNotice");
    QAccessibleInterface& node = interfaceOf("lblNotice");
    EXPECT_TRUE(node.state().invisible && node.role() == QAccessible::AlertMessage);
    for (const char* text : {"No reply for 14 s", "No reply for 15 s"}) {
        plate->showNotice(7, QString::fromLatin1(text), {});
        EXPECT_EQ(nameOf(node), "No reply for 14 s");
        EXPECT_EQ(node.text(QAccessible::Description).toStdString(), text);
    }
    EXPECT_FALSE(node.state().invisible);
}

} // namespace
} // namespace drx9
