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

void printError(const QString& sentence)
{
    QTextStream(stderr) << sentence << '\n';
}

int reportFaults(const QString& path, const QVector<ScriptFault>& faults)
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
        printError(fault);
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
        if (const QString fault = RecordingFile::check(line->recording); !fault.isEmpty()) {
            printError(fault);
            return Workbench::NotStarted;
        }
    }
    std::optional<KeyScript> script;
    if (!line->script.isEmpty()) {
        const ParsedScript parsed = loadKeyScript(line->script);
        if (!parsed.faults.isEmpty()) {
            return reportFaults(line->script, parsed.faults);
        }
        script = parsed.script;
    }

    Workbench workbench(*line);
    // Queued, because the workbench may finish in start(), before the event loop runs.
    QObject::connect(&workbench, &Workbench::finished, &application, &QCoreApplication::exit,
                     Qt::QueuedConnection);
    const TerminationSignals signalWatch;
    QObject::connect(&signalWatch, &TerminationSignals::received, &application,
                     [](int number) { QCoreApplication::exit(signalStatus + number); });
    workbench.start(script);
    const int status = QCoreApplication::exec();
    return line->recording.isEmpty() ? status
                                     : std::max(status, record(workbench.session(), line->recording));
}
