// SPDX-License-Identifier: MIT
#include "simulator/session/DeviceSession.h"

#include "simulator/device/DaemonWatch.h"
#include "simulator/device/DeviceRecorder.h"
#include "simulator/device/SimulatedDevice.h"
#include "simulator/script/KeyListJson.h"
#include "simulator/script/ScriptWords.h"
#include "simulator/script/Transcript.h"
#include "simulator/session/DeviceEvents.h"
#include "simulator/session/SessionDescription.h"

#include <algorithm>

using namespace std::chrono_literals;

namespace {

constexpr auto readinessInterval = 20ms;
constexpr std::chrono::milliseconds readinessPatience = 20s;
constexpr int mostPendingSteps = 1000;
constexpr int longestStatements = 64 * 1024;
constexpr qint64 mostPendingInput = 256 * 1024;
constexpr int longestReplay = 20'000;
/// More than any script can expect; so many need some ten megabytes.
constexpr int mostObservations = 200'000;
constexpr int mostDifferences = 1000;
constexpr int longestDifference = 500;
constexpr int nobody = 0;
constexpr int replayClient = -1;

const QString typeKey = QStringLiteral("type");
const QString statusKey = QStringLiteral("status");

QVector<ScriptFault> fault(const QString& sentence)
{
    return {{0, sentence}};
}

KeyListJson::Files overlaid(KeyListJson::Files files, const KeyListJson::Files& others)
{
    for (auto file = others.begin(); file != others.end(); ++file) {
        files.insert(file.key(), file.value());
    }
    return files;
}

KeyListJson::Files installedKeyLists(const DeviceOptions& options)
{
    const bool none = options.keyListFolder.isEmpty();
    return overlaid(none ? KeyListJson::Files() : KeyListJson::read(options.keyListFolder), options.keyLists);
}

QStringList shortened(const QStringList& differences)
{
    QStringList lines;
    for (const QString& line : differences.mid(0, mostDifferences)) {
        lines << line.left(longestDifference);
    }
    if (differences.size() > mostDifferences) {
        lines << QStringLiteral("... and %1 more").arg(differences.size() - mostDifferences);
    }
    return lines;
}

} // namespace

DeviceSession::DeviceSession(const DeviceOptions& options, QObject* parent)
    : QObject(parent), m_options(options), m_installed(options)
{
    Changes installed;
    installed.defaultKeyLists = true;
    apply(installed);
    m_buildTimer.setSingleShot(true);
    connect(&m_buildTimer, &QTimer::timeout, this, &DeviceSession::build);
    connect(&m_readinessTimer, &QTimer::timeout, this, &DeviceSession::awaitReadiness);
    connect(&m_steps, &StepQueue::stepping, this, &DeviceSession::onStepping);
    connect(&m_steps, &StepQueue::finished, this, [this](int client) {
        if (client == replayClient) {
            judgeReplay();
        }
    });
}

DeviceSession::~DeviceSession()
{
    leaveDevice();
}

void DeviceSession::start()
{
    beginStart();
}

QString DeviceSession::restart(const Changes& changes)
{
    const QString sentence = faultOf(changes);
    if (sentence.isEmpty()) {
        leaveDevice();
        apply(changes);
        beginStart();
    }
    return sentence;
}

qint64 DeviceSession::daemonProcess() const
{
    return m_device && m_device->isRunning() ? m_device->daemon().processId() : 0;
}

QString DeviceSession::busAddress() const
{
    return m_device ? m_device->bus().address() : QString();
}

QVector<ScriptFault> DeviceSession::take(const QString& statements, int client)
{
    if (const QString reason = whyNotNow(); !reason.isEmpty()) {
        return fault(reason);
    }
    if (statements.size() > longestStatements) {
        return fault(
            QStringLiteral("More than %1 characters cannot be taken at once.").arg(longestStatements));
    }
    const ParsedScript parsed = parseKeyScriptSteps(statements);
    if (!parsed.faults.isEmpty()) {
        return parsed.faults;
    }
    if (!parsed.script.expectations.isEmpty()) {
        return fault(QStringLiteral("Expectations have their place in a script that is replayed."));
    }
    if (m_steps.pending() + parsed.script.steps.size() >= mostPendingSteps) {
        return fault(QStringLiteral("More than %1 steps cannot wait for their time.").arg(mostPendingSteps));
    }
    m_steps.take(parsed.script, client);
    return {};
}

void DeviceSession::releaseKeysOf(int client)
{
    if (client != nobody && client != replayClient) {
        m_steps.drop(client);
    }
}

ParsedScript DeviceSession::readReplay(const QString& text)
{
    ParsedScript parsed = parseScriptFile(text.toUtf8());
    if (parsed.faults.isEmpty() &&
        parsed.script.steps.size() + parsed.script.expectations.size() > longestReplay) {
        parsed.faults = fault(
            QStringLiteral("More than %1 steps and expectations cannot be replayed.").arg(longestReplay));
    }
    return parsed;
}

