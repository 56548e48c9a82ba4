// SPDX-License-Identifier: MIT
#include "benchmarks/Measurements.h"

#include "tests/support/ProcessFigures.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <random>
#include <stdexcept>
#include <thread>

#include <poll.h>

using namespace std::chrono_literals;
using std::chrono::duration;
using std::chrono::steady_clock;

namespace {

constexpr int warmUpStarts = 1; // fills the page cache
constexpr int warmUpKeys = 20;
constexpr auto betweenEvents = 2ms; // the program handles a press before the release
constexpr auto startTime = 500ms;   // an early started program then only waits
constexpr auto settlingTime = 2s;   // longer than any timer that a key starts
constexpr int burstTimeoutMs = 10'000;
constexpr int recordsPerKey = 4;

using Times = std::vector<double>;
using TimesOfPrograms = QMap<QString, Times>;

double quantile(const Times& sorted, double fraction)
{
    return sorted.at(size_t(std::ceil(fraction * double(sorted.size()))) - 1);
}

QJsonObject summary(Times times)
{
    std::sort(times.begin(), times.end());
    return {{QStringLiteral("p50"), quantile(times, 0.5)},
            {QStringLiteral("p99"), quantile(times, 0.99)},
            {QStringLiteral("max"), times.back()}};
}

void insertSummaries(const char* name, const TimesOfPrograms& times, Measurements::Figures& figures)
{
    for (auto own = times.cbegin(); own != times.cend(); ++own) {
        figures[own.key()].insert(QLatin1String(name), summary(own.value()));
    }
}

template <typename Duration>
double microseconds(Duration time)
{
    return duration<double, std::micro>(time).count();
}

/// Varies the order between rounds, so that the preceding program differs.
void shuffle(Measurements::Programs& programs)
{
    static std::mt19937 random; // the same orders in each run
    std::shuffle(programs.begin(), programs.end(), random);
}

/// From the release of a key to its announcement.
double keyTime(MeasuredProgram& program)
{
    program.press();
    std::this_thread::sleep_for(betweenEvents);
    const auto begun = steady_clock::now();
    program.release();
    program.services().waitForAnnouncement();
    const double time = microseconds(steady_clock::now() - begun);
    std::this_thread::sleep_for(betweenEvents);
    return time;
}

void requireSameAnnouncements(const Measurements::Programs& programs)
{
    const QMap<QString, QString> expected = programs.front()->services().lastAnnouncement();
    for (const auto& program : programs) {
        if (program->services().lastAnnouncement() != expected) {
            throw std::runtime_error("The announcements of the programs differ.");
        }
    }
}

struct Burst
{
    double drained = 0; // microseconds
    double delivered = 0;
};

Burst burst(MeasuredProgram& program, int keys)
{
    Burst result;
    const int all = program.services().announcements() + keys;
    const auto begun = steady_clock::now();
    int written = 0;
    while (program.services().announcements() < all) {
        written += program.tap(keys - written);
        pollfd pollers[] = {{program.services().descriptor(), POLLIN, 0},
                            {program.inputDevice(), short(written < keys ? POLLOUT : 0), 0}};
        if (poll(pollers, 2, burstTimeoutMs) <= 0) {
            throw std::runtime_error(qPrintable(program.name() + QStringLiteral(" loses keys.")));
        }
        program.services().work();
        if (result.drained == 0 && written == keys && program.hasReadAll()) {
            result.drained = microseconds(steady_clock::now() - begun);
        }
    }
    result.delivered = microseconds(steady_clock::now() - begun);
    return result;
}

double perSecond(int count, Times times)
{
    std::sort(times.begin(), times.end());
    return count / quantile(times, 0.5) * 1e6;
}

qint64 instructionsOf(MeasuredProgram& program, int keys)
{
    program.startCounting();
    for (int i = 0; i < keys; ++i) {
        keyTime(program);
    }
    return program.stopCounting();
}

} // namespace

