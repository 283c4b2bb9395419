#include "platform/qt/AppearancePortal.h"

#ifdef DRX9_DBUS
#include "platform/qt/SessionBus.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusVariant>
#include <QObject>
#endif

namespace drx9 {

#ifdef DRX9_DBUS

namespace {
const QString kService = QStringLiteral("org.freedesktop.portal.Desktop");
const QString kPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString kInterface = QStringLiteral("org.freedesktop.portal.Settings");
const QString kNamespace = QStringLiteral("org.freedesktop.appearance");
const QString kKey = QStringLiteral("color-scheme");

/// The answer to "Read" is wrapped twice.
std::optional<bool> wishIn(QVariant value) {
    while (value.canConvert<QDBusVariant>()) {
        value = value.value<QDBusVariant>().variant();
    }
    const unsigned scheme = value.toUInt(); // 0 no wish, 1 dark, 2 light
    return scheme == 1 || scheme == 2 ? std::optional(scheme == 1) : std::nullopt;
}
} // namespace

class AppearancePortal::Backend : public QObject {
    Q_OBJECT
public:
    explicit Backend(Told told)
        : told_(std::move(told)) {
        QDBusConnection bus = QDBusConnection::sessionBus();
        bus.connect(kService, kPath, kInterface, QStringLiteral("SettingChanged"), this,
                    SLOT(changed(QString, QString, QDBusVariant)));
        QDBusMessage read =
            QDBusMessage::createMethodCall(kService, kPath, kInterface, QStringLiteral("Read"));
        read << kNamespace << kKey;
        auto* watcher = new QDBusPendingCallWatcher(bus.asyncCall(read), this);
        connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
            const QDBusMessage answer = watcher->reply();
            watcher->deleteLater();
            if (answer.type() == QDBusMessage::ReplyMessage) {
                told_(wishIn(answer.arguments().value(0)));
            }
        });
    }

public slots:
    void changed(const QString& group, const QString& key, const QDBusVariant& value) {
        if (group == kNamespace && key == kKey) {
            told_(wishIn(value.variant()));
        }
    }

private:
    Told told_;
};

AppearancePortal::AppearancePortal(Told told) {
    if (sessionBusStands()) {
        backend_ = std::make_unique<Backend>(std::move(told));
    }
}

#else

class AppearancePortal::Backend {};

AppearancePortal::AppearancePortal(Told) {}

#endif

AppearancePortal::~AppearancePortal() = default;

} // namespace drx9

#ifdef DRX9_DBUS
#include "AppearancePortal.moc"
#endif
