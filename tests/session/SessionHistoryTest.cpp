// SPDX-License-Identifier: MIT
#include "simulator/session/SessionHistory.h"

#include <QtTest>

using namespace std::chrono_literals;

namespace {

QJsonObject textOf(int size)
{
    return {{"text", QString(size, 'x')}};
}

} // namespace

class SessionHistoryTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void entriesAreNumberedAndTimed();
    void theLatestTenThousandAreKept();
    void ofLongEntriesFewerAreKept();
    void anEntryLongerThanAllIsKept();
};

void SessionHistoryTest::entriesAreNumberedAndTimed()
{
    SessionHistory history;
    const QJsonObject first = history.add({{"type", "cancel"}}, 7ms);
    const QJsonObject second = history.add({{"type", "cancel"}}, 3ms);
    QCOMPARE(first, QJsonObject({{"type", "cancel"}, {"id", 1}, {"at", 7}}));
    QCOMPARE(second, QJsonObject({{"type", "cancel"}, {"id", 2}, {"at", 3}}));
    QCOMPARE(history.entries(), QJsonArray({first, second}));
}

void SessionHistoryTest::theLatestTenThousandAreKept()
{
    SessionHistory history;
    for (int i = 0; i < 10'001; ++i) {
        history.add({}, 0ms);
    }
    QCOMPARE(history.entries().size(), 10'000);
    QCOMPARE(history.entries().first().toObject().value("id").toInt(), 2);
    QCOMPARE(history.entries().last().toObject().value("id").toInt(), 10'001);
}

void SessionHistoryTest::ofLongEntriesFewerAreKept()
{
    SessionHistory history;
    for (int i = 0; i < 300; ++i) {
        history.add(textOf(64 * 1024), 0ms);
    }
    QCOMPARE(history.entries().size(), 127);
    QCOMPARE(history.entries().last().toObject().value("id").toInt(), 300);
}

void SessionHistoryTest::anEntryLongerThanAllIsKept()
{
    SessionHistory history;
    history.add({}, 0ms);
    history.add(textOf(9 * 1024 * 1024), 0ms);
    QCOMPARE(history.entries().size(), 1);
    history.add({}, 0ms);
    QCOMPARE(history.entries().size(), 1);
    QCOMPARE(history.entries().first().toObject().value("id").toInt(), 3);
}

QTEST_APPLESS_MAIN(SessionHistoryTest)
#include "SessionHistoryTest.moc"
