// SPDX-License-Identifier: MIT
#include <configurationmanager/ConfigurationManager.h>

#include <vantre/RegularFile.h>

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusReply>
#include <QJsonDocument>
#include <QJsonObject>

#include <chrono>

using namespace std::chrono_literals;

namespace libconfigurationmanager::detail {

namespace {

constexpr auto checkTimeout = 1000ms;
constexpr qint64 maxSize = 1024 * 1024;
const QString configurationFile = QStringLiteral("/var/lib/configuration-manager/configuration.json");

bool isServicePresent()
{
    QDBusMessage query = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("NameHasOwner"));
    query << QStringLiteral(KEYBOARD_HANDLER_BUS_PREFIX ".ConfigurationManager");
    const QDBusReply<bool> reply =
        QDBusConnection::systemBus().call(query, QDBus::Block, int(checkTimeout.count()));
    return reply.isValid() && reply.value();
}

} // namespace

ConfigurationManager::ConfigurationManager(QObject* parent) : QObject(parent) {}

void ConfigurationManager::setCheckConnection(bool check)
{
    m_checkConnection = check;
}

bool ConfigurationManager::isOrvane() const
{
    if (m_checkConnection && !isServicePresent()) {
        return false;
    }
    const QByteArray text = libvantre::readRegularFile(configurationFile, maxSize);
    const QJsonObject configuration = QJsonDocument::fromJson(text).object();
    return configuration.value(QLatin1String("model")).toString() == QLatin1String("Orvane");
}

} // namespace libconfigurationmanager::detail
