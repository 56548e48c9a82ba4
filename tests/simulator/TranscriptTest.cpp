// SPDX-License-Identifier: MIT
#include "simulator/script/Transcript.h"

#include <QtTest>

#include <ctime>

Q_DECLARE_METATYPE(Transcript::Clock)

using namespace std::chrono_literals;
using Transcript::Clock;

namespace {

const Observations spokenThenAnnounced{{150ms, "speak EmbosserCore 24"},
                                       {1650ms, "announce SingleKey UserMenu - Up"}};

QStringList differenceOf(const Observations& expected, const Observations& observed, Clock clock)
{
    KeyScript script;
    script.expectations = expected;
    return Transcript::difference(script, observed, clock);
}

/// Likewise, for a recording of 10 s.
QStringList recordedDifference(const Observations& expected, const Observations& observed, Clock clock)
{
    KeyScript script;
    script.recorded = true;
    script.end = 10s;
    script.expectations = expected;
    return Transcript::difference(script, observed, clock);
}

} // namespace

class TranscriptTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void equalObservationsHaveNoDifference_data();
    void equalObservationsHaveNoDifference();
    void aMissingObservationIsReported_data() { equalObservationsHaveNoDifference_data(); }
    void aMissingObservationIsReported();
    void anUnexpectedObservationIsReported_data() { equalObservationsHaveNoDifference_data(); }
    void anUnexpectedObservationIsReported();
    void theOrderMatters_data() { equalObservationsHaveNoDifference_data(); }
    void theOrderMatters();
    void oneMillisecondMattersOnAVirtualClock();
    void latenessIsAcceptedOnARealClock();
    void earlinessIsReportedOnARealClock_data();
    void earlinessIsReportedOnARealClock();
    void theLogMayHaveMoreLinesOnARealClock();
    void theLogIsOrderedSeparatelyOnARealClock();
    void theLogMustMatchOnAVirtualClock();
    void comparisonTimeIsLinear();
    void aRecordingIsComparedWithATolerance_data();
    void aRecordingIsComparedWithATolerance();
    void aLateRecordingIsAcceptedOnARealClock();
    void theOrderMattersInARecording_data() { equalObservationsHaveNoDifference_data(); }
    void theOrderMattersInARecording();
    void observationsAfterTheEndOfARecordingAreIgnored_data();
    void observationsAfterTheEndOfARecordingAreIgnored();
    void theLogOfARecordingIsComparedSeparately_data() { equalObservationsHaveNoDifference_data(); }
    void theLogOfARecordingIsComparedSeparately();
    void aRecordingOfAnnouncementsIsComparedWithoutSpeechAnswersAndLog();
};

void TranscriptTest::equalObservationsHaveNoDifference_data()
{
    QTest::addColumn<Clock>("clock");
    QTest::newRow("virtual clock") << Clock::Virtual;
    QTest::newRow("real clock") << Clock::Real;
}

void TranscriptTest::equalObservationsHaveNoDifference()
{
    QFETCH(Clock, clock);
    QCOMPARE(differenceOf(spokenThenAnnounced, spokenThenAnnounced, clock), QStringList());
    QCOMPARE(differenceOf({}, {}, clock), QStringList());
}

void TranscriptTest::aMissingObservationIsReported()
{
    QFETCH(Clock, clock);
    QCOMPARE(differenceOf(spokenThenAnnounced, {spokenThenAnnounced.last()}, clock),
             QStringList("missing     150 ms: speak EmbosserCore 24"));
}

void TranscriptTest::anUnexpectedObservationIsReported()
{
    QFETCH(Clock, clock);
    QCOMPARE(differenceOf({spokenThenAnnounced.last()}, spokenThenAnnounced, clock),
             QStringList("unexpected  150 ms: speak EmbosserCore 24"));
}