void DeviceSession::replay(const KeyScript& script)
{
    leaveDevice();
    apply({script.model, script.keyLists(), true, script.initialState});
    m_options.services = script.services;
    m_replay = Replay{script, nullptr};
    beginStart();
}

QVector<ScriptFault> DeviceSession::replay(const QString& text)
{
    const ParsedScript parsed = readReplay(text);
    if (parsed.faults.isEmpty()) {
        replay(parsed.script);
    }
    return parsed.faults;
}

void DeviceSession::stopReplay()
{
    if (m_replay) {
        m_steps.drop(replayClient);
        endReplay(QStringLiteral("stopped"));
    }
}

void DeviceSession::restartRecording()
{
    const bool isFresh = m_status == Status::Ready && m_recording.isUntouched();
    if (isFresh && !m_replay) {
        beginRecording();
    } else {
        restart({});
    }
}

QString DeviceSession::recording(QStringList* faults) const
{
    return m_recording.toText(faults);
}

QString DeviceSession::formerRecording(QStringList* faults) const
{
    return m_formerRecording.toText(faults);
}

QJsonObject DeviceSession::description() const
{
    QJsonObject description = SessionDescription::ofVocabulary();
    const QJsonObject facts = m_facts.toJson();
    for (auto fact = facts.begin(); fact != facts.end(); ++fact) {
        description.insert(fact.key(), fact.value());
    }
    description.insert(QStringLiteral("answering"), !m_watch || m_watch->isAnswering());
    description.insert(QStringLiteral("formerRecording"), m_formerRecording.isStarted());
    description.insert(statusKey, SessionDescription::nameOf(m_status));
    description.insert(QStringLiteral("model"), m_options.model);
    description.insert(QStringLiteral("state"), m_options.state);
    description.insert(QStringLiteral("recording"), m_recording.isRunning());
    description.insert(QStringLiteral("replaying"), isReplaying());
    if (!m_reason.isEmpty()) {
        description.insert(QStringLiteral("reason"), m_reason);
    }
    return description;
}

QString DeviceSession::faultOf(const Changes& changes) const
{
    const QStringList names = changes.keyLists.keys();
    for (const QString& name : names) {
        if (!KeyListJson::fileNames().contains(name)) {
            return QStringLiteral("There is no key list \"%1\".").arg(name);
        }
    }
    const QString sentence = changes.model.isEmpty() ? QString() : ScriptWords::checkModel(changes.model);
    if (!sentence.isEmpty() || changes.state.isEmpty()) {
        return sentence;
    }
    return ScriptWords::checkState(changes.state);
}

void DeviceSession::apply(const Changes& changes)
{
    if (!changes.model.isEmpty()) {
        m_options.model = changes.model;
    }
    if (!changes.state.isEmpty()) {
        m_options.state = changes.state;
    }
    if (changes.defaultKeyLists) {
        m_options.keyListFolder.clear();
        m_options.keyLists = installedKeyLists(m_installed);
    }
    m_options.keyLists = overlaid(m_options.keyLists, changes.keyLists);
}

void DeviceSession::beginStart()
{
    m_clock.start();
    m_reason.clear();
    m_status = Status::Starting;
    report(QStringLiteral("starting"));
    // Not at once: what asked for it may have been called by the device that goes now.
    m_buildTimer.start(0);
}

void DeviceSession::build()
{
    dropDevice();
    m_device = std::make_unique<SimulatedDevice>(m_options);
    m_events = std::make_unique<DeviceEvents>(*m_device, m_options.state,
                                              KeyListJson::rowsOf(m_options.keyLists).rows);
    connect(m_events.get(), &DeviceEvents::happened, this, &DeviceSession::add);
    connect(m_events.get(), &DeviceEvents::observed, this, &DeviceSession::onObserved);
    connect(m_device.get(), &SimulatedDevice::daemonExited, this, &DeviceSession::onDaemonExited);
    connect(m_device.get(), &SimulatedDevice::busEnded, this, &DeviceSession::onBusEnded);
    m_startClock.start();
    if (m_device->start()) {
        m_readinessTimer.start(readinessInterval);
    } else {
        end(m_device->errorString());
    }
}

void DeviceSession::awaitReadiness()
{
    if (m_device->isReady()) {
        becomeReady();
    } else if (m_startClock.hasExpired(readinessPatience.count())) {
        end(QStringLiteral("The daemon does not become ready."));
    }
}

void DeviceSession::becomeReady()
{
    m_readinessTimer.stop();
    m_steps.setTarget(m_device.get());
    m_status = Status::Ready;
    watchDaemon();
    report(QStringLiteral("ready"));
    // Who is told may restart the device.
    if (m_status == Status::Ready) {
        beginRecording();
    }
    if (m_status == Status::Ready && m_replay) {
        beginReplay();
    }
}

