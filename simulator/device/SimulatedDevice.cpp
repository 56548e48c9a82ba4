// SPDX-License-Identifier: MIT
#include "simulator/device/SimulatedDevice.h"

#include <QEventLoop>
#include <QTimer>

namespace {

const QString daemonName = QStringLiteral("keyboard-handler");
const QStringList dependencies{QStringLiteral("state-handler"), QStringLiteral("speechd")};

} // namespace

SimulatedDevice::SimulatedDevice(const DeviceOptions& options, QObject* parent)
    : QObject(parent), m_options(options), m_folder(options), m_error(m_folder.errorString())
{
    connect(&m_panel, &Panel::written, this, &SimulatedDevice::written);
    connect(&m_daemon, &DaemonProcess::logLine, this, &SimulatedDevice::logLine);
    connect(&m_daemon, &DaemonProcess::outputLine, this, &SimulatedDevice::outputLine);
    connect(&m_daemon, &DaemonProcess::exited, this, &SimulatedDevice::daemonExited);
    connect(&m_bus, &BusDaemon::ended, this, &SimulatedDevice::busEnded);
    m_stateHandler.setInitialState(options.state);
}

SimulatedDevice::~SimulatedDevice()
{
    // Receivers of the signals may be partly destroyed.
    m_daemon.disconnect(this);
    m_bus.disconnect(this);
    m_daemon.stop();
}

bool SimulatedDevice::startServices()
{
    if (!m_error.isEmpty()) {
        return false;
    }
    for (int keyboard = 0; keyboard < Panel::keyboardCount; ++keyboard) {
        if (m_options.keyboards.at(size_t(keyboard)) &&
            !m_panel.open(keyboard, m_folder.keyboardFile(keyboard))) {
            return fail(QStringLiteral("The input device %1 cannot be opened.").arg(keyboard));
        }
    }
    if (m_options.bus && !startBus()) {
        return false;
    }
    for (const QString& dependency : dependencies) {
        m_folder.setReady(dependency, m_options.dependenciesReady);
    }
    return m_folder.errorString().isEmpty() || fail(m_folder.errorString());
}

bool SimulatedDevice::startDaemon()
{
    const QString error = m_daemon.start(m_folder, m_options);
    return error.isEmpty() || fail(error);
}

bool SimulatedDevice::isReady() const
{
    return m_folder.isReady(daemonName);
}

qint64 SimulatedDevice::pendingInput() const
{
    return m_panel.pending(0) + m_panel.pending(1) + m_daemon.pendingInput();
}

bool SimulatedDevice::restartBus()
{
    m_client.reset();
    m_speech.reset();
    m_connection.reset();
    m_stateHandler.disappear();
    m_bus.stop();
    return startBus();
}

QVariantMap SimulatedDevice::request(const QVariantMap& command)
{
    QVariantMap response;
    QEventLoop loop;
    connect(this, &SimulatedDevice::answered, &loop, [&](const QVariantMap& answer) {
        response = answer;
        loop.quit();
    });
    connect(this, &SimulatedDevice::commandFailed, &loop, &QEventLoop::quit);
    QTimer::singleShot(0, &loop, [&] { send(command, KeyboardClient::noTimeout); });
    loop.exec();
    return response;
}

void SimulatedDevice::setState(const QString& state)
{
    if (m_stateHandlerCondition == ServiceChange::Condition::Running) {
        m_stateHandler.changeState(state);
    } else {
        m_stateHandler.setInitialState(state);
    }
}

void SimulatedDevice::setService(const ServiceChange& change)
{
    if (!m_connection) {
        return;
    }
    if (change.service == ServiceChange::stateHandler) {
        setStateHandler(change.condition);
    } else {
        setSpeechDaemon(change.condition);
    }
}

void SimulatedDevice::send(const QVariantMap& command, int timeout)
{
    if (m_client) {
        m_client->send(command, timeout);
    } else {
        Q_EMIT commandFailed(QDBusError(QDBusError::Disconnected, QStringLiteral("The bus is not running.")));
    }
}

bool SimulatedDevice::startBus()
{
    const QString error = m_bus.start(m_folder, m_options.namePolicy);
    if (!error.isEmpty()) {
        return fail(error);
    }
    m_connection = std::make_unique<BusConnection>(m_bus.address());
    m_speech = std::make_unique<SpeechDaemonStandIn>(m_connection->get());
    m_client = std::make_unique<KeyboardClient>(m_connection->get());
    connectPeers();
    if (!m_client->listen() || (m_options.speechDaemon && !m_speech->appear()) ||
        (m_options.stateHandler && !m_stateHandler.appear(m_bus.address()))) {
        return fail(QStringLiteral("The services cannot connect to the bus: ") +
                    m_connection->get().lastError().message());
    }
    for (auto it = m_options.services.begin(); it != m_options.services.end(); ++it) {
        setService({it.key(), it.value()});
    }
    return true;
}

void SimulatedDevice::connectPeers()
{
    connect(m_speech.get(), &SpeechDaemonStandIn::spoken, this, &SimulatedDevice::spoken);
    connect(m_speech.get(), &SpeechDaemonStandIn::cancelled, this, &SimulatedDevice::speechCancelled);
    connect(m_client.get(), &KeyboardClient::announced, this, &SimulatedDevice::announced);
    connect(m_client.get(), &KeyboardClient::answered, this, &SimulatedDevice::answered);
    connect(m_client.get(), &KeyboardClient::failed, this, &SimulatedDevice::commandFailed);
}

void SimulatedDevice::setStateHandler(ServiceChange::Condition condition)
{
    using Condition = ServiceChange::Condition;
    m_stateHandler.setBehaviour(condition == Condition::Silent ? StateHandlerStandIn::Behaviour::StaysSilent
                                                               : StateHandlerStandIn::Behaviour::Answers);
    if (condition == Condition::Stopped) {
        m_stateHandler.disappear();
    } else if (m_stateHandlerCondition == Condition::Stopped) {
        m_stateHandler.appear(m_bus.address());
    }
    m_stateHandlerCondition = condition;
}

void SimulatedDevice::setSpeechDaemon(ServiceChange::Condition condition)
{
    m_speech->setSilent(condition == ServiceChange::Condition::Silent);
    if (condition == ServiceChange::Condition::Stopped) {
        dropSpeech();
    } else {
        restoreSpeech();
    }
}

bool SimulatedDevice::fail(const QString& error)
{
    m_error = error;
    return false;
}
