// SPDX-License-Identifier: MIT
#include "simulator/script/Transcript.h"

#include <QtTest>

Q_DECLARE_METATYPE(Transcript::Mode)

using namespace std::chrono_literals;
using Transcript::difference;
using Transcript::Mode;

namespace {

const Observations spokenThenAnnounced{{150ms, "speak EmbosserCore 24"},
                                       {1650ms, "announce SingleKey UserMenu - Up"}};

} // namespace

class TranscriptTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void whatIsTheSameHasNoDifference_data();
    void whatIsTheSameHasNoDifference();
    void aMissingObservationIsNamed_data() { whatIsTheSameHasNoDifference_data(); }
    void aMissingObservationIsNamed();
    void anObservationTooMuchIsNamed_data() { whatIsTheSameHasNoDifference_data(); }
    void anObservationTooMuchIsNamed();
    void theOrderCounts_data() { whatIsTheSameHasNoDifference_data(); }
    void theOrderCounts();
    void oneMillisecondIsADifferenceOnAVirtualClock();
    void latenessIsNoDifferenceOnARealClock();
    void earlinessIsADifferenceOnARealClock_data();
    void earlinessIsADifferenceOnARealClock();
    void theLogOfARealClockMayHoldMore();
    void theLogOfARealClockKeepsItsOwnOrder();
    void theLogOfAVirtualClockIsComparedWhole();
};

void TranscriptTest::whatIsTheSameHasNoDifference_data()
{
    QTest::addColumn<Mode>("mode");
    QTest::newRow("virtual clock") << Mode::Exact;
    QTest::newRow("real clock") << Mode::RealTime;
}

void TranscriptTest::whatIsTheSameHasNoDifference()
{
    QFETCH(Mode, mode);
    QCOMPARE(difference(spokenThenAnnounced, spokenThenAnnounced, mode), QStringList());
    QCOMPARE(difference({}, {}, mode), QStringList());
}

void TranscriptTest::aMissingObservationIsNamed()
{
    QFETCH(Mode, mode);
    QCOMPARE(difference(spokenThenAnnounced, {spokenThenAnnounced.last()}, mode),
             QStringList("missing     150 ms: speak EmbosserCore 24"));
}

void TranscriptTest::anObservationTooMuchIsNamed()
{
    QFETCH(Mode, mode);
    QCOMPARE(difference({spokenThenAnnounced.last()}, spokenThenAnnounced, mode),
             QStringList("unexpected  150 ms: speak EmbosserCore 24"));
}

void TranscriptTest::theOrderCounts()
{
    QFETCH(Mode, mode);
    const Observations expected{{0ms, "cancel"}, {0ms, "speak EmbosserCore 24"}};
    const Observations observed{expected.last(), expected.first()};
    QCOMPARE(difference(expected, observed, mode), QStringList({"unexpected  0 ms: speak EmbosserCore 24",
                                                                "missing     0 ms: speak EmbosserCore 24"}));
}

void TranscriptTest::oneMillisecondIsADifferenceOnAVirtualClock()
{
    QCOMPARE(difference({{1500ms, "cancel"}}, {{1501ms, "cancel"}}, Mode::Exact),
             QStringList({"missing     1500 ms: cancel", "unexpected  1501 ms: cancel"}));
}

void TranscriptTest::latenessIsNoDifferenceOnARealClock()
{
    QCOMPARE(difference({{150ms, "cancel"}}, {{60000ms, "cancel"}}, Mode::RealTime), QStringList());
}

void TranscriptTest::earlinessIsADifferenceOnARealClock_data()
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

void TranscriptTest::earlinessIsADifferenceOnARealClock()
{
    QFETCH(int, expected);
    QFETCH(int, observed);
    const Observations early{{std::chrono::milliseconds(observed), "cancel"}};
    const QStringList lines =
        difference({{std::chrono::milliseconds(expected), "cancel"}}, early, Mode::RealTime);
    QTEST(!lines.isEmpty(), "tooEarly");
}

void TranscriptTest::theLogOfARealClockMayHoldMore()
{
    const Observations observed{{1ms, "log one"}, {2ms, "log two"}, {3ms, "log three"}};
    QCOMPARE(difference({{0ms, "log two"}}, observed, Mode::RealTime), QStringList());
    QCOMPARE(difference({{0ms, "log four"}}, observed, Mode::RealTime),
             QStringList("missing     0 ms: log four"));
}

void TranscriptTest::theLogOfARealClockKeepsItsOwnOrder()
{
    const Observations observed{{1ms, "log refused"}, {2ms, "cancel"}};
    QCOMPARE(difference({{0ms, "cancel"}, {0ms, "log refused"}}, observed, Mode::RealTime), QStringList());
}

void TranscriptTest::theLogOfAVirtualClockIsComparedWhole()
{
    QCOMPARE(difference({}, {{1ms, "log one"}}, Mode::Exact), QStringList("unexpected  1 ms: log one"));
}

QTEST_APPLESS_MAIN(TranscriptTest)
#include "TranscriptTest.moc"
