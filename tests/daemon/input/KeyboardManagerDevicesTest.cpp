// SPDX-License-Identifier: MIT
#include "tests/virtual/DeviceTest.h"

#include <QFile>

/// Tests input devices that cannot be opened at the daemon's start.
class KeyboardManagerDevicesTest : public DeviceTest
{
    Q_OBJECT

private Q_SLOTS:
    void keysOfTheOtherDeviceWork_data();
    void keysOfTheOtherDeviceWork();
    void simulatedKeysNeedTheFirstDevice_data();
    void simulatedKeysNeedTheFirstDevice();
    void worksWithoutDevices();

private:
    /// Starts without these input devices; returns the log.
    QStringList startWithout(const QVector<int>& missing);
    static QString errorOf(int missing)
    {
        return QStringLiteral("log Keyboard::open ERROR: Unable to open device /dev/input/event%1: No such "
                              "file or directory")
            .arg(missing);
    }
};

QStringList KeyboardManagerDevicesTest::startWithout(const QVector<int>& missing)
{
    device = std::make_unique<VirtualDevice>();
    for (const int number : missing) {
        QFile::remove(QStringLiteral("/dev/input/event%1").arg(number));
    }
    device->start(StateId::Print);
    return device->take();
}

void KeyboardManagerDevicesTest::keysOfTheOtherDeviceWork_data()
{
    QTest::addColumn<int>("missing");
    QTest::newRow("without the first") << 0;
    QTest::newRow("without the second") << 1;
}

void KeyboardManagerDevicesTest::keysOfTheOtherDeviceWork()
{
    QFETCH(int, missing);
    QCOMPARE(startWithout({missing}), QStringList{errorOf(missing)});
    device->press(1 - missing, KeyId::Up);
    device->release(1 - missing, KeyId::Up);
    QCOMPARE(device->take(), QStringList{"announce SingleKey PrintManager - Up"});
}

void KeyboardManagerDevicesTest::simulatedKeysNeedTheFirstDevice_data()
{
    keysOfTheOtherDeviceWork_data();
}

void KeyboardManagerDevicesTest::simulatedKeysNeedTheFirstDevice()
{
    QFETCH(int, missing);
    startWithout({missing});
    device->process(
        {{commandIdKey, "SimulateKey"}, {senderIdKey, "WwwApi"}, {actionIdKey, "Released"}, {keyKey, "Up"}});
    const QStringList announced{"announce SingleKey PrintManager WwwApi Up"};
    QCOMPARE(device->take().filter("announce"), missing == 0 ? QStringList() : announced);
}

void KeyboardManagerDevicesTest::worksWithoutDevices()
{
    QCOMPARE(startWithout({0, 1}), QStringList({errorOf(0), errorOf(1)}));
    const QVariantMap command{
        {commandIdKey, "SimulateModifier"}, {senderIdKey, "WwwApi"}, {keysListKey, QStringList{}}};
    QCOMPARE(device->process(command).value(resultIdKey).toString(), QString("Success"));
}

VIRTUAL_TIME_TEST_MAIN(KeyboardManagerDevicesTest)
#include "KeyboardManagerDevicesTest.moc"