void DeviceSession::onDaemonExited(int status)
{
    end(SessionDescription::reasonOfEnd(status));
}

void DeviceSession::onBusEnded()
{
    end(QStringLiteral("The bus has ended."));
}

void DeviceSession::end(const QString& reason)
{
    leaveDevice();
    m_reason = reason;
    m_status = Status::Ended;
    report(QStringLiteral("ended"));
    QTimer::singleShot(0, this, [this] {
        if (m_status == Status::Ended) {
            dropDevice();
        }
    });
}

void DeviceSession::leaveDevice()
{
    m_buildTimer.stop();
    m_readinessTimer.stop();
    m_recording.stop();
    m_steps.setTarget(nullptr);
    leaveDaemon();
    if (m_events) {
        m_events->disconnect(this);
        m_device->disconnect(this);
    }
    if (m_replay) {
        endReplay(QStringLiteral("stopped"));
    }
}

void DeviceSession::dropDevice()
{
    m_events.reset();
    m_device.reset();
}

void DeviceSession::report(const QString& status)
{
    QJsonObject entry{{typeKey, QStringLiteral("device")},
                      {statusKey, status},
                      {QStringLiteral("model"), m_options.model},
                      {QStringLiteral("state"), m_options.state}};
    if (!m_reason.isEmpty()) {
        entry.insert(QStringLiteral("reason"), m_reason);
    }
    add(entry);
}

QString DeviceSession::whyNotNow() const
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
    const bool isStuck = m_device->pendingInput() > mostPendingInput;
    return isStuck ? QStringLiteral("The daemon does not take what it is given.") : QString();
}

void DeviceSession::onStepping(const ScriptStep& step)
{
    if (step.kind == ScriptStep::Kind::State) {
        m_options.state = step.text;
    } else if (step.kind == ScriptStep::Kind::Service) {
        m_options.services.insert(step.service.service, step.service.condition);
    }
    m_recording.add(step);
    m_events->noteStep(step);
    watchRecording();
}

void DeviceSession::onObserved(const QString& text)
{
    m_recording.observe(text);
    watchRecording();
}

std::chrono::milliseconds DeviceSession::now() const
{
    return std::chrono::milliseconds(m_clock.isValid() ? m_clock.elapsed() : 0);
}

void DeviceSession::add(const QJsonObject& entry)
{
    const bool wasTesting = m_facts.isTesting();
    m_facts.note(entry);
    Q_EMIT added(m_history.add(entry, now()));
    if (m_facts.isTesting() != wasTesting) {
        add({{typeKey, QStringLiteral("test")}, {QStringLiteral("running"), m_facts.isTesting()}});
    }
}

void DeviceSession::beginRecording()
{
    if (!m_recording.isUntouched()) {
        m_formerRecording = m_recording;
    }
    m_recording.begin(m_options.model, m_options.state, m_options.keyLists, m_options.services);
    add({{typeKey, QStringLiteral("recording")},
         {statusKey, QStringLiteral("recording")},
         {QStringLiteral("former"), m_formerRecording.isStarted()}});
}

void DeviceSession::watchRecording()
{
    if (m_recording.takeFullness()) {
        add({{typeKey, QStringLiteral("recording")}, {statusKey, QStringLiteral("full")}});
    }
}

void DeviceSession::watchDaemon()
{
    m_watch = new DaemonWatch(m_device->bus().address(), this);
    connect(m_watch, &DaemonWatch::changed, this, [this](bool isAnswering) {
        add({{typeKey, QStringLiteral("daemon")}, {QStringLiteral("answering"), isAnswering}});
    });
}

void DeviceSession::leaveDaemon()
{
    if (m_watch) {
        m_watch->disconnect(this);
        m_watch->deleteLater(); // what it reports may have led here
        m_watch = nullptr;
    }
}

void DeviceSession::beginReplay()
{
    m_replay->observer = std::make_unique<DeviceRecorder>(*m_device);
    m_replay->observer->setLimit(mostObservations);
    m_steps.play(m_replay->script, replayClient);
    add({{typeKey, QStringLiteral("replay")},
         {statusKey, QStringLiteral("playing")},
         {QStringLiteral("expectations"), m_replay->script.expectations.size()}});
}

void DeviceSession::judgeReplay()
{
    const QStringList differences =
        Transcript::difference(m_replay->script, m_replay->observer->observations(), Transcript::Clock::Real);
    m_steps.drop(replayClient);
    endReplay(QStringLiteral("finished"), differences);
}

void DeviceSession::endReplay(const QString& status, const QStringList& differences)
{
    const int expectations = m_replay->script.expectations.size();
    m_replay.reset();
    add({{typeKey, QStringLiteral("replay")},
         {statusKey, status},
         {QStringLiteral("expectations"), expectations},
         {QStringLiteral("differences"), QJsonArray::fromStringList(shortened(differences))}});
}
