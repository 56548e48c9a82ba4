// SPDX-License-Identifier: MIT
#include "simulator/script/KeyScriptText.h"
#include "workbench/terminal/CommandLine.h"
#include "workbench/terminal/RecordingFile.h"
#include "workbench/terminal/TerminationSignals.h"
#include "workbench/terminal/Workbench.h"

#include <QCoreApplication>
#include <QTextStream>

#include <algorithm>

namespace {

constexpr int signalStatus = 128;

void complain(const QString& sentence)
{
    QTextStream(stderr) << sentence << '\n';
}

int refuse(const QString& path, const QVector<ScriptFault>& faults)
{
    QTextStream output(stderr);
    for (const ScriptFault& fault : faults) {
        output << path << ':' << fault.line << ": " << fault.text << '\n';
    }
    return Workbench::NotStarted;
}

int record(const Session& session, const QString& path)
{
    QStringList faults;
    const QString text = session.recording(&faults);
    if (faults.isEmpty()) {
        const QString fault = RecordingFile::write(path, text);
        faults = fault.isEmpty() ? QStringList() : QStringList(fault);
    }
    for (const QString& fault : qAsConst(faults)) {
        complain(fault);
    }
    return faults.isEmpty() ? Workbench::AsExpected : Workbench::NotAsExpected;
}

} // namespace

int main(int argc, char* argv[])
{
    QCoreApplication application(argc, argv);
    const std::optional<CommandLine> line = CommandLine::read(application);
    if (!line) {
        return Workbench::WrongArguments;
    }
    if (!line->recording.isEmpty()) {
        if (const QString reason = RecordingFile::whyNotWritable(line->recording); !reason.isEmpty()) {
            complain(reason);
            return Workbench::NotStarted;
        }
    }
    std::optional<KeyScript> script;
    if (!line->script.isEmpty()) {
        const ParsedScript parsed = loadKeyScript(line->script);
        if (!parsed.faults.isEmpty()) {
            return refuse(line->script, parsed.faults);
        }
        script = parsed.script;
    }

    Workbench demonstration(*line);
    // Queued: the demonstration may end while it is being started, before the event loop runs.
    QObject::connect(&demonstration, &Workbench::finished, &application, &QCoreApplication::exit,
                     Qt::QueuedConnection);
    const TerminationSignals signalWatch;
    QObject::connect(&signalWatch, &TerminationSignals::received, &application,
                     [](int number) { QCoreApplication::exit(signalStatus + number); });
    demonstration.start(script);
    const int status = QCoreApplication::exec();
    return line->recording.isEmpty() ? status
                                     : std::max(status, record(demonstration.session(), line->recording));
}
