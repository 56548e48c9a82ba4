// SPDX-License-Identifier: MIT
#include "tests/support/ProcessFigures.h"
#include "tests/virtual/DeviceTest.h"
#include "tests/whole/random/Epilogue.h"
#include "tests/whole/random/RandomScript.h"
#include "tests/whole/random/Trial.h"

#include <malloc.h>

#ifdef __SANITIZE_ADDRESS__
extern "C" size_t __sanitizer_get_current_allocated_bytes();
#endif

namespace {

constexpr const char* seedVariable = "KEY_HOUR_SEED";
constexpr int quarters = 4;
constexpr auto quarter = 15min;
/// The memory for the last keys and senders varies slightly.
constexpr qint64 maxGrowth = 4096;

quint64 chosenSeed()
{
    return qEnvironmentVariableIsSet(seedVariable) ? qEnvironmentVariable(seedVariable).toULongLong() : 1;
}

void append(KeyScript& script, const KeyScript& more)
{
    for (ScriptStep step : more.steps) {
        step.at += script.end;
        script.steps.append(step);
    }
    script.end += more.end;
}

/// Concatenates random scripts, with the key lists of the first one. Each quarter of an hour ends with all
/// keys released and nothing pending.
struct Hour
{
    KeyScript script;
    QVector<std::chrono::milliseconds> quarterEnds;

    static Hour roll(quint64 seed)
    {
        Hour hour{RandomScript::roll(seed), {}};
        while (hour.quarterEnds.size() < quarters) {
            const auto end = (hour.quarterEnds.size() + 1) * quarter;
            while (hour.script.end < end) {
                append(hour.script, RandomScript::roll(++seed));
            }
            hour.script = Epilogue::appendedTo(hour.script);
            hour.quarterEnds.append(hour.script.end);
        }
        return hour;
    }
};

/// The resources of this process while nothing is pending.
struct Holdings
{
    qint64 heap = 0;
    int timers = 0;
    int descriptors = 0;

    static Holdings now()
    {
#ifdef __SANITIZE_ADDRESS__
        const size_t heap = __sanitizer_get_current_allocated_bytes();
#else
        const size_t heap = mallinfo2().uordblks + mallinfo2().hblkhd;
#endif
        return {static_cast<qint64>(heap), VirtualDevice::clock().timerCount(),
                ProcessFigures::ownDescriptors()};
    }
};

} // namespace

/// Plays an hour of dense random traffic on one device, on the virtual clock. KEY_HOUR_SEED sets another
/// seed.
class RandomHourTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void invariantsHoldForTheWholeHour();
    void nothingAccumulates();

private:
    /// Plays the hour without recording observations; returns the resources after each quarter.
    QVector<Holdings> playQuarters() const;

    quint64 m_seed = 0;
    Hour m_hour;
};

void RandomHourTest::initTestCase()
{
    m_seed = chosenSeed();
    m_hour = Hour::roll(m_seed);
    qInfo("seed %llu: %d steps in %lld s", m_seed, m_hour.script.steps.size(),
          static_cast<long long>(m_hour.script.end.count() / 1000));
}

void RandomHourTest::invariantsHoldForTheWholeHour()
{
    const Trial::Result result = Trial::run(m_hour.script, m_seed);
    QVERIFY2(result.violated == 0, qPrintable(result.text));
}

void RandomHourTest::nothingAccumulates()
{
    const QVector<Holdings> held = playQuarters();
    const Holdings& first = held.first();
    const Holdings& last = held.last();
    qInfo("heap after each quarter: %lld %lld %lld %lld bytes", held.at(0).heap, held.at(1).heap,
          held.at(2).heap, held.at(3).heap);
    QVERIFY(first.heap > 0);
    QVERIFY(last.heap - first.heap <= maxGrowth);
    QCOMPARE(last.timers, 0);
    QCOMPARE(last.descriptors, first.descriptors);
}

QVector<Holdings> RandomHourTest::playQuarters() const
{
    VirtualDevice device;
    device.setModel(m_hour.script.model);
    device.setRows(m_hour.script.rows);
    device.start(m_hour.script.initialState);
    ScriptTarget& target = device;
    QVector<Holdings> held;
    auto step = m_hour.script.steps.cbegin();
    for (const auto end : m_hour.quarterEnds) {
        for (; step != m_hour.script.steps.cend() && step->at <= end; ++step) {
            device.waitUntil(step->at);
            target.play(*step);
            device.takeObservations();
        }
        device.waitUntil(end);
        device.takeObservations();
        held.append(Holdings::now());
    }
    return held;
}

VIRTUAL_TIME_TEST_MAIN(RandomHourTest)
#include "RandomHourTest.moc"
