#include "platform/qt/QtSleepInhibitor.h"

#if defined(_WIN32)
#include <windows.h>
#elif defined(DRX9_DBUS)
#include "platform/qt/SessionBus.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QGuiApplication>
#include <QVariantMap>
#endif

namespace drx9 {

#if defined(_WIN32)

class QtSleepInhibitor::Backend {
public:
    void hold(const std::string&) {
        SetThreadExecutionState(ES_CONTINUOUS | ES_SYSTEM_REQUIRED | ES_DISPLAY_REQUIRED);
    }
    void release() { SetThreadExecutionState(ES_CONTINUOUS); }
};

#elif defined(DRX9_DBUS)

namespace {

constexpr char kScreenSaver[] = "org.freedesktop.ScreenSaver";
constexpr char kScreenSaverPath[] = "/org/freedesktop/ScreenSaver";
constexpr char kPortal[] = "org.freedesktop.portal.Desktop";
constexpr char kPortalPath[] = "/org/freedesktop/portal/desktop";
constexpr unsigned kSuspendAndIdle = 4 | 8;

} // namespace

/// What holds the machine awake is a cookie of the screen saver or a request object of the portal. Their
/// answers come later; one that comes after release() is given back at once.
class QtSleepInhibitor::Backend : public QObject {
public:
    void hold(const std::string& reason) {
        ++holding_;
        if (sessionBusStands()) {
            askScreenSaver(QString::fromStdString(reason));
        }
    }

    void release() {
        ++holding_;
        if (giveBack_.type() != QDBusMessage::InvalidMessage) {
            QDBusConnection::sessionBus().send(giveBack_);
        }
        giveBack_ = {};
    }

private:
    void askScreenSaver(const QString& reason) {
        QDBusMessage call =
            QDBusMessage::createMethodCall(kScreenSaver, kScreenSaverPath, kScreenSaver, "Inhibit");
        call << QGuiApplication::applicationDisplayName() << reason;
        whenAnswered(call, [this, reason](const QDBusMessage& answer, bool wanted) {
            if (answer.type() == QDBusMessage::ErrorMessage) {
                if (wanted) {
                    askPortal(reason);
                }
                return;
            }
            QDBusMessage back =
                QDBusMessage::createMethodCall(kScreenSaver, kScreenSaverPath, kScreenSaver, "UnInhibit");
            back << answer.arguments().value(0).toUInt();
            keepOrGiveBack(back, wanted);
        });
    }

    void askPortal(const QString& reason) {
        QDBusMessage call =
            QDBusMessage::createMethodCall(kPortal, kPortalPath, "org.freedesktop.portal.Inhibit", "Inhibit");
        call << QString() << kSuspendAndIdle << QVariantMap{{"reason", reason}};
        whenAnswered(call, [this](const QDBusMessage& answer, bool wanted) {
            if (answer.type() == QDBusMessage::ErrorMessage) {
                return;
            }
            const QString request = answer.arguments().value(0).value<QDBusObjectPath>().path();
            keepOrGiveBack(
                QDBusMessage::createMethodCall(kPortal, request, "org.freedesktop.portal.Request", "Close"),
                wanted);
        });
    }

    template<class Then>
    void whenAnswered(const QDBusMessage& call, Then then) {
        auto* watcher = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(call), this);
        const auto answered = [this, then, asked = holding_](QDBusPendingCallWatcher* done) {
            done->deleteLater();
            then(done->reply(), asked == holding_);
        };
        connect(watcher, &QDBusPendingCallWatcher::finished, this, answered);
    }

    void keepOrGiveBack(const QDBusMessage& giveBack, bool wanted) {
        if (wanted) {
            giveBack_ = giveBack;
        } else {
            QDBusConnection::sessionBus().send(giveBack);
        }
    }

    /// Counts hold() and release(), so that an answer knows whether it is still wanted.
    unsigned holding_ = 0;
    QDBusMessage giveBack_; ///< the call that lets the machine sleep again
};

#else

class QtSleepInhibitor::Backend {
public:
    void hold(const std::string&) {}
    void release() {}
};

#endif

QtSleepInhibitor::QtSleepInhibitor()
    : backend_(std::make_unique<Backend>()) {}

QtSleepInhibitor::~QtSleepInhibitor() {
    if (held_) {
        backend_->release();
    }
}

void QtSleepInhibitor::hold(const std::string& reason) {
    if (!held_) {
        backend_->hold(reason);
    }
    held_ = true;
}

void QtSleepInhibitor::release() {
    if (held_) {
        backend_->release();
    }
    held_ = false;
}

} // namespace drx9
