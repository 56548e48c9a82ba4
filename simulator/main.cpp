// SPDX-License-Identifier: MIT
#include "simulator/demonstration/Demonstration.h"
#include "simulator/demonstration/TerminationSignals.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFile>
#include <QTextStream>

#include <algorithm>

namespace {

constexpr int signalStatus = 128;

const QString daemonOption = QStringLiteral("daemon");
const QString dataOption = QStringLiteral("data");
const QString recordOption = QStringLiteral("record");

void addOptions(QCommandLineParser& parser)
{
    parser.setApplicationDescription(
        QStringLiteral("Plays a key script on a simulated embosser and shows what the key daemon does."));
    parser.addHelpOption();
    parser.addOption({daemonOption, QStringLiteral("The daemon's executable."), QStringLiteral("path"),
                      QStringLiteral(KEYBOARD_HANDLER_DAEMON)});
    parser.addOption({dataOption, QStringLiteral("The folder of the key lists."), QStringLiteral("folder"),
                      QStringLiteral(KEYBOARD_HANDLER_DATA_FOLDER)});
    parser.addOption({recordOption,
                      QStringLiteral("Write what was done, and what came of it, as a key script."),
                      QStringLiteral("file")});
    parser.addPositionalArgument(QStringLiteral("script"), QStringLiteral("The key script (*.keys)."),
                                 QStringLiteral("[script]"));
}

int refuse(const QString& path, const QVector<ScriptFault>& faults)
{
    QTextStream output(stderr);
    for (const ScriptFault& fault : faults) {
        output << path << ':' << fault.line << ": " << fault.text << '\n';
    }
    return Demonstration::NotStarted;
}

int record(const KeyScript& script, const QString& path)
{
    QFile file(path);
    if (file.open(QIODevice::WriteOnly) && file.write(script.toText().toUtf8()) != -1 && file.flush()) {
        return Demonstration::AsExpected;
    }
    QTextStream(stderr) << path << ": " << file.errorString() << '\n';
    return Demonstration::NotAsExpected;
}

} // namespace

int main(int argc, char* argv[])
{
    QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    addOptions(parser);
    parser.process(application);

    const QString path = parser.positionalArguments().value(0, QStringLiteral(DEMONSTRATION_SCRIPT));
    const ParsedScript parsed = loadKeyScript(path);
    if (!parsed.faults.isEmpty()) {
        return refuse(path, parsed.faults);
    }

    DeviceOptions options;
    options.daemon = parser.value(daemonOption);
    options.keyListFolder = parser.value(dataOption);
    Demonstration demonstration(parsed.script, options);
    // Queued: the demonstration may end while it is being started, before the event loop runs.
    QObject::connect(&demonstration, &Demonstration::finished, &application, &QCoreApplication::exit,
                     Qt::QueuedConnection);
    const TerminationSignals signalWatch;
    QObject::connect(&signalWatch, &TerminationSignals::received, &application,
                     [](int number) { QCoreApplication::exit(signalStatus + number); });
    demonstration.start();
    const int status = QCoreApplication::exec();
    if (!parser.isSet(recordOption)) {
        return status;
    }
    return std::max(status, record(demonstration.recorded(), parser.value(recordOption)));
}
