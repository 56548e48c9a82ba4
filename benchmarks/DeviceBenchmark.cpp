// SPDX-License-Identifier: MIT
// Measures the daemon and the references, and prints the figures as JSON. With --short, runs only a smoke
// test.
#include "benchmarks/Measurements.h"

#include <QCoreApplication>
#include <QJsonDocument>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>

namespace {

constexpr Measurements::Extent wholeExtent{30, 1000, 5, 20'000, 10, 30, 100, 600};
constexpr Measurements::Extent shortExtent{1, 20, 1, 500, 1, 1, 10, 20};

Measurements::Programs makePrograms()
{
    Measurements::Programs programs;
    const auto add = [&programs](const char* name, const char* executable) {
        programs.push_back(std::make_unique<MeasuredProgram>(QLatin1String(name), QLatin1String(executable)));
    };
    add("daemon", KEYBOARD_HANDLER_DAEMON);
    add("relayingQt", RELAYING_QT);
    add("minimalQt", MINIMAL_QT);
    add("minimalSdBus", MINIMAL_SD_BUS);
    return programs;
}

/// The daemon alone, next to the recorder, and next to the recorder and the monitor, in turns.
void measureWatched(const Measurements::Extent& extent, Measurements::Figures& figures)
{
    Measurements::Programs programs;
    for (const char* name : {"daemonAlone", "daemonRecorded", "daemonWatched"}) {
        programs.push_back(
            std::make_unique<MeasuredProgram>(QLatin1String(name), QLatin1String(KEYBOARD_HANDLER_DAEMON)));
        programs.back()->start();
    }
    // As its unit runs it: only when no other process wants to run.
    const QStringList recorder{"chrt", "--idle", "0", KEYBOARD_HANDLERCTL, "record", "--serve"};
    programs.at(1)->watch(recorder);
    programs.at(2)->watch(recorder);
    programs.at(2)->watch({KEYBOARD_HANDLERCTL, "monitor", "--why"});
    Measurements::keys(programs, extent, figures);
}

QJsonObject measure(const Measurements::Extent& extent)
{
    Measurements::Programs programs = makePrograms();
    MeasuredProgram& daemon = *programs.front(); // before they are shuffled
    Measurements::Figures figures;
    Measurements::start(programs, extent, figures);
    for (const auto& program : programs) {
        program->start();
    }
    Measurements::keys(programs, extent, figures);
    Measurements::idleness(programs, extent, figures);
    Measurements::memory(programs, figures);
    Measurements::bursts(programs, extent, figures);
    for (const auto& program : programs) {
        program->stop();
    }
    Measurements::waiting(daemon, extent, figures);
    Measurements::instructions(programs, extent, figures);
    measureWatched(extent, figures);

    QJsonObject result;
    for (auto program = figures.cbegin(); program != figures.cend(); ++program) {
        result.insert(program.key(), program.value());
    }
    return result;
}

} // namespace

int main(int argc, char* argv[])
{
    if (argc > 2 && std::strcmp(argv[1], launchOption) == 0) {
        return launch(argv + 2);
    }
    const QCoreApplication application(argc, argv);
    const bool isShort = QCoreApplication::arguments().contains(QStringLiteral("--short"));
    try {
        std::puts(QJsonDocument(measure(isShort ? shortExtent : wholeExtent)).toJson().constData());
    } catch (const std::exception& fault) {
        std::fprintf(stderr, "device-benchmark: %s\n", fault.what());
        return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}
