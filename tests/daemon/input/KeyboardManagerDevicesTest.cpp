// SPDX-License-Identifier: MIT
#include "tests/virtual/DeviceTest.h"

#include <QFile>

class KeyboardManagerDevicesTest : public DeviceTest
{
    Q_OBJECT

private Q_SLOTS:
    void runsOnWithoutTheFirstDevice();
    void runsOnWithoutTheSecondDevice();
    void runsOnWithoutAnyDevice();
    void simulatedKeysTakeTheWayOfTheFirstDevice_data();
    void simulatedKeysTakeTheWayOfTheFirstDevice();
    void burstOfRecordsWithPartialOnesLosesNoKey();

private:
    void startWithout(const QStringList& missing);
};

void KeyboardManagerDevicesTest::startWithout(const QStringList& missing)
{
    device = std::make_unique<VirtualDevice>();
    for (const QString& node : missing) {
        QFile::remove(node);
    }
    device->start(StateId::Print);
}

void KeyboardManagerDevicesTest::runsOnWithoutTheFirstDevice()
{
    startWithout({"/dev/input/event0"});
    QCOMPARE(
        device->take(),
        QStringList{
            "log Keyboard::open ERROR: Unable to open device /dev/input/event0: No such file or directory"});
    device->press(1, KeyId::Up);
    device->release(1, KeyId::Up);
    QCOMPARE(device->take(), QStringList{"announce SingleKey PrintManager - Up"});
}

void KeyboardManagerDevicesTest::runsOnWithoutTheSecondDevice()
{
    startWithout({"/dev/input/event1"});
    QCOMPARE(
        device->take(),
        QStringList{
            "log Keyboard::open ERROR: Unable to open device /dev/input/event1: No such file or directory"});
    device->tap(KeyId::Up);
    QCOMPARE(device->take(), QStringList{"announce SingleKey PrintManager - Up"});
}

void KeyboardManagerDevicesTest::runsOnWithoutAnyDevice()
{
    startWithout({"/dev/input/event0", "/dev/input/event1"});
    const QString line = "log Keyboard::open ERROR: Unable to open device %1: No such file or directory";
    QCOMPARE(device->take(), QStringList({line.arg("/dev/input/event0"), line.arg("/dev/input/event1")}));
    const QVariantMap command{
        {commandIdKey, "SimulateModifier"}, {senderIdKey, "WwwApi"}, {keysListKey, QStringList{}}};
    QCOMPARE(device->process(command).value(resultIdKey).toString(), QString("Success"));
}

void KeyboardManagerDevicesTest::burstOfRecordsWithPartialOnesLosesNoKey()
{
    start(StateId::Print);
    for (int i = 0; i < 5000; ++i) {
        device->panel().writeRaw(0, QByteArray(i % 16, 'x'));
        VirtualDevice::clock().settle();
        device->tap(KeyId::Up);
    }
    QCOMPARE(device->take().size(), 5000);
    device->tap(KeyId::Down);
    QCOMPARE(device->take(), QStringList{"announce SingleKey PrintManager KeyboardHandler Down"});
}

void KeyboardManagerDevicesTest::simulatedKeysTakeTheWayOfTheFirstDevice_data()
{
    QTest::addColumn<QString>("missing");
    QTest::addColumn<QStringList>("announced");
    QTest::newRow("without the first") << "/dev/input/event0" << QStringList{};
    QTest::newRow("without the second")
        << "/dev/input/event1" << QStringList{"announce SingleKey PrintManager WwwApi Up"};
}

void KeyboardManagerDevicesTest::simulatedKeysTakeTheWayOfTheFirstDevice()
{
    QFETCH(QString, missing);
    startWithout({missing});
    device->process(
        {{commandIdKey, "SimulateKey"}, {senderIdKey, "WwwApi"}, {actionIdKey, "Released"}, {keyKey, "Up"}});
    QTEST(device->take().filter("announce"), "announced");
}

VIRTUAL_TIME_TEST_MAIN(KeyboardManagerDevicesTest)
#include "KeyboardManagerDevicesTest.moc"
