// SPDX-License-Identifier: MIT
#include <configurationmanager/ConfigurationManager.h>

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusReply>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>

#include <chrono>

#include <fcntl.h>
#include <sys/stat.h>

using namespace std::chrono_literals;

namespace libconfigurationmanager::detail {

namespace {

constexpr auto checkTimeout = 1000ms;
constexpr off_t largestFile = 1024 * 1024;
constexpr char configurationFile[] = "/var/lib/configuration-manager/configuration.json";

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

// Opened without blocking and looked at through the descriptor: nothing but a regular file is read.
QByteArray readConfigurationFile()
{
    const int fd = ::open(configurationFile, O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    QFile file;
    if (fd == -1 || !file.open(fd, QIODevice::ReadOnly, QFileDevice::AutoCloseHandle)) {
        return {};
    }
    struct stat status = {};
    if (::fstat(fd, &status) == -1 || !S_ISREG(status.st_mode) || status.st_size > largestFile) {
        return {};
    }
    return file.read(status.st_size);
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
    const QJsonObject configuration = QJsonDocument::fromJson(readConfigurationFile()).object();
    return configuration.value(QLatin1String("model")).toString() == QLatin1String("Orvane");
}

} // namespace libconfigurationmanager::detail
