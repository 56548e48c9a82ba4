// SPDX-License-Identifier: MIT
#include "workbench/web/EntryHistory.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QtTest>

namespace {

QByteArray entryOf(int number, int size = 0)
{
    return '[' + QByteArray::number(number) + ",\"" + QByteArray(size, 'x') + "\"]";
}

/// The numbers of the entries that `history` has.
QVector<int> numbersOf(const EntryHistory& history)
{
    QVector<int> numbers;
    const QJsonArray entries = QJsonDocument::fromJson(history.toJson()).array();
    for (const QJsonValue& entry : entries) {
        numbers.append(entry.toArray().first().toInt());
    }
    return numbers;
}

} // namespace

class EntryHistoryTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void emptyHistoryIsAnEmptyArray();
    void latestTenThousandEntriesAreKept();
    void fewerLongEntriesAreKept();
    void entryLongerThanTheLimitIsKeptAlone();
};

void EntryHistoryTest::emptyHistoryIsAnEmptyArray()
{
    QCOMPARE(EntryHistory().toJson(), QByteArray("[]"));
}

void EntryHistoryTest::latestTenThousandEntriesAreKept()
{
    EntryHistory history;
    for (int i = 0; i < 10'001; ++i) {
        history.add(entryOf(i));
    }
    const QVector<int> numbers = numbersOf(history);
    QCOMPARE(numbers.size(), 10'000);
    QCOMPARE(numbers.first(), 1);
    QCOMPARE(numbers.last(), 10'000);
}

void EntryHistoryTest::fewerLongEntriesAreKept()
{
    EntryHistory history;
    for (int i = 0; i < 300; ++i) {
        history.add(entryOf(i, 64 * 1024));
    }
    QCOMPARE(numbersOf(history).size(), 127);
    QCOMPARE(numbersOf(history).last(), 299);
}

void EntryHistoryTest::entryLongerThanTheLimitIsKeptAlone()
{
    EntryHistory history;
    history.add(entryOf(1));
    history.add(entryOf(2, 9 * 1024 * 1024));
    QCOMPARE(numbersOf(history), QVector<int>({2}));
    history.add(entryOf(3));
    QCOMPARE(numbersOf(history), QVector<int>({3}));
}

QTEST_APPLESS_MAIN(EntryHistoryTest)
#include "EntryHistoryTest.moc"
