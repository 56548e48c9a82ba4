// SPDX-License-Identifier: MIT
// Shows the keys that are meant for the user menu, and how long Menu is to be held.
#include <QCoreApplication>
#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusReply>
#include <QTextStream>
#include <QVariantMap>

namespace {

const QString keyboardHandler = QStringLiteral("com.vantre.KeyboardHandler");
const QString path = QStringLiteral("/");

QTextStream& output()
{
    static QTextStream stream(stdout);
    return stream;
}

QVariantMap process(const QVariantMap& command)
{
    QDBusMessage call =
        QDBusMessage::createMethodCall(keyboardHandler, path, keyboardHandler, QStringLiteral("process"));
    call << command;
    const QDBusReply<QVariantMap> reply = QDBusConnection::systemBus().call(call);
    if (!reply.isValid()) {
        output() << reply.error().message() << Qt::endl;
    }
    return reply.value();
}

} // namespace

class UserMenu : public QObject
{
    Q_OBJECT

public Q_SLOTS:
    void onNotification(const QVariantMap& notification)
    {
        if (notification.value(QStringLiteral("receiverId")) != QStringLiteral("UserMenu")) {
            return; // meant for another service
        }
        output() << notification.value(QStringLiteral("actionId")).toString();
        for (const QString& key : {QStringLiteral("firstKey"), QStringLiteral("secondKey")}) {
            if (notification.contains(key)) {
                output() << ' ' << notification.value(key).toString();
            }
        }
        output() << Qt::endl;
    }
};

int main(int argc, char* argv[])
{
    QCoreApplication application(argc, argv);
    UserMenu userMenu;
    QDBusConnection::systemBus().connect(keyboardHandler, path, keyboardHandler,
                                         QStringLiteral("notification"), &userMenu,
                                         SLOT(onNotification(QVariantMap)));

    const QVariantMap response = process({{QStringLiteral("commandId"), QStringLiteral("GetLongKeysTimeout")},
                                          {QStringLiteral("senderId"), QStringLiteral("UserMenu")}});
    // A map or list within the response is still packed.
    const auto times = qdbus_cast<QVariantMap>(response.value(QStringLiteral("keyTimeouts")));
    output() << "Menu: " << times.value(QStringLiteral("Menu")).toInt() << " ms" << Qt::endl;
    return QCoreApplication::exec();
}

#include "user-menu.moc"
