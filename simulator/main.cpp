// SPDX-License-Identifier: MIT
#include "simulator/demonstration/CommandLine.h"
#include "simulator/demonstration/Demonstration.h"
#include "simulator/demonstration/TerminationSignals.h"

#include <QCoreApplication>
#include <QFile>
#include <QTextStream>

#include <algorithm>

namespace {

constexpr int signalStatus = 128;

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
    const QByteArray text = session.recording(&faults).toUtf8();
    QFile file(path);
    if (faults.isEmpty() && file.open(QIODevice::WriteOnly) && file.write(text) != -1 && file.flush()) {
        return Demonstration::AsExpected;
    }
    faults << (faults.isEmpty() ? QStringList(file.errorString()) : QStringList());
    for (const QString& fault : faults) {
        QTextStream(stderr) << path << ": " << fault << '\n';
    }
    return Demonstration::NotAsExpected;
}

} // namespace

int main(int argc, char* argv[])
{
    QCoreApplication application(argc, argv);
    const std::optional<CommandLine> line = CommandLine::read(application);
    if (!line) {
        return Demonstration::NotStarted;
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
