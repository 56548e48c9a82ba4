// SPDX-License-Identifier: MIT
#include "simulator/demonstration/Demonstration.h"

#include "simulator/demonstration/DeviceHints.h"
#include "simulator/script/StatementHelp.h"

#include <QTimer>

using namespace std::chrono_literals;

namespace {

/// For what a typed line causes to be printed before the next one is asked for.
constexpr std::chrono::milliseconds promptPause = 500ms;

} // namespace

Demonstration::Demonstration(const CommandLine& line, QObject* parent)
    : QObject(parent), m_line(line), m_session(line.device), m_printer(m_session), m_server(m_session)
{
    connect(&m_session, &DeviceSession::added, this, &Demonstration::onAdded);
}

void Demonstration::start(const std::optional<KeyScript>& script)
{
    // Before the script is played: a port in use is better told at once.
    if (m_line.serve && !m_server.listen(m_line.port)) {
        m_printer.printText(m_server.errorString() +
                            QStringLiteral(" --port takes another one; --port 0 takes any that is free."));
        Q_EMIT finished(NotStarted);
    } else if (script) {
        m_isPlaying = true;
        m_session.replay(*script);
    } else {
        m_session.start();
    }
}

void Demonstration::onAdded(const QJsonObject& entry)
{
    const QString type = entry.value(QLatin1String("type")).toString();
    if (type == QLatin1String("device")) {
        onDevice(entry.value(QLatin1String("status")).toString());
    } else if (type == QLatin1String("replay") && m_isPlaying) {
        onReplay(entry);
    }
}

/// Also after each restart, which brings other key lists and another bus.
void Demonstration::introduce(const QString& status)
{
    const QString model = m_session.description().value(QLatin1String("model")).toString();
    const QString text =
        status == QLatin1String("starting") ? DeviceHints::rowsThatNeverWork(m_session.keyLists(), model)
        : status == QLatin1String("ready") && m_line.serve ? DeviceHints::bus(m_session.busAddress())
                                                           : QString();
    if (!text.isEmpty()) {
        m_printer.printText(text);
    }
}

void Demonstration::onDevice(const QString& status)
{
    introduce(status);
    if (m_isAttending) {
        return;
    }
    if (status == QLatin1String("ready")) {
        m_wasReady = true;
        if (!m_isPlaying) {
            attend();
        }
    } else if (status == QLatin1String("ended")) {
        if (m_wasReady && m_line.serve) {
            // People can look at what has happened and restart the device.
            onPlayed(NotAsExpected);
        } else {
            Q_EMIT finished(NotStarted);
        }
    }
}

void Demonstration::onReplay(const QJsonObject& entry)
{
    const QString status = entry.value(QLatin1String("status")).toString();
    if (status == QLatin1String("finished")) {
        onPlayed(entry.value(QLatin1String("differences")).toArray().isEmpty() ? AsExpected : NotAsExpected);
    } else if (status == QLatin1String("stopped")) {
        // Later: where it is the end of the device that stopped it, that is told next.
        QTimer::singleShot(0, this, [this] {
            if (m_isPlaying && m_session.status() != DeviceSession::Status::Ended) {
                onPlayed(NotAsExpected);
            }
        });
    }
}

void Demonstration::onPlayed(Status status)
{
    m_isPlaying = false;
    m_status = status;
    if (m_line.serve) {
        attend();
    } else {
        Q_EMIT finished(status);
    }
}

void Demonstration::attend()
{
    m_isAttending = true;
    m_printer.printText(QStringLiteral("\nThe front panel: %1 (Ctrl-C ends)").arg(m_server.url()));
    if (Prompt::isAtTerminal()) {
        openPrompt();
    }
}

void Demonstration::openPrompt()
{
    m_printer.printText(QStringLiteral("\nType statements of a key script, such as \"tap Menu\" or "
                                       "\"device 1; tap Up\"; \"help\" lists them, \"quit\" ends."));
    m_prompt = std::make_unique<Prompt>();
    connect(m_prompt.get(), &Prompt::typed, this, &Demonstration::onTyped);
    connect(m_prompt.get(), &Prompt::ended, this, [this] { Q_EMIT finished(m_status); });
    m_prompt->show();
}

void Demonstration::onTyped(const QString& line)
{
    static const QStringList ends{QStringLiteral("quit"), QStringLiteral("exit")};
    static const QStringList questions{QStringLiteral("help"), QStringLiteral("?")};
    if (ends.contains(line.trimmed())) {
        Q_EMIT finished(m_status);
        return;
    }
    if (questions.contains(line.trimmed())) {
        m_printer.printText(statementHelp() +
                            QStringLiteral("Several stand in a line with \";\" between them."));
        m_prompt->show();
        return;
    }
    const QString statements = QString(line).replace(';', '\n');
    const QVector<ScriptFault> faults = m_session.take(statements);
    if (faults.isEmpty()) {
        QTimer::singleShot(parseKeyScriptSteps(statements).script.duration() + promptPause, m_prompt.get(),
                           &Prompt::show);
        return;
    }
    for (const ScriptFault& fault : faults) {
        m_printer.printText(fault.text);
    }
    m_prompt->show();
}
