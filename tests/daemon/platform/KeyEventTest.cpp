// SPDX-License-Identifier: MIT
#include <ls/KeyEvent.h>

#include <QtTest>

#include <cstring>
#include <limits>

namespace {

input_event record(int type, int code, int value)
{
    input_event record = {};
    record.type = quint16(type);
    record.code = quint16(code);
    record.value = value;
    return record;
}

} // namespace

class KeyEventTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void recordHasTheSizeOfTheKernelRecord();
    void defaultEventIsNotAKeyEvent();
    void valueDeterminesTheKeyAction_data();
    void valueDeterminesTheKeyAction();
    void recordIsKeptUnchanged();
    void copiesKeepTheRecord();
    void allEventsHaveTheSameUniqueType();
    void canBeStoredInAVariant();
};

void KeyEventTest::recordHasTheSizeOfTheKernelRecord()
{
    // Two words of time, then type, code and value.
    const std::size_t size = QSysInfo::WordSize == 32 ? 16 : 24;

    QCOMPARE(sizeof(ls::KeyEvent().event()), size);
}

void KeyEventTest::defaultEventIsNotAKeyEvent()
{
    const ls::KeyEvent event;

    QVERIFY(!event.isKey());
    QVERIFY(!event.isKeyDown());
    QVERIFY(!event.isKeyUp());
    QVERIFY(!event.isKeyRepeat());
    QCOMPARE(event.code(), quint16(0));
}

void KeyEventTest::valueDeterminesTheKeyAction_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("value");
    QTest::addColumn<bool>("isKey");
    QTest::addColumn<bool>("isUp");
    QTest::addColumn<bool>("isDown");
    QTest::addColumn<bool>("isRepeat");

    QTest::newRow("released") << EV_KEY << 0 << true << true << false << false;
    QTest::newRow("pressed") << EV_KEY << 1 << true << false << true << false;
    QTest::newRow("repeated") << EV_KEY << 2 << true << false << false << true;
    QTest::newRow("above repeated") << EV_KEY << 3 << true << false << false << false;
    QTest::newRow("negative") << EV_KEY << -1 << true << false << false << false;
    QTest::newRow("no value") << EV_KEY << std::numeric_limits<int>::min() << true << false << false << false;
    QTest::newRow("synchronisation 0") << EV_SYN << 0 << false << false << false << false;
    QTest::newRow("scan code 1") << EV_MSC << 1 << false << false << false << false;
    QTest::newRow("relative axis 2") << EV_REL << 2 << false << false << false << false;
}

void KeyEventTest::valueDeterminesTheKeyAction()
{
    QFETCH(int, type);
    QFETCH(int, value);
    const ls::KeyEvent event(record(type, KEY_MENU, value));

    QTEST(event.isKey(), "isKey");
    QTEST(event.isKeyUp(), "isUp");
    QTEST(event.isKeyDown(), "isDown");
    QTEST(event.isKeyRepeat(), "isRepeat");
}

void KeyEventTest::recordIsKeptUnchanged()
{
    input_event original = record(EV_KEY, KEY_MAX, -5);
    original.input_event_sec = 12;
    original.input_event_usec = 34;

    const ls::KeyEvent event(original);

    QCOMPARE(event.code(), quint16(KEY_MAX));
    QCOMPARE(std::memcmp(&event.event(), &original, sizeof original), 0);
}

void KeyEventTest::copiesKeepTheRecord()
{
    ls::KeyEvent original(record(EV_KEY, KEY_BACK, 1));
    const ls::KeyEvent copy(original);
    ls::KeyEvent assigned;
    assigned = original;
    original = ls::KeyEvent();

    QVERIFY(copy.isKeyDown());
    QCOMPARE(copy.code(), quint16(KEY_BACK));
    QVERIFY(assigned.isKeyDown());
    QCOMPARE(assigned.code(), quint16(KEY_BACK));
}

void KeyEventTest::allEventsHaveTheSameUniqueType()
{
    const ls::KeyEvent event;

    QVERIFY(event.type() >= QEvent::User);
    QCOMPARE(ls::KeyEvent(record(EV_KEY, KEY_OK, 1)).type(), event.type());
    QVERIFY(QEvent::registerEventType() != int(event.type()));
}

void KeyEventTest::canBeStoredInAVariant()
{
    const QVariant variant = QVariant::fromValue(ls::KeyEvent(record(EV_KEY, KEY_OK, 2)));

    QVERIFY(variant.value<ls::KeyEvent>().isKeyRepeat());
    QCOMPARE(variant.value<ls::KeyEvent>().code(), quint16(KEY_OK));
}

QTEST_GUILESS_MAIN(KeyEventTest)
#include "KeyEventTest.moc"
