// SPDX-License-Identifier: MIT
#include "tests/delivery/target/TargetDevice.h"

#include "simulator/script/ObservationText.h"
#include "tests/delivery/target/Unit.h"

#include <QDir>

#include <sys/stat.h>

namespace {

const QString busAddress = QStringLiteral("unix:path=/run/dbus/system_bus_socket");
const QString keyListFolder = QStringLiteral("/var/lib/keyboard-handler");
const QString configuration = QStringLiteral("/var/lib/configuration-manager/configuration.json");
const QString panelFifo = QStringLiteral("/run/embosser-panel");
const QString consoleFifo = QStringLiteral("/run/target-test/console");
const QString readinessFile = QStringLiteral("/run/service-watcher/keyboard-handler");
const QString stateControl = QStringLiteral(KEYBOARD_HANDLER_BUS_PREFIX ".StateControl");

bool write(const QString& path, const QByteArray& content)
{
    QDir().mkpath(QFileInfo(path).path());
    // The existing file may be a link.
    QFile::remove(path);
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
}

bool openFifo(QFile& file, const QString& path)
{
    file.setFileName(path);
    return file.open(QIODevice::ReadWrite | QIODevice::ExistingOnly | QIODevice::Unbuffered);
}

QMap<QString, QByteArray> readAll(const QString& folder)
{
    QMap<QString, QByteArray> files;
    const QStringList names = QDir(folder).entryList({QStringLiteral("*.json")}, QDir::Files);
    for (const QString& name : names) {
        QFile file(QDir(folder).filePath(name));
        if (file.open(QIODevice::ReadOnly)) {
            files.insert(name, file.readAll());
        }
    }
    return files;
}

} // namespace

TargetDevice::TargetDevice(QObject* parent) : QObject(parent), m_bus(busAddress) {}

bool TargetDevice::connectAll()
{
    connectMonitor();
    QDir().mkpath(QFileInfo(consoleFifo).path());
    mkfifo(QFile::encodeName(consoleFifo).constData(), S_IRUSR | S_IWUSR);
    m_installedKeyLists = readAll(keyListFolder);
    restartObserving();
    return !m_installedKeyLists.isEmpty() && openFifo(m_console, consoleFifo) &&
           openFifo(m_panel, panelFifo) && m_bus.get().isConnected() && m_monitor.start();
}

bool TargetDevice::setKeyLists(const QMap<QString, QByteArray>& files)
{
    const QMap<QString, QByteArray>& lists = files.isEmpty() ? m_installedKeyLists : files;
    bool written = true;
    for (auto list = lists.begin(); list != lists.end(); ++list) {
        written = write(keyListFolder + '/' + list.key(), list.value()) && written;
    }
    return written;
}

bool TargetDevice::setModel(const QString& model)
{
    return write(configuration, QStringLiteral("{\"model\": \"%1\"}\n").arg(model).toUtf8());
}

void TargetDevice::setInitialState(const QString& state)
{
    callStateHandler(QStringLiteral("setState"), state);
}

bool TargetDevice::giveDaemonConsole()
{
    return write(QStringLiteral("/run/systemd/system/keyboard-handler.service.d/console.conf"),
                 "[Service]\nStandardInput=file:" + consoleFifo.toUtf8() + '\n') &&
           Unit::control({QStringLiteral("daemon-reload")});
}

bool TargetDevice::isReady()
{
    return QFile::exists(readinessFile);
}

void TargetDevice::plug(int device)
{
    commandPanel(QStringLiteral("plug %1").arg(device));
}

void TargetDevice::unplug(int device)
{
    commandPanel(QStringLiteral("unplug %1").arg(device));
}

bool TargetDevice::isPlugged(int device)
{
    return QFile::exists(QStringLiteral("/dev/input/event%1").arg(device));
}

void TargetDevice::press(int device, const QString& key)
{
    commandPanel(QStringLiteral("press %1 %2").arg(device).arg(key));
}

void TargetDevice::release(int device, const QString& key)
{
    commandPanel(QStringLiteral("release %1 %2").arg(device).arg(key));
}

void TargetDevice::record(int, const RawRecord&) {}

void TargetDevice::setState(const QString& state)
{
    callStateHandler(QStringLiteral("changeState"), state);
}

/// The target's stand-ins are units, which tests stop directly.
void TargetDevice::setService(const ServiceChange& change)
{
    qFatal("Scripts cannot stop %s on the target.", qPrintable(change.service));
}

void TargetDevice::sendCommand(const QVariantMap& command)
{
    m_client.send(command, KeyboardClient::defaultTimeout);
}

void TargetDevice::typeLine(const QString& line)
{
    m_console.write(line.toUtf8() + '\n');
}

void TargetDevice::restartObserving()
{
    m_journal.takeLines();
    m_actions.clear();
    m_log.clear();
    m_clock.start();
}

Observations TargetDevice::observations()
{
    const QStringList lines = m_journal.takeLines();
    for (const QString& line : lines) {
        m_log.append({std::chrono::milliseconds(m_clock.elapsed()), ObservationText::logLine(line)});
    }
    return m_actions + m_log;
}

void TargetDevice::observe(const QString& text)
{
    m_actions.append({std::chrono::milliseconds(m_clock.elapsed()), text});
}

void TargetDevice::connectMonitor()
{
    m_monitor.setClient(m_bus.get().baseService());
    connect(&m_monitor, &BusMonitor::announced, this, [this](const QVariantMap& notification) {
        observe(ObservationText::announcement(notification));
        Q_EMIT announced(notification);
    });
    connect(&m_monitor, &BusMonitor::spoken, this,
            [this](const QVariantMap& request) { observe(ObservationText::speech(request)); });
    connect(&m_monitor, &BusMonitor::speechCancelled, this,
            [this] { observe(ObservationText::cancellation()); });
    connect(&m_monitor, &BusMonitor::answered, this,
            [this](const QVariantMap& response) { observe(ObservationText::answer(response)); });
    connect(&m_monitor, &BusMonitor::refused, this, [this](const QString& error) {
        observe(ObservationText::answer({{QStringLiteral("busError"), error}}));
    });
}

void TargetDevice::commandPanel(const QString& statement)
{
    m_panel.write(statement.toUtf8() + '\n');
}

void TargetDevice::callStateHandler(const QString& method, const QString& state)
{
    QDBusMessage call =
        QDBusMessage::createMethodCall(stateControl, QStringLiteral("/control"), stateControl, method);
    call << state;
    m_bus.get().call(call);
}
