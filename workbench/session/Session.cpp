// SPDX-License-Identifier: MIT
#include "workbench/session/Session.h"

#include "model/KeyLists.h"
#include "simulator/device/DaemonWatch.h"
#include "simulator/device/SimulatedDevice.h"
#include "simulator/script/KeyScriptText.h"
#include "workbench/session/SessionReporter.h"

using namespace std::chrono_literals;

namespace {

constexpr auto readinessInterval = 20ms;
constexpr std::chrono::milliseconds readinessTimeout = 20s;
constexpr int maxPendingSteps = 1000;
constexpr int maxStatementsLength = 64 * 1024;
constexpr qint64 maxPendingInput = 256 * 1024;
constexpr int noClient = 0;
constexpr int replayClient = -1;

QVector<ScriptFault> fault(const QString& sentence)
{
    return {{0, sentence}};
}

} // namespace

Session::Session(const DeviceOptions& options, QObject* parent) : QObject(parent), m_setup(options)
{
    m_buildTimer.setSingleShot(true);
    connect(&m_buildTimer, &QTimer::timeout, this, &Session::build);
    connect(&m_readinessTimer, &QTimer::timeout, this, &Session::awaitReadiness);
    connect(&m_steps, &StepQueue::aboutToPlay, this, &Session::onAboutToPlay);
    connect(&m_steps, &StepQueue::finished, this, [this](int client) {
        if (client == replayClient) {
            endReplay(entry::Replay::Status::Finished);
        }
    });
}

Session::~Session()
{
    disconnectDevice();
}

QString Session::restart(const Changes& changes)
{
    const QString sentence = DeviceSetup::check(changes);
    if (sentence.isEmpty()) {
        disconnectDevice();
        m_setup.apply(changes);
        start();
    }
    return sentence;
}

DeviceOptions Session::optionsAfter(const Changes& changes) const
{
    DeviceSetup setup = m_setup;
    setup.apply(changes);
    return setup.options();
}

qint64 Session::daemonProcess() const
{
    return m_device && m_device->isRunning() ? m_device->daemon().processId() : 0;
}

QString Session::busAddress() const
{
    return m_device ? m_device->bus().address() : QString();
}

QVector<ScriptFault> Session::execute(const QString& statements, int client)
{
    if (const QString reason = unavailableReason(); !reason.isEmpty()) {
        return fault(reason);
    }
    if (statements.size() > maxStatementsLength) {
        return fault(
            QStringLiteral("The statements are longer than %1 characters.").arg(maxStatementsLength));
    }
    const ParsedScript parsed = parseKeyScriptSteps(statements);
    if (!parsed.faults.isEmpty()) {
        return parsed.faults;
    }
    if (!parsed.script.expectations.isEmpty()) {
        return fault(QStringLiteral("Expectations are allowed only in a script that is replayed."));
    }
    if (m_steps.pending() + parsed.script.steps.size() >= maxPendingSteps) {
        return fault(QStringLiteral("No more than %1 steps can be pending.").arg(maxPendingSteps));
    }
    m_steps.execute(parsed.script, client);
    return {};
}

void Session::releaseKeysOf(int client)
{
    if (client != noClient && client != replayClient) {
        m_steps.cancel(client);
    }
}

void Session::replay(const KeyScript& script)
{
    disconnectDevice();
    m_setup.apply(script);
    m_replay.emplace(script);
    start();
}

QVector<ScriptFault> Session::replay(const QString& text)
{
    const ParsedScript parsed = Replay::read(text);
    if (parsed.faults.isEmpty()) {
        replay(parsed.script);
    }
    return parsed.faults;
}

void Session::stopReplay()
{
    if (m_replay) {
        endReplay(entry::Replay::Status::Stopped);
    }
}

void Session::restartRecording()
{
    const bool isUnused = m_status == Status::Ready && !m_recording.hasSteps();
    if (isUnused && !m_replay) {
        beginRecording();
    } else {
        restart({});
    }
}

bool Session::isAnswering() const
{
    return !m_watch || m_watch->isAnswering();
}

void Session::start()
{
    m_clock.start();
    m_reason.clear();
    m_status = Status::Starting;
    report();
    // Deferred, because the caller may be a slot of the device that build() deletes.
    m_buildTimer.start(0);
}

