// SPDX-License-Identifier: MIT
// Shows the keys that are meant for the user menu, and how long Menu is to be held.
#include <QCoreApplication>
#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusReply>
#include <QDBusServiceWatcher>
#include <QTextStream>
#include <QTimer>
#include <QVariantMap>

#include <memory>

namespace {

const QString keyboardHandler = QStringLiteral("com.vantre.KeyboardHandler");
const QString path = QStringLiteral("/");
constexpr int busRetryMs = 100;

QTextStream& output()
{
    static QTextStream stream(stdout);
    return stream;
}

} // namespace

class UserMenu : public QObject
{
    Q_OBJECT

public:
    /// Connects as soon as there is a bus, and again after its end.
    void connectToBus()
    {
        // Unlike systemBus(), a connection with a name can be opened again.
        m_bus = QDBusConnection::connectToBus(QDBusConnection::SystemBus, busName);
        if (!m_bus.isConnected()) {
            retry();
            return;
        }
        m_bus.connect(QString(), QString(), QStringLiteral("org.freedesktop.DBus.Local"),
                      QStringLiteral("Disconnected"), this, SLOT(onDisconnected()));
        // The sender is part of the subscription: any process, such as a second daemon, may send this signal.
        m_bus.connect(keyboardHandler, path, keyboardHandler, QStringLiteral("notification"), this,
                      SLOT(onNotification(QVariantMap)));
        m_watcher = std::make_unique<QDBusServiceWatcher>(keyboardHandler, m_bus);
        connect(m_watcher.get(), &QDBusServiceWatcher::serviceRegistered, this, &UserMenu::askForTimes);
        connect(m_watcher.get(), &QDBusServiceWatcher::serviceUnregistered, this, &UserMenu::onAbsence);
        m_bus.interface()->isServiceRegistered(keyboardHandler) ? askForTimes() : onAbsence();
    }

public Q_SLOTS:
    void onNotification(const QVariantMap& notification)
    {
        // An action for two services is announced twice, once for each of them.
        if (notification.value(QStringLiteral("receiverId")) != QStringLiteral("UserMenu")) {
            return;
        }
        output() << notification.value(QStringLiteral("actionId")).toString();
        for (const QString& key : {QStringLiteral("firstKey"), QStringLiteral("secondKey")}) {
            if (notification.contains(key)) {
                output() << ' ' << notification.value(key).toString();
            }
        }
        output() << Qt::endl;
    }

    void onDisconnected()
    {
        output() << "The bus is not there." << Qt::endl;
        retry();
    }

private:
    void onAbsence() { output() << "The daemon is not there." << Qt::endl; }

    /// The lists may be others after a restart. An answer that is waited for would hold up the keys.
    void askForTimes()
    {
        QDBusMessage call =
            QDBusMessage::createMethodCall(keyboardHandler, path, keyboardHandler, QStringLiteral("process"));
        call.setAutoStartService(false);
        call << QVariantMap{{QStringLiteral("commandId"), QStringLiteral("GetLongKeysTimeout")},
                            {QStringLiteral("senderId"), QStringLiteral("UserMenu")}};
        auto* watcher = new QDBusPendingCallWatcher(m_bus.asyncCall(call), this);
        connect(watcher, &QDBusPendingCallWatcher::finished, this, [watcher] {
            watcher->deleteLater();
            const QDBusPendingReply<QVariantMap> reply = *watcher;
            if (reply.isError()) {
                output() << reply.error().message() << Qt::endl;
                return;
            }
            // A map or list within the response is still packed.
            const auto times = qdbus_cast<QVariantMap>(reply.value().value(QStringLiteral("keyTimeouts")));
            output() << "Menu: " << times.value(QStringLiteral("Menu")).toInt() << " ms" << Qt::endl;
        });
    }

    /// Not at once: a signal of the lost connection may be being delivered.
    void retry()
    {
        QTimer::singleShot(busRetryMs, this, [this] {
            m_watcher.reset();
            QDBusConnection::disconnectFromBus(busName);
            connectToBus();
        });
    }

    const QString busName = QStringLiteral("user menu");
    QDBusConnection m_bus{busName};
    std::unique_ptr<QDBusServiceWatcher> m_watcher;
};

int main(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    UserMenu userMenu;
    userMenu.connectToBus();
    return QCoreApplication::exec();
}

#include "user-menu.moc"
