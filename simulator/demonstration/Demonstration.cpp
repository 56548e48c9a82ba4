// SPDX-License-Identifier: MIT
#include "simulator/demonstration/Demonstration.h"

#include "simulator/script/ObservationText.h"
#include "simulator/script/ScriptPlayer.h"
#include "simulator/script/Transcript.h"

using namespace std::chrono_literals;

namespace {

constexpr auto readinessInterval = 20ms;
constexpr int mostReadinessChecks = 1000;

DeviceOptions completed(DeviceOptions options, const KeyScript& script)
{
    options.model = script.model;
    options.state = script.initialState;
    const QMap<QString, QByteArray> lists = script.keyLists();
    if (!lists.isEmpty()) {
        options.keyListFolder.clear();
        options.keyLists = lists;
    }
    return options;
}

} // namespace

Demonstration::Demonstration(const KeyScript& script, DeviceOptions options, QObject* parent)
    : QObject(parent)
    , m_script(script)
    , m_device(completed(std::move(options), script))
    , m_recorder(m_device)
    , m_printer(m_device, m_recorder)
{
    connect(&m_device, &SimulatedDevice::daemonExited, this, &Demonstration::onDaemonExited);
    connect(&m_readinessTimer, &QTimer::timeout, this, &Demonstration::awaitReadiness);
}

void Demonstration::start()
{
    m_printer.printText(QStringLiteral("An embosser of the model %1, in the state %2.")
                            .arg(m_script.model, m_script.initialState));
    if (m_device.start()) {
        m_readinessTimer.start(readinessInterval);
    } else {
        giveUp(m_device.errorString());
    }
}

KeyScript Demonstration::recorded() const
{
    KeyScript script = m_script;
    script.steps = m_taken;
    script.end = m_recorder.elapsed();
    script.expectations.clear();
    for (const Observation& observation : m_recorder.observations()) {
        if (!ObservationText::isLogLine(observation.text)) {
            script.expectations.append(observation);
        }
    }
    return script;
}

void Demonstration::awaitReadiness()
{
    if (m_device.isReady()) {
        begin();
    } else if (++m_readinessChecks == mostReadinessChecks) {
        giveUp(QStringLiteral("The daemon does not become ready."));
    }
}

void Demonstration::begin()
{
    m_readinessTimer.stop();
    m_recorder.restart();
    connect(play(m_script), &ScriptPlayer::finished, this, &Demonstration::judge);
}

ScriptPlayer* Demonstration::play(const KeyScript& script)
{
    auto* player = new ScriptPlayer(script, m_device, this);
    connect(player, &ScriptPlayer::stepping, this, &Demonstration::onStepping);
    connect(player, &ScriptPlayer::finished, player, &QObject::deleteLater);
    player->start();
    return player;
}

void Demonstration::onStepping(const ScriptStep& step)
{
    m_printer.printStep(step);
    m_taken.append(step);
    m_taken.last().at = m_recorder.elapsed();
}

void Demonstration::judge()
{
    const QStringList lines =
        Transcript::difference(m_script.expectations, m_recorder.observations(), Transcript::Mode::RealTime);
    m_status = lines.isEmpty() ? AsExpected : NotAsExpected;
    if (lines.isEmpty()) {
        m_printer.printText(QStringLiteral("\nAll %1 expectations came true, and nothing else happened.")
                                .arg(m_script.expectations.size()));
    } else {
        m_printer.printText(QStringLiteral("\nNot as expected:\n") + lines.join('\n'));
    }
    if (Prompt::isAtTerminal()) {
        openPrompt();
    } else {
        Q_EMIT finished(m_status);
    }
}

void Demonstration::openPrompt()
{
    m_printer.printText(QStringLiteral("\nType statements of a key script, such as \"tap Menu\" or "
                                       "\"device 1; tap Up\"; \"quit\" ends."));
    m_prompt = std::make_unique<Prompt>();
    connect(m_prompt.get(), &Prompt::typed, this, &Demonstration::onTyped);
    connect(m_prompt.get(), &Prompt::ended, this, [this] { Q_EMIT finished(m_status); });
    m_prompt->show();
}

void Demonstration::onTyped(const QString& line)
{
    if (line.trimmed() == QLatin1String("quit")) {
        Q_EMIT finished(m_status);
        return;
    }
    const ParsedScript parsed = parseKeyScriptSteps(QString(line).replace(';', '\n'));
    if (parsed.faults.isEmpty()) {
        connect(play(parsed.script), &ScriptPlayer::finished, m_prompt.get(), &Prompt::show);
        return;
    }
    for (const ScriptFault& fault : parsed.faults) {
        m_printer.printText(fault.text);
    }
    m_prompt->show();
}

void Demonstration::onDaemonExited(int status)
{
    giveUp(QStringLiteral("The daemon has ended with status %1.").arg(status));
}

void Demonstration::giveUp(const QString& reason)
{
    m_readinessTimer.stop();
    m_printer.printText(reason);
    Q_EMIT finished(NotStarted);
}
