// SPDX-License-Identifier: MIT
#include "simulator/panel/EvdevKeyboard.h"

#include "tests/virtual/DeviceTest.h"

namespace {

constexpr quint16 up = KEY_UP;
constexpr quint16 down = KEY_DOWN;

} // namespace

class EvdevKeyboardTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { m_device.reset(); }

    void eachReportEndsWithSynReport();
    void aPressedKeyIsNotPressedAgain();
    void aReleasedKeyIsNotReleasedAgain();
    void aHeldKeyIsRepeatedAfter250MsAndThenEvery33Ms();
    void onlyTheLastPressedKeyIsRepeated();
    void anyReleaseEndsTheRepetition();
    void aNewPressIsRepeatedAgain();
    void aRawReportIsUnchanged();

private:
    void wait(std::chrono::milliseconds time) { VirtualDevice::clock().advance(time); }
    QStringList take() { return std::exchange(m_records, {}); }

    std::unique_ptr<EvdevKeyboard> m_device;
    QStringList m_records;
};

void EvdevKeyboardTest::init()
{
    m_device = std::make_unique<EvdevKeyboard>();
    m_records.clear();
    connect(m_device.get(), &EvdevKeyboard::recorded, this, [this](const input_event& record) {
        m_records << QStringLiteral("%1 %2 %3").arg(record.type).arg(record.code).arg(record.value);
    });
}

void EvdevKeyboardTest::eachReportEndsWithSynReport()
{
    m_device->press(up);
    QCOMPARE(take(), QStringList({"1 103 1", "0 0 0"}));
    m_device->release(up);
    QCOMPARE(take(), QStringList({"1 103 0", "0 0 0"}));
}

void EvdevKeyboardTest::aPressedKeyIsNotPressedAgain()
{
    m_device->press(up);
    take();
    m_device->press(up);
    QCOMPARE(take(), QStringList());
}

void EvdevKeyboardTest::aReleasedKeyIsNotReleasedAgain()
{
    m_device->release(up);
    QCOMPARE(take(), QStringList());
}

void EvdevKeyboardTest::aHeldKeyIsRepeatedAfter250MsAndThenEvery33Ms()
{
    m_device->press(up);
    take();
    wait(249ms);
    QCOMPARE(take(), QStringList());
    wait(1ms);
    QCOMPARE(take(), QStringList({"1 103 2", "0 0 1"}));
    wait(32ms);
    QCOMPARE(take(), QStringList());
    wait(1ms);
    QCOMPARE(take(), QStringList({"1 103 2", "0 0 1"}));
    wait(330ms);
    QCOMPARE(take().size(), 20);
}

void EvdevKeyboardTest::onlyTheLastPressedKeyIsRepeated()
{
    m_device->press(up);
    wait(240ms);
    m_device->press(down);
    take();
    wait(249ms);
    QCOMPARE(take(), QStringList());
    wait(1ms);
    QCOMPARE(take(), QStringList({"1 108 2", "0 0 1"}));
}

void EvdevKeyboardTest::anyReleaseEndsTheRepetition()
{
    m_device->press(up);
    m_device->press(down);
    m_device->release(up);
    take();
    wait(1000ms);
    QCOMPARE(take(), QStringList());
}

void EvdevKeyboardTest::aNewPressIsRepeatedAgain()
{
    m_device->press(up);
    wait(1000ms);
    m_device->release(up);
    m_device->press(up);
    take();
    wait(250ms);
    QCOMPARE(take(), QStringList({"1 103 2", "0 0 1"}));
}

void EvdevKeyboardTest::aRawReportIsUnchanged()
{
    m_device->report(EV_MSC, MSC_SCAN, -7);
    QCOMPARE(take(), QStringList({"4 4 -7", "0 0 0"}));
}

VIRTUAL_TIME_TEST_MAIN(EvdevKeyboardTest)
#include "EvdevKeyboardTest.moc"