void TranscriptTest::theOrderMatters()
{
    QFETCH(Clock, clock);
    const Observations expected{{0ms, "cancel"}, {0ms, "speak EmbosserCore 24"}};
    const Observations observed{expected.last(), expected.first()};
    QCOMPARE(
        differenceOf(expected, observed, clock),
        QStringList({"unexpected  0 ms: speak EmbosserCore 24", "missing     0 ms: speak EmbosserCore 24"}));
}

void TranscriptTest::oneMillisecondMattersOnAVirtualClock()
{
    QCOMPARE(differenceOf({{1500ms, "cancel"}}, {{1501ms, "cancel"}}, Clock::Virtual),
             QStringList({"missing     1500 ms: cancel", "unexpected  1501 ms: cancel"}));
}

void TranscriptTest::latenessIsAcceptedOnARealClock()
{
    QCOMPARE(differenceOf({{150ms, "cancel"}}, {{60000ms, "cancel"}}, Clock::Real), QStringList());
}

void TranscriptTest::earlinessIsReportedOnARealClock_data()
{
    QTest::addColumn<int>("expected");
    QTest::addColumn<int>("observed");
    QTest::addColumn<bool>("tooEarly");
    QTest::newRow("as early as a coarse timer") << 1600 << 1520 << false;
    QTest::newRow("at the limit") << 1600 << 1500 << false;
    QTest::newRow("beyond the limit") << 1600 << 1499 << true;
    QTest::newRow("at the limit of a long script") << 60000 << 59400 << false;
    QTest::newRow("beyond the limit of a long script") << 60000 << 59399 << true;
}

void TranscriptTest::earlinessIsReportedOnARealClock()
{
    QFETCH(int, expected);
    QFETCH(int, observed);
    const Observations early{{std::chrono::milliseconds(observed), "cancel"}};
    const QStringList lines =
        differenceOf({{std::chrono::milliseconds(expected), "cancel"}}, early, Clock::Real);
    QTEST(!lines.isEmpty(), "tooEarly");
}

void TranscriptTest::theLogMayHaveMoreLinesOnARealClock()
{
    const Observations observed{{1ms, "log one"}, {2ms, "log two"}, {3ms, "log three"}};
    QCOMPARE(differenceOf({{0ms, "log two"}}, observed, Clock::Real), QStringList());
    QCOMPARE(differenceOf({{0ms, "log four"}}, observed, Clock::Real),
             QStringList("missing     0 ms: log four"));
}

void TranscriptTest::theLogIsOrderedSeparatelyOnARealClock()
{
    const Observations observed{{1ms, "log refused"}, {2ms, "cancel"}};
    QCOMPARE(differenceOf({{0ms, "cancel"}, {0ms, "log refused"}}, observed, Clock::Real), QStringList());
}

void TranscriptTest::theLogMustMatchOnAVirtualClock()
{
    QCOMPARE(differenceOf({}, {{1ms, "log one"}}, Clock::Virtual), QStringList("unexpected  1 ms: log one"));
}

