// SPDX-License-Identifier: MIT
#include "workbench/terminal/Workbench.h"

#include "simulator/script/KeyScriptText.h"
#include "simulator/script/StatementHelp.h"
#include "workbench/terminal/StartHints.h"
#include "workbench/web/ListFindings.h"

#include <QTimer>

using namespace std::chrono_literals;

namespace {

/// Leaves time for the output of a typed line before the next prompt.
constexpr std::chrono::milliseconds promptPause = 500ms;

} // namespace

Workbench::Workbench(const CommandLine& line, QObject* parent)
    : QObject(parent), m_line(line), m_session(line.device), m_printer(m_session), m_server(m_session)
{
    connect(&m_session, &Session::added, this, &Workbench::onAdded);
}

void Workbench::start(const std::optional<KeyScript>& script)
{
    // Before the script is played, so that a port in use is reported at once.
    if (m_line.serve && !m_server.listen(m_line.port)) {
        m_printer.printText(m_server.errorString() +
                            QStringLiteral(" --port chooses another port; --port 0 chooses a free one."));
        Q_EMIT finished(NotStarted);
    } else if (script) {
        m_isPlaying = true;
        m_session.replay(*script);
    } else {
        m_session.start();
    }
}

void Workbench::onAdded(const SessionEntry& entry)
{
    if (const auto* device = std::get_if<entry::Device>(&entry.event)) {
        onDevice(device->status);
    } else if (const auto* replay = std::get_if<entry::Replay>(&entry.event); replay && m_isPlaying) {
        onReplay(*replay);
    }
}

/// Called after each restart as well, because the key lists and the bus may have changed.
void Workbench::printHints(entry::Device::Status status)
{
    if (status == entry::Device::Status::Starting) {
        checkLists();
    } else if (status == entry::Device::Status::Ready && m_line.serve) {
        m_printer.printText(StartHints::bus(m_session.busAddress()));
    }
}

/// Prints the findings as soon as they are known. The device does not wait for them.
void Workbench::checkLists()
{
    ++m_checks;
    m_work.start([this, lists = m_session.keyLists(), model = m_session.model()] {
        return [this, text = ListFindings::of(lists, model).toText()] {
            --m_checks;
            if (!text.isEmpty()) {
                m_printer.printText(text);
            }
            if (m_end && m_checks == 0) {
                Q_EMIT finished(*m_end);
            }
        };
    });
}

/// Ends when all findings are printed.
void Workbench::finish(Status status)
{
    if (m_checks > 0) {
        m_end = status;
    } else {
        Q_EMIT finished(status);
    }
}

void Workbench::onDevice(entry::Device::Status status)
{
    printHints(status);
    if (m_isInteractive) {
        return;
    }
    if (status == entry::Device::Status::Ready) {
        m_wasReady = true;
        if (!m_isPlaying) {
            beginInteraction();
        }
    } else if (status == entry::Device::Status::Ended) {
        if (m_wasReady && m_line.serve) {
            // The user can inspect the events and restart the device.
            onPlayed(NotAsExpected);
        } else {
            finish(NotStarted);
        }
    }
}

void Workbench::onReplay(const entry::Replay& replay)
{
    if (replay.status == entry::Replay::Status::Finished) {
        onPlayed(replay.differences.isEmpty() ? AsExpected : NotAsExpected);
    } else if (replay.status == entry::Replay::Status::Stopped) {
        // Deferred, because the end of the device, which may have stopped the replay, is reported next.
        QTimer::singleShot(0, this, [this] {
            if (m_isPlaying && m_session.status() != Session::Status::Ended) {
                onPlayed(NotAsExpected);
            }
        });
    }
}

void Workbench::onPlayed(Status status)
{
    m_isPlaying = false;
    m_status = status;
    if (m_line.serve) {
        beginInteraction();
    } else {
        finish(status);
    }
}

void Workbench::beginInteraction()
{
    m_isInteractive = true;
    m_printer.printText(QStringLiteral("\nThe front panel: %1 (Ctrl-C ends)").arg(m_server.url()));
    if (Prompt::isAtTerminal()) {
        openPrompt();
    }
}

void Workbench::openPrompt()
{
    m_printer.printText(QStringLiteral("\nType statements of a key script, such as \"tap Menu\" or "
                                       "\"device 1; tap Up\"; \"help\" lists them, \"quit\" ends."));
    m_prompt = std::make_unique<Prompt>();
    connect(m_prompt.get(), &Prompt::typed, this, &Workbench::onTyped);
    connect(m_prompt.get(), &Prompt::ended, this, [this] { finish(m_status); });
    m_prompt->show();
}

void Workbench::onTyped(const QString& line)
{
    static const QStringList quitWords{QStringLiteral("quit"), QStringLiteral("exit")};
    static const QStringList helpWords{QStringLiteral("help"), QStringLiteral("?")};
    if (quitWords.contains(line.trimmed())) {
        finish(m_status);
        return;
    }
    if (helpWords.contains(line.trimmed())) {
        m_printer.printText(statementHelp() +
                            QStringLiteral("Separate several statements on a line with \";\"."));
        m_prompt->show();
        return;
    }
    const QString statements = QString(line).replace(';', '\n');
    const QVector<ScriptFault> faults = m_session.execute(statements);
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
