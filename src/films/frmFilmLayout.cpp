// The film window's controls and their arrangement.
#include "films/frmFilm.h"

#include "controls/MarkLabel.h"
#include "controls/SpinBox.h"
#include "controls/Theme.h"
#include "controls/TypedField.h"
#include "films/controls/FilmList.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QTimer>

namespace drx9 {

namespace {
constexpr int kMargin = 16;
constexpr int kGap = 8;
constexpr int kGroupGap = 12;
constexpr int kControlHeight = 28;
constexpr int kNameWidth = 138;
constexpr int kNumberWidth = 112;
constexpr int kMaterialWidth = 172; // 15 characters in capitals
constexpr int kWidestCaption = 2;   // row of "Final Thickness"
constexpr int kSpinnerWidth = 60;
constexpr int kButtonWidth = 128;
constexpr int kCloseWidth = 92;
constexpr QSize kLeast{859, 544};
constexpr QSize kStart{900, 640};
constexpr QSize kFrame{16, 48}; ///< what the desktop may put around a window

QLabel* label(const char* text, QWidget* buddy) {
    auto* made = new QLabel(QString::fromLatin1(text), buddy->parentWidget());
    made->setBuddy(buddy);
    return made;
}

QLabel* unit(const QString& text, QWidget* parent) {
    auto* made = new QLabel(text, parent);
    made->setForegroundRole(kMutedRole);
    return made;
}

QGridLayout* gridIn(QGroupBox* group) {
    auto* grid = new QGridLayout(group);
    grid->setContentsMargins(kGroupGap, kGroupGap, kGroupGap, kGroupGap);
    grid->setHorizontalSpacing(kGap);
    grid->setVerticalSpacing(kGap);
    grid->setColumnStretch(3, 1);
    return grid;
}
} // namespace

void frmFilm::buildControls() {
    setObjectName(QStringLiteral("frmFilm"));
    setWindowTitle(QStringLiteral("Film Setup"));
    menu_ = buildMenu();
    content_ = new QWidget(this);
    auto* outer = new QVBoxLayout(this);
    outer->setContentsMargins(0, 0, 0, 0);
    outer->setMenuBar(menu_);
    outer->addWidget(content_);
    auto* column = new QVBoxLayout(content_);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    QWidget* body = buildBody();
    auto* view = new QScrollArea(content_); // scrolls only where the screen is smaller than the window
    view->setFrameShape(QFrame::NoFrame);
    view->setWidgetResizable(true);
    view->setFocusPolicy(Qt::NoFocus);
    view->setWidget(body);
    column->addWidget(view, 1);
    QLayout* bottom = buildBottom();
    bottom->setContentsMargins(kMargin, kGroupGap, kMargin, kMargin);
    column->addLayout(bottom);
    body->setMinimumSize(body->minimumSizeHint());
    fitScreen(body->minimumSize() + QSize(0, menu_->sizeHint().height() + bottom->minimumSize().height()));
    setTabOrders();
}

/// What scrolls where there is no room.
QWidget* frmFilm::buildBody() {
    auto* body = new QWidget(content_);
    auto* row = new QHBoxLayout(body);
    row->setContentsMargins(kMargin, kMargin, kMargin, 0);
    row->setSpacing(kMargin);
    row->addLayout(buildList());
    auto* middle = new QVBoxLayout;
    middle->setSpacing(kGroupGap);
    middle->addWidget(film_ = buildFilm());
    middle->addWidget(buildMaterial());
    middle->addWidget(sensors_ = buildSensors());
    middle->addStretch(1);
    row->addLayout(middle, 1);
    auto* right = new QVBoxLayout;
    right->addWidget(buildInstrument());
    right->addStretch(1);
    row->addLayout(right);
    return body;
}

void frmFilm::fitScreen(const QSize& least) {
    const QSize room = screen()->availableSize() - kFrame;
    setMinimumSize(kLeast.expandedTo(least).boundedTo(room));
    resize(kStart.expandedTo(least).boundedTo(room));
}

QMenuBar* frmFilm::buildMenu() {
    auto* bar = new QMenuBar(this);
    QMenu* file = bar->addMenu(QStringLiteral("&File"));
    file->setObjectName(QStringLiteral("mnuFile"));
    const auto add = [&](const char* name, const char* text, void (frmFilm::*handler)()) {
        QAction* action = file->addAction(QString::fromLatin1(text), this, handler);
        action->setObjectName(QString::fromLatin1(name));
    };
    add("mnuFileOpen", "&Open Database", &frmFilm::mnuFileOpen_Click);
    add("mnuFileSave", "Save &As Database", &frmFilm::mnuFileSave_Click);
    return bar;
}

QPushButton* frmFilm::button(const char* name, const char* caption, const char* toolTip) {
    auto* made = new QPushButton(QString::fromLatin1(caption), content_);
    made->setObjectName(QString::fromLatin1(name));
    made->setToolTip(QString::fromLatin1(toolTip));
    made->setAccessibleDescription(made->toolTip());
    made->setAutoDefault(false);
    made->setMinimumHeight(kControlHeight);
    connect(made, &QPushButton::pressed, this, [this] { pressRefused_ = refused_; });
    // Let go beside the button it is no click; a click comes behind this signal, in the same event.
    connect(made, &QPushButton::released, this,
            [this] { QTimer::singleShot(0, this, [this] { pressRefused_ = false; }); });
    return made;
}

QLayout* frmFilm::buildList() {
    list_ = new FilmList(content_);
    connect(list_, &FilmList::chosen, this, &frmFilm::lstDBFilms_Click);
    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(kGap);
    QPushButton* cmdAddFilm = button("cmdAddFilm", "&Add Film", "Create a new material.");
    connect(cmdAddFilm, &QPushButton::clicked, this, &frmFilm::cmdAddFilm_Click);
    buttons->addWidget(cmdAddFilm);
    buttons->addWidget(button("cmdDelete", "&Delete Film", "Create a new material.")); // no action: kept
    auto* column = new QVBoxLayout;
    column->setSpacing(kGap);
    column->addWidget(list_, 1);
    column->addLayout(buttons);
    return column;
}

QLineEdit* frmFilm::buildBox(FilmBox box, const char* accessible, const char* toolTip) {
    auto* made = new TypedField(content_);
    const auto index = static_cast<std::size_t>(box);
    made->setObjectName(QStringLiteral("txtParam_%1").arg(index));
    made->setAccessibleName(QString::fromLatin1(accessible));
    made->setToolTip(QString::fromLatin1(toolTip));
    made->setAccessibleDescription(made->toolTip());
    made->setMinimumHeight(kControlHeight);
    made->setFixedWidth(box == FilmBox::FilmName ? kNameWidth : kNumberWidth);
    if (box != FilmBox::FilmName) {
        made->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    }
    connect(made, &QLineEdit::textChanged, this, [this, box] { txtParam_Change(box); });
    connect(made, &QLineEdit::editingFinished, this, [this, box] { txtParam_Finished(box); });
    txtParam_[index] = made;
    return made;
}

QGroupBox* frmFilm::buildFilm() {
    auto* group = new QGroupBox(QStringLiteral("Film"), content_);
    QGridLayout* grid = gridIn(group);
    const auto row = [&](int at, const char* caption, QLineEdit* box, bool thickness) {
        box->setParent(group);
        grid->addWidget(label(caption, box), at, 0);
        auto* boxAndUnit = new QHBoxLayout;
        boxAndUnit->setSpacing(kGap);
        boxAndUnit->addWidget(box);
        boxAndUnit->addWidget(unit(thickness ? QString::fromUtf8("k\u00C5") : QString(), group), 1);
        grid->addLayout(boxAndUnit, at, 1, 1, 3);
    };
    row(0, "Film Name", buildBox(FilmBox::FilmName, "Film Name", "Edit the name of database film selection."),
        false);
    row(1, "Tooling", buildBox(FilmBox::Tooling, "Tooling", "Set film tooling."), false);
    row(kWidestCaption, "Final Thickness",
        buildBox(FilmBox::EndThick, "Final Thickness, k\xC5", "Edit final thickness setpoint."), true);
    row(3, "Thick SetPt", buildBox(FilmBox::ThickSet, "Thick SetPt, k\xC5", "Edit thickness setpoint."),
        true);
    QLayout* time = buildTime();
    grid->addLayout(time, 4, 1, 1, 3);
    grid->addWidget(label("Time SetPt", spnMinutes_), 4, 0);
    return group;
}

SpinBox* frmFilm::spinner(const char* name, const char* text, const char* accessible, int most) {
    auto* box = new SpinBox(content_);
    box->setNames(QString::fromLatin1(name), QString::fromLatin1(text), QString::fromLatin1(accessible));
    box->setRange(0, most);
    box->setLeastDigits(2);
    box->setAlignment(Qt::AlignRight);
    box->setToolTip(QStringLiteral("Time setpoint, seconds."));
    box->setMinimumHeight(kControlHeight);
    box->setFixedWidth(std::max(kSpinnerWidth, box->minimumSizeHint().width()));
    connect(box, &QSpinBox::valueChanged, this, &frmFilm::spnTime_Change);
    return box;
}

QLayout* frmFilm::buildTime() {
    auto* row = new QHBoxLayout;
    row->setSpacing(kGap);
    spnMinutes_ = spinner("spnMinutes", "txtMinutes", "Time SetPt, minutes", 99);
    spnSeconds_ = spinner("spnSeconds", "txtSeconds", "Time SetPt, seconds", 59);
    row->addWidget(spnMinutes_);
    row->addWidget(unit(QStringLiteral("min"), content_));
    row->addWidget(spnSeconds_);
    row->addWidget(unit(QStringLiteral("s"), content_));
    row->addStretch(1);
    return row;
}

QGroupBox* frmFilm::buildMaterial() {
    auto* group = new QGroupBox(QStringLiteral("Material"), content_);
    QGridLayout* grid = gridIn(group);
    grid->setColumnStretch(3, 0);
    grid->setColumnStretch(1, 1); // the combo takes what room there is
    dbcMaterial_ = new QComboBox(group);
    dbcMaterial_->setObjectName(QStringLiteral("dbcMaterial"));
    dbcMaterial_->setAccessibleName(QStringLiteral("Material"));
    dbcMaterial_->setToolTip(QStringLiteral("Select material for this film."));
    dbcMaterial_->setLineEdit(new TypedField(dbcMaterial_)); // and so can be typed in
    dbcMaterial_->setInsertPolicy(QComboBox::NoInsert);
    dbcMaterial_->setCompleter(nullptr); // a name half typed must not become another material
    dbcMaterial_->setMinimumHeight(kControlHeight);
    dbcMaterial_->setMinimumWidth(kMaterialWidth);
    dbcMaterial_->setMaxVisibleItems(20);
    dbcMaterial_->installEventFilter(this);
    dbcMaterial_->lineEdit()->setAccessibleName(dbcMaterial_->accessibleName());
    dbcMaterial_->lineEdit()->installEventFilter(this);
    connect(dbcMaterial_, &QComboBox::activated, this, &frmFilm::dbcMaterial_Change);
    connect(dbcMaterial_->lineEdit(), &QLineEdit::editingFinished, this, [this] {
        if (dbcMaterial_->lineEdit()->isModified()) {
            dbcMaterial_Change();
        }
    });
    QPushButton* cmdNewMat = button("cmdNewMat", "Add &Material", "Create a new material.");
    connect(cmdNewMat, &QPushButton::clicked, this, &frmFilm::cmdNewMat_Click);
    grid->addWidget(label("Material", dbcMaterial_), 0, 0);
    grid->addWidget(dbcMaterial_, 0, 1);
    grid->addWidget(cmdNewMat, 0, 2);
    const auto row = [&](int at, const char* caption, QLineEdit* box) {
        box->setParent(group);
        grid->addWidget(label(caption, box), at, 0);
        grid->addWidget(box, at, 1, Qt::AlignLeft);
    };
    row(1, "Density", buildBox(FilmBox::Density, "Density", "Set material density."));
    row(2, "Z Factor", buildBox(FilmBox::ZFactor, "Z Factor", "Set Material Z factor."));
    // Both groups' boxes are below each other, behind the widest caption.
    const QLayoutItem* widest =
        qobject_cast<QGridLayout*>(film_->layout())->itemAtPosition(kWidestCaption, 0);
    grid->setColumnMinimumWidth(0, widest->sizeHint().width());
    return group;
}

QGroupBox* frmFilm::buildSensors() {
    auto* group = new QGroupBox(QStringLiteral("Sensors"), content_);
    auto* row = new QHBoxLayout(group);
    row->setContentsMargins(kGroupGap, kGroupGap, kGroupGap, kGroupGap);
    row->setSpacing(24);
    for (std::size_t k = 0; k < kFilmSensors; ++k) {
        auto* box = new QCheckBox(QString::number(k + 1), group);
        box->setObjectName(QStringLiteral("chkSensAvg_%1").arg(k));
        box->setAccessibleName(QStringLiteral("Sensor %1").arg(k + 1));
        box->setToolTip(QStringLiteral("Use/Ignore sensor for this film."));
        connect(box, &QCheckBox::toggled, this, [this, k] { chkSensAvg_Click(k); }); // however it is switched
        row->addWidget(box);
        chkSensAvg_[k] = box;
    }
    row->addStretch(1);
    return group;
}

QGroupBox* frmFilm::buildInstrument() {
    auto* group = new QGroupBox(QStringLiteral("DRX-9"), content_);
    auto* column = new QVBoxLayout(group);
    column->setContentsMargins(kGroupGap, kGroupGap, kGroupGap, kGroupGap);
    column->setSpacing(kGap);
    version_ = unit({}, group);
    version_->setObjectName(QStringLiteral("lblVersion"));
    column->addWidget(version_);
    instrumentButtons_ = {button("cmdUpload", "&Upload All<-", "Read data from KTC-5."),
                          button("cmdDownload_0", "Download ->", "Send selected films to KTC-5."),
                          button("cmdDownload_1", "&Dnload &All ->", "Send all flms to KTC-5."),
                          button("cmdDefaults", "De&faults ->", "Reset DRX-9 to default values.")};
    // Its letter is the File menu's. Were it both's, that key would lead to the button, and a blank reset the
    // instrument.
    instrumentButtons_.back()->setShortcut({});
    const std::array<std::function<void()>, 4> actions{
        [this] { transfer_.upload(); }, [this] { transfer_.download(0); }, [this] { transfer_.download(1); },
        [this] { transfer_.resetToDefaults(); }};
    for (std::size_t i = 0; i < instrumentButtons_.size(); ++i) {
        QPushButton* made = instrumentButtons_[i];
        made->setMinimumWidth(kButtonWidth);
        connect(made, &QPushButton::clicked, this, [this, action = actions[i]] { transferClick(action); });
        if (i + 1 == instrumentButtons_.size()) {
            column->addSpacing(kMargin);
        }
        column->addWidget(made);
    }
    return group;
}

QLayout* frmFilm::buildBottom() {
    auto* row = new QHBoxLayout;
    row->setSpacing(kGap);
    state_ = new MarkLabel(content_);
    state_->setObjectName(QStringLiteral("lblState"));
    state_->setTwoLines();
    state_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    QPushButton* cmdClose = button("cmdClose", "&Close", "Close form.");
    cmdClose->setMinimumWidth(kCloseWidth);
    connect(cmdClose, &QPushButton::clicked, this, &QWidget::close);
    row->addWidget(state_, 1);
    row->addWidget(cmdClose);
    return row;
}

void frmFilm::setTabOrders() {
    const auto box = [this](FilmBox which) { return txtParam_[static_cast<std::size_t>(which)]; };
    const auto named = [this](const char* name) { return findChild<QWidget*>(QString::fromLatin1(name)); };
    QList<QWidget*> order{list_->focusProxy(),    named("cmdAddFilm"),   named("cmdDelete"),
                          box(FilmBox::FilmName), box(FilmBox::Tooling), box(FilmBox::EndThick),
                          box(FilmBox::ThickSet), spnMinutes_,           spnSeconds_,
                          dbcMaterial_,           named("cmdNewMat"),    box(FilmBox::Density),
                          box(FilmBox::ZFactor)};
    for (QCheckBox* sensor : chkSensAvg_) {
        order.append(sensor);
    }
    for (QPushButton* transfer : instrumentButtons_) {
        order.append(transfer);
    }
    order.append(named("cmdClose"));
    for (qsizetype i = 1; i < order.size(); ++i) {
        setTabOrder(order[i - 1], order[i]);
    }
}

} // namespace drx9