namespace Measurements {

void start(Programs& programs, const Extent& extent, Figures& figures)
{
    TimesOfPrograms times;
    for (int i = 0; i < warmUpStarts + extent.starts; ++i) {
        shuffle(programs);
        for (const auto& program : programs) {
            const double time = microseconds(program->start());
            program->stop();
            if (i >= warmUpStarts) {
                times[program->name()].push_back(time);
            }
        }
    }
    insertSummaries("startUs", times, figures);
}

void keys(Programs& programs, const Extent& extent, Figures& figures)
{
    TimesOfPrograms times;
    for (int i = 0; i < warmUpKeys + extent.keys; ++i) {
        shuffle(programs);
        for (const auto& program : programs) {
            const double time = keyTime(*program);
            if (i >= warmUpKeys) {
                times[program->name()].push_back(time);
            }
        }
    }
    requireSameAnnouncements(programs);
    insertSummaries("keyUs", times, figures);
}

void idleness(const Programs& programs, const Extent& extent, Figures& figures)
{
    std::this_thread::sleep_for(settlingTime);
    QMap<QString, int> before;
    for (const auto& program : programs) {
        before[program->name()] = ProcessFigures::voluntarySwitches(program->processId());
    }
    std::this_thread::sleep_for(std::chrono::seconds(extent.idleSeconds));
    for (const auto& program : programs) {
        const int after = ProcessFigures::voluntarySwitches(program->processId());
        figures[program->name()].insert(QStringLiteral("idleWakeUps"), after - before.value(program->name()));
    }
}

void waiting(MeasuredProgram& daemon, const Extent& extent, Figures& figures)
{
    QJsonObject& own = figures[daemon.name()];
    Times times;
    for (int i = 0; i < extent.waits; ++i) {
        daemon.startEarly();
        std::this_thread::sleep_for(startTime);
        if (i == 0) {
            const qint64 process = daemon.processId();
            const int wakeUps = ProcessFigures::voluntarySwitches(process);
            const int busyMs = ProcessFigures::processorMs(process);
            std::this_thread::sleep_for(std::chrono::seconds(extent.idleSeconds));
            own.insert(QStringLiteral("waitingWakeUps"),
                       double(ProcessFigures::voluntarySwitches(process) - wakeUps) / extent.idleSeconds);
            own.insert(QStringLiteral("waitingMs"), ProcessFigures::processorMs(process) - busyMs);
        }
        times.push_back(microseconds(daemon.declareServices()));
        daemon.stop();
    }
    own.insert(QStringLiteral("servicesUs"), summary(times));
}

void memory(const Programs& programs, Figures& figures)
{
    for (const auto& program : programs) {
        const qint64 process = program->processId();
        QJsonObject& own = figures[program->name()];
        own.insert(QStringLiteral("pssKib"), ProcessFigures::memoryKib(process, QStringLiteral("Pss")));
        own.insert(QStringLiteral("anonymousKib"),
                   ProcessFigures::memoryKib(process, QStringLiteral("Anonymous")));
    }
}

void bursts(Programs& programs, const Extent& extent, Figures& figures)
{
    TimesOfPrograms drained;
    TimesOfPrograms delivered;
    for (int i = 0; i < extent.bursts; ++i) {
        shuffle(programs);
        for (const auto& program : programs) {
            const Burst result = burst(*program, extent.burstKeys);
            drained[program->name()].push_back(result.drained);
            delivered[program->name()].push_back(result.delivered);
        }
    }
    for (const auto& program : programs) {
        const QString name = program->name();
        figures[name].insert(QStringLiteral("recordsPerSecond"),
                             perSecond(extent.burstKeys * recordsPerKey, drained.value(name)));
        figures[name].insert(QStringLiteral("announcementsPerSecond"),
                             perSecond(extent.burstKeys, delivered.value(name)));
    }
}

void instructions(const Programs& programs, const Extent& extent, Figures& figures)
{
    for (const auto& program : programs) {
        const qint64 few = instructionsOf(*program, extent.fewCountedKeys);
        const qint64 many = instructionsOf(*program, extent.manyCountedKeys);
        const int keys = extent.manyCountedKeys - extent.fewCountedKeys;
        figures[program->name()].insert(QStringLiteral("instructionsPerKey"), double(many - few) / keys);
    }
}

} // namespace Measurements
