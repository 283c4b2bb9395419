#include "util/frmAbout.h"
#include "util/ProgramName.h"

#include "controls/AppIcon.h"
#include "controls/TextView.h"
#include "controls/Theme.h"

#include <QCoreApplication>
#include <QDate>
#include <QDialogButtonBox>
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

/// The day this was built, as the compiler gives it ("Nov  5 2026").
QString buildDate() {
    const QString compiled = QString::fromLatin1(__DATE__).simplified();
    const QDate date = QLocale::c().toDate(compiled, QStringLiteral("MMM d yyyy"));
    return QLocale().toString(date, QLocale::LongFormat);
}

QString licences() {
    return QStringLiteral("<p>Licence: GNU General Public License, version 3 or later. It comes without any "
                          "warranty.</p>"
                          "<p>Qt %1: LGPL version 3</p>")
        .arg(QString::fromLatin1(qVersion()));
}

/// The mark, drawn again at whatever scale the screen has.
class IconLabel : public QWidget {
public:
    explicit IconLabel(QWidget* parent)
        : QWidget(parent) {
        setFixedSize(kIcon, kIcon);
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        paintAppIcon(painter, rect());
    }
};

QString systemInfo() {
    QStringList screens;
    for (const QScreen* screen : QGuiApplication::screens()) {
        const QSizeF pixels = QSizeF(screen->size()) * screen->devicePixelRatio();
        screens += QStringLiteral("%1 x %2 at %3 %")
                       .arg(pixels.width())
                       .arg(pixels.height())
                       .arg(100 * screen->devicePixelRatio());
    }
    return QStringLiteral("<p>%1 %2, %3<br>%4, %5, kernel %6 %7<br>Qt %8, %9</p><p>Screens: %10</p>")
        .arg(QString(kProgramName), QCoreApplication::applicationVersion(), buildDate(),
             QSysInfo::prettyProductName(), QSysInfo::currentCpuArchitecture(), QSysInfo::kernelType(),
             QSysInfo::kernelVersion(), QString::fromLatin1(qVersion()), QGuiApplication::platformName())
        .arg(screens.join(QStringLiteral("; ")));
}
} // namespace

frmAbout::frmAbout(QWidget* owner)
    : QDialog(owner, Qt::Dialog | Qt::WindowTitleHint | Qt::WindowCloseButtonHint) {
    setObjectName(QStringLiteral("frmAbout"));
    setWindowTitle(QStringLiteral("About DRX9 Comm"));
    auto* name = new QLabel(QString(kProgramName), this);
    name->setFont(fontOfSize(font(), 20, true));
    auto* version = new QLabel(
        QStringLiteral("Version %1, %2").arg(QCoreApplication::applicationVersion(), buildDate()), this);
    auto* purpose = new QLabel(QStringLiteral("For one DRX-9 deposition monitor"), this);
    purpose->setForegroundRole(kMutedRole);
    auto* text = new TextView(this);
    text->setHtml(licences());
    text->setAccessibleName(QStringLiteral("Licences"));
    text->setFixedHeight(kLicenceHeight);
    auto* info = new QPushButton(QStringLiteral("System Info..."), this);
    auto* ok = new QPushButton(QStringLiteral("OK"), this);
    info->setObjectName(QStringLiteral("cmdSysInfo"));
    ok->setObjectName(QStringLiteral("cmdOK"));
    info->setAutoDefault(false);
    ok->setDefault(true);
    connect(info, &QPushButton::clicked, text, [text] {
        text->setHtml(systemInfo());
        text->setAccessibleName(QStringLiteral("System information"));
    });
    connect(ok, &QPushButton::clicked, this, &QDialog::close);

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
    buttons->addWidget(info);
    buttons->addStretch(1);
    buttons->addWidget(ok);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(16, 16, 16, 16);
    column->setSpacing(12);
    column->setSizeConstraint(QLayout::SetFixedSize);
    column->addLayout(head);
    column->addWidget(text);
    column->addLayout(buttons);
    text->setMinimumWidth(kWidth - 32);
    ok->setFocus();
}

} // namespace drx9