void TranscriptTest::comparisonTimeIsLinear()
{
    // The worst case: equal texts, all too early, so that each expectation could be compared with the whole
    // list.
    const auto processorTime = [](int count) {
        const Observations expected(count, {1h, "cancel"});
        const Observations observed(count, {1ms, "cancel"});
        const std::clock_t begin = std::clock();
        const int differences = differenceOf(expected, observed, Clock::Real).size();
        const std::clock_t end = std::clock();
        return differences == 2 * count ? double(end - begin) : 0;
    };
    const double few = processorTime(5'000);
    const double many = processorTime(50'000);
    QVERIFY(few > 0 && many > 0);
    QVERIFY2(many < 40 * few, qPrintable(QString::number(many / few)));
}

void TranscriptTest::aRecordingIsComparedWithATolerance_data()
{
    QTest::addColumn<Clock>("clock");
    QTest::addColumn<int>("observed");
    QTest::addColumn<bool>("differs");
    QTest::newRow("as early as may be") << Clock::Virtual << 900 << false;
    QTest::newRow("too early") << Clock::Virtual << 899 << true;
    QTest::newRow("as late as may be") << Clock::Virtual << 1100 << false;
    QTest::newRow("too late") << Clock::Virtual << 1101 << true;
    QTest::newRow("as early as may be, in real time") << Clock::Real << 900 << false;
    QTest::newRow("too early, in real time") << Clock::Real << 899 << true;
}

void TranscriptTest::aRecordingIsComparedWithATolerance()
{
    QFETCH(Clock, clock);
    QFETCH(int, observed);
    const QStringList lines =
        recordedDifference({{1000ms, "cancel"}}, {{std::chrono::milliseconds(observed), "cancel"}}, clock);
    QTEST(!lines.isEmpty(), "differs");
}

void TranscriptTest::aLateRecordingIsAcceptedOnARealClock()
{
    QCOMPARE(recordedDifference({{1000ms, "cancel"}}, {{60000ms, "cancel"}}, Clock::Real), QStringList());
}

void TranscriptTest::theOrderMattersInARecording()
{
    QFETCH(Clock, clock);
    const Observations expected{{1000ms, "cancel"}, {1000ms, "speak EmbosserCore 24"}};
    QCOMPARE(recordedDifference(expected, {expected.last(), expected.first()}, clock).size(), 2);
}

void TranscriptTest::observationsAfterTheEndOfARecordingAreIgnored_data()
{
    QTest::addColumn<Clock>("clock");
    QTest::addColumn<int>("observed");
    QTest::addColumn<bool>("differs");
    for (const Clock clock : {Clock::Virtual, Clock::Real}) {
        const char* name = clock == Clock::Real ? "real" : "virtual";
        QTest::addRow("before the end, %s clock", name) << clock << 9899 << true;
        QTest::addRow("about the end, %s clock", name) << clock << 9900 << false;
        QTest::addRow("after the end, %s clock", name) << clock << 12000 << false;
    }
}

void TranscriptTest::observationsAfterTheEndOfARecordingAreIgnored()
{
    QFETCH(Clock, clock);
    QFETCH(int, observed);
    const QStringList lines =
        recordedDifference({}, {{std::chrono::milliseconds(observed), "cancel"}}, clock);
    QTEST(!lines.isEmpty(), "differs");
}

void TranscriptTest::theLogOfARecordingIsComparedSeparately()
{
    QFETCH(Clock, clock);
    const Observations observed{{0ms, "log other"}, {0ms, "cancel"}, {1ms, "log refused"}};
    QCOMPARE(recordedDifference({{0ms, "log refused"}, {0ms, "cancel"}}, observed, clock), QStringList());
    QCOMPARE(recordedDifference({{0ms, "log absent"}, {0ms, "cancel"}}, observed, clock),
             QStringList("missing     0 ms: log absent"));
}

void TranscriptTest::aRecordingOfAnnouncementsIsComparedWithoutSpeechAnswersAndLog()
{
    KeyScript script;
    script.recorded = true;
    script.hasOnlyAnnouncements = true;
    script.end = 10s;
    script.expectations = {{100ms, "announce A B C"}};
    const Observations other{
        {90ms, "speak EmbosserCore 24"}, {95ms, "cancel"}, {96ms, "answer resultId=Success"}};
    for (const Clock clock : {Clock::Virtual, Clock::Real}) {
        QCOMPARE(Transcript::difference(script, other + script.expectations, clock), QStringList());
        QCOMPARE(Transcript::difference(script, other, clock),
                 QStringList("missing     100 ms: announce A B C"));
        QCOMPARE(Transcript::difference(script, script.expectations + Observations{{200ms, "announce D E F"}},
                                        clock),
                 QStringList("unexpected  200 ms: announce D E F"));
    }
}

QTEST_APPLESS_MAIN(TranscriptTest)
#include "TranscriptTest.moc"
