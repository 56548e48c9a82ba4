// SPDX-License-Identifier: MIT
#include "input/Keyboard.h"
#include "model/Autorepeat.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/ProcessFigures.h"
#include "tests/virtual/DeviceTest.h"
#include "tests/whole/faults/FaultSeeds.h"
#include "tests/whole/random/Dice.h"

#include <QTemporaryDir>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

/// The number of announcements of a key held for `held`: the first repetition after each announcement
/// restarts the time.
int longPressesIn(std::chrono::milliseconds held, std::chrono::milliseconds time)
{
    int count = 0;
    for (auto repetition = Autorepeat::delay; repetition + time < held; ++count) {
        const auto announced = repetition + time;
        while (repetition < announced) {
            repetition += Autorepeat::period;
        }
    }
    return count;
}

struct Obstacle
{
    QString path;
    QString reason;
};

/// Creates something that cannot be opened as a device, even by root.
Obstacle obstacle(Dice& dice, const QString& folder)
{
    const QString loop = folder + QStringLiteral("/loop");
    ::symlink("loop", qPrintable(loop));
    const QString file = folder + QStringLiteral("/file");
    ::close(::open(qPrintable(file), O_CREAT | O_CLOEXEC, 0600));
    return dice.pick<Obstacle>({{folder + "/event0", "No such file or directory"},
                                {folder, "Is a directory"},
                                {loop, "Too many levels of symbolic links"},
                                {file + "/event0", "Not a directory"}});
}

} // namespace

/// The faults that need no other process. Each function runs once for each of the FaultSeeds.
class DeviceFaultsTest : public DeviceTest
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase_data() { FaultSeeds::addRows(); }
    void aKeyIsHeldForAnHour();
    void tenThousandOpensFail();
};

void DeviceFaultsTest::aKeyIsHeldForAnHour()
{
    Dice dice(FaultSeeds::current());
    const QString key = dice.pick({KeyId::Help, KeyId::Feed, KeyId::Off});
    const int seconds = dice.below(4) + 1;
    const auto held = 1h + std::chrono::milliseconds(dice.below(100'000));
    start(StateId::Idle, {longRow(key, seconds, StateId::Idle, "Held")});
    device->hold(key, held);
    QCOMPARE(device->takeActions().size(), longPressesIn(held, std::chrono::seconds(seconds)));
    device->wait(1500ms);
    device->tap(KeyId::Menu);
    QCOMPARE(device->takeActions(), QStringList("announce SingleKey UserMenu KeyboardHandler Menu"));
}

void DeviceFaultsTest::tenThousandOpensFail()
{
    constexpr int opens = 10'000;
    Dice dice(FaultSeeds::current());
    const QTemporaryDir folder;
    const Obstacle obstacle = ::obstacle(dice, folder.path());
    Keyboard keyboard(obstacle.path);
    const int files = ProcessFigures::ownDescriptors();
    QStringList lines;
    {
        const LogRecorder log;
        for (int i = 0; i < opens; ++i) {
            QVERIFY(!keyboard.open());
        }
        lines = log.texts(QtCriticalMsg);
    }
    QCOMPARE(
        lines.count("Keyboard::open ERROR: Unable to open device " + obstacle.path + ": " + obstacle.reason),
        opens);
    QCOMPARE(lines.size(), opens);
    QCOMPARE(ProcessFigures::ownDescriptors(), files);

    const QString fifo = folder.filePath("event1");
    QCOMPARE(::mkfifo(qPrintable(fifo), 0600), 0);
    keyboard.setDevice(fifo);
    QVERIFY(keyboard.open());
    QSignalSpy events(&keyboard, &Keyboard::event);
    input_event record{};
    record.type = EV_KEY;
    const int writer = ::open(qPrintable(fifo), O_RDWR | O_CLOEXEC);
    QCOMPARE(::write(writer, &record, sizeof record), ssize_t(sizeof record));
    QCoreApplication::processEvents();
    QCOMPARE(events.size(), 1);
    ::close(writer);
}

VIRTUAL_TIME_TEST_MAIN(DeviceFaultsTest)
#include "DeviceFaultsTest.moc"
