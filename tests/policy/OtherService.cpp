// SPDX-License-Identifier: MIT
// A service that answers every command, under the bus name of its argument.
#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QVariantMap>

namespace {

class OtherService : public QDBusVirtualObject
{
public:
    QString introspect(const QString& path) const override { return path; }

    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override
    {
        return connection.send(message.createReply(QVariantMap()));
    }
};

} // namespace

int main(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    OtherService service;
    QDBusConnection bus = QDBusConnection::systemBus();
    const bool there = bus.registerVirtualObject(QStringLiteral("/"), &service) &&
                       bus.registerService(QCoreApplication::arguments().value(1));
    return there ? QCoreApplication::exec() : 1;
}
