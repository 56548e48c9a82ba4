// SPDX-License-Identifier: MIT
#include "tests/whole/fuzz/LocalBus.h"

#include <utility>

namespace {

const QString loop = QStringLiteral("/loop");

} // namespace

LocalBus::LocalBus()
{
    QDBusConnection::systemBus().registerObject(loop, this, QDBusConnection::ExportAllSlots);
}

std::optional<QDBusMessage> LocalBus::carry(const QVariantList& arguments)
{
    send(loop, QString(), QStringLiteral("receive"), arguments);
    return std::exchange(m_received, std::nullopt);
}

QDBusMessage LocalBus::call(const QString& interface, const QString& method, const QVariantList& arguments)
{
    return send(QStringLiteral("/"), interface, method, arguments);
}

QDBusMessage LocalBus::send(const QString& path, const QString& interface, const QString& method,
                            const QVariantList& arguments)
{
    const QDBusConnection bus = QDBusConnection::systemBus();
    QDBusMessage message = QDBusMessage::createMethodCall(bus.baseService(), path, interface, method);
    message.setArguments(arguments);
    return bus.call(message);
}