void Session::build()
{
    deleteDevice();
    m_device = std::make_unique<SimulatedDevice>(m_setup.options());
    m_events = std::make_unique<SessionReporter>(
        *m_device, state(), model::KeyLists::read(keyLists(), model() == QLatin1String("Orvane")));
    connect(m_events.get(), &SessionReporter::happened, this, &Session::add);
    connect(m_events.get(), &SessionReporter::observed, this, &Session::onObserved);
    connect(m_device.get(), &SimulatedDevice::daemonExited, this,
            [this](int status) { end(DaemonProcess::describeExit(status)); });
    connect(m_device.get(), &SimulatedDevice::busEnded, this,
            [this] { end(QStringLiteral("The bus has ended.")); });
    m_startClock.start();
    if (m_device->start()) {
        m_readinessTimer.start(readinessInterval);
    } else {
        end(m_device->errorString());
    }
}

void Session::awaitReadiness()
{
    if (m_device->isReady()) {
        becomeReady();
    } else if (m_startClock.hasExpired(readinessTimeout.count())) {
        end(QStringLiteral("The daemon did not become ready."));
    }
}

void Session::becomeReady()
{
    m_readinessTimer.stop();
    m_steps.setTarget(m_device.get());
    m_status = Status::Ready;
    watchDaemon();
    report();
    // A receiver of the report may have restarted the device.
    if (m_status == Status::Ready) {
        beginRecording();
    }
    if (m_status == Status::Ready && m_replay) {
        beginReplay();
    }
}

void Session::end(const QString& reason)
{
    disconnectDevice();
    m_reason = reason;
    m_status = Status::Ended;
    report();
    QTimer::singleShot(0, this, [this] {
        if (m_status == Status::Ended) {
            deleteDevice();
        }
    });
}

void Session::disconnectDevice()
{
    m_buildTimer.stop();
    m_readinessTimer.stop();
    m_recording.stop();
    m_steps.setTarget(nullptr);
    unwatchDaemon();
    if (m_events) {
        m_events->disconnect(this);
        m_device->disconnect(this);
    }
    stopReplay();
}

void Session::deleteDevice()
{
    m_events.reset();
    m_device.reset();
}

void Session::report()
{
    add(entry::Device{m_status, model(), state(), m_reason});
}

QString Session::unavailableReason() const
{
    switch (m_status) {
    case Status::Starting:
        return QStringLiteral("The device is starting.");
    case Status::Ended:
        return m_reason.isEmpty() ? QStringLiteral("The device has not been started.") : m_reason;
    case Status::Ready:
        break;
    }
    if (m_replay) {
        return QStringLiteral("A script is being replayed.");
    }
    const bool isStuck = m_device->pendingInput() > maxPendingInput;
    return isStuck ? QStringLiteral("The daemon does not read its input.") : QString();
}

void Session::onAboutToPlay(const ScriptStep& step)
{
    if (step.kind == ScriptStep::Kind::State) {
        m_setup.setState(step.text);
    } else if (step.kind == ScriptStep::Kind::Service) {
        m_setup.setService(step.service);
    }
    m_recording.add(step);
    m_events->noteStep(step);
    watchRecording();
}

void Session::onObserved(const QString& text)
{
    m_recording.observe(text);
    watchRecording();
}

std::chrono::milliseconds Session::now() const
{
    return std::chrono::milliseconds(m_clock.isValid() ? m_clock.elapsed() : 0);
}

void Session::add(const SessionEvent& event)
{
    const bool wasTesting = m_facts.isTesting();
    m_facts.note(event);
    Q_EMIT added({++m_lastId, now(), event});
    if (m_facts.isTesting() != wasTesting) {
        add(entry::KeyboardTest{m_facts.isTesting()});
    }
}

void Session::beginRecording()
{
    if (m_recording.hasSteps()) {
        m_formerRecording = m_recording;
    }
    m_recording.begin(model(), state(), keyLists(), m_setup.options().services);
    add(entry::Recording{false, hasFormerRecording()});
}

void Session::watchRecording()
{
    if (m_recording.takeFullFlag()) {
        add(entry::Recording{true, hasFormerRecording()});
    }
}

void Session::watchDaemon()
{
    m_watch = new DaemonWatch(m_device->bus().address(), this);
    connect(m_watch, &DaemonWatch::changed, this,
            [this](bool isAnswering) { add(entry::Daemon{isAnswering}); });
}

void Session::unwatchDaemon()
{
    if (m_watch) {
        m_watch->disconnect(this);
        m_watch->deleteLater(); // the caller may be a slot of its signal
        m_watch = nullptr;
    }
}

void Session::beginReplay()
{
    m_replay->observe(*m_device);
    m_steps.play(m_replay->script(), replayClient);
    add(m_replay->entryOf(entry::Replay::Status::Playing));
}

void Session::endReplay(entry::Replay::Status status)
{
    const entry::Replay end = m_replay->entryOf(status);
    // Reset first, because a receiver of the following entries may start another replay.
    m_replay.reset();
    m_steps.cancel(replayClient);
    add(end);
}
