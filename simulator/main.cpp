// SPDX-License-Identifier: MIT
#include "simulator/demonstration/CommandLine.h"
#include "simulator/demonstration/Demonstration.h"
#include "simulator/demonstration/RecordingFile.h"
#include "simulator/demonstration/TerminationSignals.h"
#include "simulator/script/KeyScriptText.h"

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
    return Demonstration::NotStarted;
}

int record(const DeviceSession& session, const QString& path)
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
    return faults.isEmpty() ? Demonstration::AsExpected : Demonstration::NotAsExpected;
}

} // namespace

int main(int argc, char* argv[])
{
    QCoreApplication application(argc, argv);
    const std::optional<CommandLine> line = CommandLine::read(application);
    if (!line) {
        return Demonstration::WrongArguments;
    }
    if (!line->recording.isEmpty()) {
        if (const QString reason = RecordingFile::whyNotWritable(line->recording); !reason.isEmpty()) {
            complain(reason);
            return Demonstration::NotStarted;
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

    Demonstration demonstration(*line);
    // Queued: the demonstration may end while it is being started, before the event loop runs.
    QObject::connect(&demonstration, &Demonstration::finished, &application, &QCoreApplication::exit,
                     Qt::QueuedConnection);
    const TerminationSignals signalWatch;
    QObject::connect(&signalWatch, &TerminationSignals::received, &application,
                     [](int number) { QCoreApplication::exit(signalStatus + number); });
    demonstration.start(script);
    const int status = QCoreApplication::exec();
    return line->recording.isEmpty() ? status
                                     : std::max(status, record(demonstration.session(), line->recording));
}
