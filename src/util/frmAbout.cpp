#include "util/frmAbout.h"
#include "util/ProgramName.h"

#include "BuildDate.h"
#include "controls/AccessibleRoles.h"
#include "controls/AppIcon.h"
#include "controls/TextView.h"
#include "controls/Theme.h"

#include <QCoreApplication>
#include <QDate>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QPainter>
#include <QPushButton>
#include <QScreen>
#include <QSysInfo>
#include <QVBoxLayout>

namespace drx9 {

namespace {
constexpr int kWidth = 452;
constexpr int kLicenceHeight = 110;
constexpr int kIcon = 60;

QString buildDate() {
    const QDate date = QDate::fromString(QString::fromLatin1(DRX9_BUILD_DATE), Qt::ISODate);
    return QLocale().toString(date, QLocale::LongFormat);
}

QString licences() {
    return QStringLiteral("<p>Licence: GNU General Public License, version 3 or later. It comes without any "
                          "warranty. Its text: https://www.gnu.org/licenses/gpl-3.0.html</p>"
                          "<p>Qt %1: GNU Lesser General Public License, version 3. "
                          "Its text: https://www.gnu.org/licenses/lgpl-3.0.html</p>")
        .arg(QString::fromLatin1(qVersion()));
}

/// The mark, drawn again at whatever scale the screen has.
class IconLabel : public QWidget {
public:
    explicit IconLabel(QWidget* parent)
        : QWidget(parent) {
        setAccessibleRole(*this, QAccessible::Graphic); // without a name: readers pass it over
        setFixedSize(kIcon, kIcon);
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        paintAppIcon(painter, rect());
    }
};

QString systemInfo(const QStringList& facts) {
    QStringList escaped;
    for (const QString& fact : facts) {
        escaped += fact.toHtmlEscaped();
    }
    QStringList screens;
    for (const QScreen* screen : QGuiApplication::screens()) {
        const QSizeF pixels = QSizeF(screen->size()) * screen->devicePixelRatio();
        screens += QStringLiteral("%1 x %2 at %3 %")
                       .arg(pixels.width())
                       .arg(pixels.height())
                       .arg(100 * screen->devicePixelRatio());
    }
    return QStringLiteral("<p>%1 %2, %3<br>%4, %5, kernel %6 %7<br>Qt %8, %9<br>Screens: %10</p><p>%11</p>")
        .arg(QString(kProgramName), QCoreApplication::applicationVersion(), buildDate(),
             QSysInfo::prettyProductName(), QSysInfo::currentCpuArchitecture(), QSysInfo::kernelType(),
             QSysInfo::kernelVersion(), QString::fromLatin1(qVersion()), QGuiApplication::platformName())
        .arg(screens.join(QStringLiteral("; ")), escaped.join(QStringLiteral("<br>")));
}
} // namespace

frmAbout::frmAbout(const QStringList& facts, QWidget* owner)
    : Window(owner)
    , facts_(facts) {
    setObjectName(QStringLiteral("frmAbout"));
    setWindowTitle(QStringLiteral("About DRX9 Comm"));
    auto* name = new QLabel(QString(kProgramName), this);
    name->setFont(fontOfSize(font(), 20, true));
    auto* version = new QLabel(
        QStringLiteral("Version %1, %2").arg(QCoreApplication::applicationVersion(), buildDate()), this);
    auto* purpose = new QLabel(QStringLiteral("For one DRX-9 deposition monitor"), this);
    purpose->setForegroundRole(kMutedRole);
    text_ = new TextView(this);
    text_->setFixedHeight(kLicenceHeight);
    cmdSysInfo_ = new QPushButton(this);
    auto* ok = new QPushButton(QStringLiteral("OK"), this);
    cmdSysInfo_->setObjectName(QStringLiteral("cmdSysInfo"));
    cmdSysInfo_->setAutoDefault(false);
    ok->setObjectName(QStringLiteral("cmdOK"));
    ok->setToolTip(QStringLiteral("Close this window."));
    ok->setDefault(true);
    showLicences();
    connect(cmdSysInfo_, &QPushButton::clicked, this, &frmAbout::cmdSysInfo_Click);
    connect(ok, &QPushButton::clicked, this, &QWidget::close);

    auto* texts = new QVBoxLayout;
    texts->setSpacing(4);
    texts->addWidget(name);
    texts->addWidget(version);
    texts->addWidget(purpose);
    auto* head = new QHBoxLayout;
    head->setSpacing(16);
    head->addWidget(new IconLabel(this), 0, Qt::AlignVCenter);
    head->addLayout(texts, 1);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(cmdSysInfo_);
    buttons->addStretch(1);
    buttons->addWidget(ok);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(16, 16, 16, 16);
    column->setSpacing(12);
    column->setSizeConstraint(QLayout::SetFixedSize);
    column->addLayout(head);
    column->addWidget(text_);
    column->addLayout(buttons);
    text_->setMinimumWidth(kWidth - 32);
    ok->setFocus();
}

void frmAbout::cmdSysInfo_Click() {
    if (showsSystem_) {
        showLicences();
        return;
    }
    showsSystem_ = true;
    text_->setHtml(systemInfo(facts_));
    text_->setAccessibleName(QStringLiteral("System information"));
    cmdSysInfo_->setText(QStringLiteral("Licences..."));
    cmdSysInfo_->setToolTip(QStringLiteral("Show the licences again."));
}

void frmAbout::showLicences() {
    showsSystem_ = false;
    text_->setHtml(licences());
    text_->setAccessibleName(QStringLiteral("Licences"));
    cmdSysInfo_->setText(QStringLiteral("System Info..."));
    cmdSysInfo_->setToolTip(QStringLiteral("Show what to add to a report."));
}

} // namespace drx9
