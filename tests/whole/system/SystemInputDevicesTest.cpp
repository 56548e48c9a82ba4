// SPDX-License-Identifier: MIT
#include "tests/support/Waiting.h"
#include "tests/whole/system/SystemTest.h"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace {

/// Shows the number of bytes in a FIFO.
class FifoLevel
{
public:
    explicit FifoLevel(const QString& path)
        : m_descriptor(open(qPrintable(path), O_RDWR | O_NONBLOCK | O_CLOEXEC))
    {}
    ~FifoLevel() { close(m_descriptor); }
    FifoLevel(const FifoLevel&) = delete;
    FifoLevel& operator=(const FifoLevel&) = delete;

    bool isEmpty() const
    {
        int bytes = -1;
        return ioctl(m_descriptor, FIONREAD, &bytes) == 0 && bytes == 0;
    }

private:
    int m_descriptor;
};

QByteArray recordBytes(quint16 type, quint16 code, qint32 value)
{
    input_event record{};
    record.type = type;
    record.code = code;
    record.value = value;
    return {reinterpret_cast<const char*>(&record), int(sizeof record)};
}

} // namespace

class SystemInputDevicesTest : public SystemTest
{
    Q_OBJECT

private Q_SLOTS:
    void aMissingDeviceIsLoggedAndTheOtherWorks_data();
    void aMissingDeviceIsLoggedAndTheOtherWorks();
    void withoutDevicesCommandsWork();
    void recordsOtherThanKeysAreIgnored();
    void anUnknownKeyIsAnnouncedAsUndefined();
    void anInvalidKeyValueIsLogged();
    void aBurstOfRecordsLosesNoKey();
    void partsOfRecordsAreDropped();
};

void SystemInputDevicesTest::aMissingDeviceIsLoggedAndTheOtherWorks_data()
{
    QTest::addColumn<int>("missing");
    QTest::newRow("the first") << 0;
    QTest::newRow("the second") << 1;
}

void SystemInputDevicesTest::aMissingDeviceIsLoggedAndTheOtherWorks()
{
    QFETCH(int, missing);
    options.keyboards.at(size_t(missing)) = false;
    QVERIFY(launch());
    QVERIFY(awaitLog(QStringLiteral("Keyboard::open ERROR: Unable to open device /dev/input/event%1: "
                                    "No such file or directory")
                         .arg(missing)));
    tap(ls::KeyId::Menu, 1 - missing);
    QVERIFY(awaitAction(QStringLiteral("announce SingleKey UserMenu - Menu")));
}

void SystemInputDevicesTest::withoutDevicesCommandsWork()
{
    options.keyboards = {false, false};
    QVERIFY(launch());
    command(ls::KeyboardHandlerCmdId::SimulateModifier, {{ls::keysListKey, QStringList{"Help", "Ok"}}});
    QVERIFY(awaitAction(QStringLiteral("announce RepeatMessage UserMenu ServiceTool Help Ok")));
    // Simulated keys need the first device.
    command(ls::KeyboardHandlerCmdId::SimulateKey, {{ls::actionIdKey, "Released"}, {ls::keyKey, "Menu"}});
    QCOMPARE(actions().last(), QStringLiteral("answer errorId=Undefined resultId=Success"));
}

void SystemInputDevicesTest::recordsOtherThanKeysAreIgnored()
{
    QVERIFY(launch());
    device().record(0, {EV_MSC, MSC_SCAN, 139});
    device().record(0, {EV_SYN, SYN_DROPPED, 0});
    device().record(0, {EV_REL, REL_X, -1});
    device().record(0, {0xffff, 0xffff, -1});
    QVERIFY(nextKeyWorks());
    QCOMPARE(actions(), QStringList("announce SingleKey UserMenu - Menu"));
}

void SystemInputDevicesTest::anUnknownKeyIsAnnouncedAsUndefined()
{
    options.state = ls::StateId::Error;
    QVERIFY(launch());
    device().record(0, {EV_KEY, KEY_F24, 0});
    QVERIFY(awaitAction(QStringLiteral("announce SingleKey ErrorHandler - Undefined")));
}

void SystemInputDevicesTest::anInvalidKeyValueIsLogged()
{
    QVERIFY(launch());
    device().record(0, {EV_KEY, KEY_MENU, 3});
    QVERIFY(awaitLog(QStringLiteral("KeyboardManager::onKeyEvent ERROR: Action cannot be categorized!")));
    QVERIFY(nextKeyWorks());
}

void SystemInputDevicesTest::aBurstOfRecordsLosesNoKey()
{
    options.state = ls::StateId::Print;
    QVERIFY(launch());
    constexpr int presses = 2500; // of four records each
    for (int i = 0; i < presses; ++i) {
        tap(ls::KeyId::Up);
    }
    WAIT_FOR_EQUAL(actions().size(), presses);
    QCOMPARE(actions().count(QStringLiteral("announce SingleKey PrintManager KeyboardHandler Up")),
             presses - 1);
    QCOMPARE(device().panel().pending(0), 0);
}

void SystemInputDevicesTest::partsOfRecordsAreDropped()
{
    QVERIFY(launch());
    const FifoLevel level(device().folder().keyboardFile(0));
    const QByteArray noise = recordBytes(EV_MSC, MSC_SCAN, 1);
    for (int size = 1; size < noise.size(); ++size) {
        device().panel().writeRaw(0, noise.repeated(100) + noise.left(size));
        WAIT_FOR(level.isEmpty());
    }
    QVERIFY(nextKeyWorks());
    QCOMPARE(actions(), QStringList("announce SingleKey UserMenu - Menu"));
}

QTEST_GUILESS_MAIN(SystemInputDevicesTest)
#include "SystemInputDevicesTest.moc"
