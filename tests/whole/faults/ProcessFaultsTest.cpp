// SPDX-License-Identifier: MIT
#include "tests/support/Waiting.h"
#include "tests/whole/faults/FaultTest.h"
#include "tests/whole/faults/Signals.h"
#include "tests/whole/system/BusClient.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>

#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/resource.h>
#include <unistd.h>

namespace {

const QString invalidCommand = QStringLiteral("KeyboardHandler::process ERROR: Invalid command!");
const QString overlongLine =
    QStringLiteral("ls::ConsoleReader::readInput ERROR: line over 65536 bytes dropped.");
constexpr int maxLineLength = 65536;

#ifdef __SANITIZE_ADDRESS__
constexpr int sanitizerDescriptors = 2; // the sanitizer checks memory through a pipe
#else
constexpr int sanitizerDescriptors = 0;
#endif

/// The number of bytes in a pipe.
int unreadBytes(const QString& path)
{
    const int pipe = ::open(qPrintable(path), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    int count = 0;
    ::ioctl(pipe, FIONREAD, &count);
    ::close(pipe);
    return count;
}

/// The small disk that holds the key lists and the log of a daemon.
class SmallDisk
{
public:
    static inline const QString folder = QStringLiteral("/var/lib/keyboard-handler");
    static inline const QString lineOfStart = QStringLiteral("Successfully ");

    explicit SmallDisk(pid_t daemon) : m_files(QStringLiteral("/proc/%1/root%2/").arg(daemon).arg(folder)) {}

    /// Writes until the disk is full; false if writing fails for another reason.
    bool fill() const
    {
        const int file = ::open(qPrintable(m_files + QStringLiteral("filler")),
                                O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
        while (::write(file, "x", 1) == 1) {
        }
        const bool isFull = errno == ENOSPC;
        ::close(file);
        return isFull;
    }
    void clear() const { QFile::remove(m_files + QStringLiteral("filler")); }

    bool logFillsItsBlocks() const
    {
        constexpr int blockSize = 4096;
        return QFileInfo(m_files + QStringLiteral("log")).size() % blockSize == 0;
    }
    QStringList log() const
    {
        QFile log(m_files + QStringLiteral("log"));
        log.open(QIODevice::ReadOnly);
        return QString::fromUtf8(log.readAll()).split('\n');
    }
    /// The number of lines about rejected commands. Such a line may be joined to a truncated one.
    int refusals() const { return log().filter(refusal).size(); }
    /// The lines that belong neither to rejected commands nor to the start.
    QStringList otherLines() const
    {
        return log().filter(
            QRegularExpression(QStringLiteral("^(?!$|%1|.*%2)").arg(lineOfStart, refusal.pattern())));
    }

private:
    static inline const QRegularExpression refusal{QRegularExpression::escape(invalidCommand) + '$'};
    const QString m_files;
};

} // namespace

class ProcessFaultsTest : public FaultTest
{
    Q_OBJECT

private Q_SLOTS:
    void standardInputIsFlooded();
    void theDiskIsFullAtTheStart();
    void theDiskBecomesFull();
    void theDescriptorLimitIsReached();
    void theDaemonIsStoppedInAChord();
    void theClockIsSet();

private:
    pid_t daemon() { return pid_t(device().daemon().processId()); }
    /// The number of announcements with this pattern.
    int announced(const QString& pattern) const
    {
        return actions().filter(QRegularExpression("^announce " + pattern)).size();
    }

    void typeManyLines();
    void verifyFullDisk(bool isFullAtStart);
    void fillDisk(const SmallDisk& disk);
    void verifyDescriptorLimit(rlimit& usual);
    void pressChord(int keyboard);
    void setClock(std::int64_t seconds);
    void stepClock(int direction);
};

void ProcessFaultsTest::typeManyLines()
{
    QByteArray lines;
    for (int i = 10'000 + dice.below(10'000); i > 0; --i) {
        lines += dice.pick({"C 4\n", "C 4 \r\n", "c 4\n"});
    }
    device().daemon().type(lines);
}

void ProcessFaultsTest::standardInputIsFlooded()
{
    const auto isKeyHandledBetween = [&] {
        typeManyLines();
        return !receiverOfMenu().isEmpty() && unreadBytes(QStringLiteral("/proc/%1/fd/0").arg(daemon())) > 0;
    };
    // Needs retries, because the log may still be full and drop the report.
    const auto isOverlongLineReported = [&] {
        const QByteArray line = QByteArray(maxLineLength + 1 + dice.below(maxLineLength), 'C') + '\n';
        const int before = log().count(overlongLine);
        QSignalSpy announcements(&device(), &SimulatedDevice::announced);
        device().daemon().type(line + "C 7 0 139\n");
        WAIT_FOR(!announcements.isEmpty());
        return log().count(overlongLine) > before;
    };
    Fault fault;
    // On a busy machine, the daemon may finish before the key is written.
    fault.begin = [&] { WAIT_FOR(isKeyHandledBetween()); };
    fault.end = [&] { WAIT_FOR(isOverlongLineReported()); };
    fault.log = QStringList{QStringLiteral("QMap\\(.*\\)"), QStringLiteral("Process command response"),
                            QStringLiteral("(|\\d+ log lines dropped: nobody read them\\.)"), overlongLine};
    fault.slackKiB = Fault::queueSlackKiB;
    verifyResilience(fault);
}

/// Fills the disk, and has the daemon log lines until the last block of the log is full, too.
void ProcessFaultsTest::fillDisk(const SmallDisk& disk)
{
    constexpr int linesOfABlock = 100;
    QVERIFY(disk.fill());
    const int lines = linesOfABlock + dice.below(linesOfABlock);
    const int before = disk.refusals();
    for (int i = 0; i < lines; ++i) {
        command(QStringLiteral("Dance"));
    }
    WAIT_FOR(disk.logFillsItsBlocks());
    QVERIFY2(disk.refusals() < before + lines, "the log has room");
}

/// The key lists and the log are on a small disk; standard output is a device that is always full.
void ProcessFaultsTest::verifyFullDisk(bool isFullAtStart)
{
    options.viewArguments = QStringList{QStringLiteral("--size"), QStringLiteral("131072"),
                                        QStringLiteral("--tmpfs"), SmallDisk::folder};
    const QString fill = QStringLiteral("cat /dev/zero 2>&- >%1/filler;").arg(SmallDisk::folder);
    startThroughShell(QStringLiteral("cp %1/*.json %2; %3 exec \"$0\" >/dev/full 2>>%2/log")
                          .arg(QStringLiteral(KEYBOARD_HANDLER_DATA_FOLDER), SmallDisk::folder,
                               isFullAtStart ? fill : QString()));
    Fault fault;
    int lines = 0;
    fault.begin = [&] {
        const SmallDisk disk(daemon());
        QCOMPARE(disk.log().filter(SmallDisk::lineOfStart).isEmpty(), isFullAtStart);
        fillDisk(disk);
        lines = disk.refusals();
    };
    fault.end = [&] {
        const SmallDisk disk(daemon());
        disk.clear();
        command(QStringLiteral("Dance"));
        WAIT_FOR(disk.refusals() > lines);
        QCOMPARE(disk.otherLines().join('\n'), QString());
        const int before = announced(QStringLiteral("VolumeUp"));
        device().press(0, ls::KeyId::Function);
        tap(ls::KeyId::Up);
        device().release(0, ls::KeyId::Function);
        WAIT_FOR_EQUAL(announced(QStringLiteral("VolumeUp")), before + 1);
    };
    verifyResilience(fault);
}

void ProcessFaultsTest::theDiskIsFullAtTheStart()
{
    verifyFullDisk(true);
}

void ProcessFaultsTest::theDiskBecomesFull()
{
    verifyFullDisk(false);
}

/// Sets the limit so that every attempt to open a file or socket fails.
void ProcessFaultsTest::verifyDescriptorLimit(rlimit& usual)
{
    constexpr int commandCount = 3400; // 10,000 in the three rounds
    const QString folder = QStringLiteral("/proc/%1/fd/").arg(daemon());
    rlim_t limit = 0;
    for (int spare = sanitizerDescriptors; spare >= 0; ++limit) {
        spare -= ::access(qPrintable(folder + QString::number(limit)), F_OK) == 0 ? 0 : 1;
    }
    ::prlimit(daemon(), RLIMIT_NOFILE, nullptr, &usual);
    const rlimit none{limit - 1, usual.rlim_max};
    QCOMPARE(::prlimit(daemon(), RLIMIT_NOFILE, &none, nullptr), 0);
    BusClient client(device().bus().address());
    for (int i = 0; i < commandCount; ++i) {
        const QString name = dice.pick(
            {ls::KeyboardHandlerCmdId::GetModifierKeyList, ls::KeyboardHandlerCmdId::GetShortcutKeyList,
             ls::KeyboardHandlerCmdId::GetLongKeysTimeout, ls::KeyboardHandlerCmdId::GetLastKey,
             ls::KeyboardHandlerCmdId::GetTestResult});
        QCOMPARE(client.outcome({{ls::commandIdKey, name}, {ls::senderIdKey, ls::ServiceId::WwwApi}}),
                 QStringLiteral("OK"));
    }
}

void ProcessFaultsTest::theDescriptorLimitIsReached()
{
    rlimit usual{};
    Fault fault;
    fault.begin = [&] { verifyDescriptorLimit(usual); };
    fault.end = [&] { QCOMPARE(::prlimit(daemon(), RLIMIT_NOFILE, &usual, nullptr), 0); };
    verifyResilience(fault);
}

/// Types a shortcut and stops the daemon within it, when the daemon has read all previous keys.
void ProcessFaultsTest::pressChord(int keyboard)
{
    const QString keys = device().folder().keyboardFile(keyboard);
    const QString key = dice.pick({ls::KeyId::Up, ls::KeyId::Down});
    const int stoppedAt = 1 + dice.below(3);
    const std::array<std::function<void()>, 4> chord{
        [&] { device().press(keyboard, ls::KeyId::Function); }, [&] { device().press(keyboard, key); },
        [&] { device().release(keyboard, key); }, [&] { device().release(keyboard, ls::KeyId::Function); }};
    for (int step = 0; step < int(chord.size()); ++step) {
        if (step == stoppedAt) {
            WAIT_FOR_EQUAL(unreadBytes(keys), 0);
            QVERIFY(signalTo(daemon(), SIGSTOP));
        }
        chord.at(size_t(step))();
    }
}

void ProcessFaultsTest::theDaemonIsStoppedInAChord()
{
    const int keyboard = dice.below(Panel::keyboardCount);
    Fault fault;
    fault.begin = [&] {
        QVERIFY(awaitLoneKey());
        const int before = announced(QStringLiteral("Volume"));
        pressChord(keyboard);
        QTest::qWait(dice.below(500));
        QVERIFY(signalTo(daemon(), SIGCONT));
        WAIT_FOR_EQUAL(announced(QStringLiteral("Volume")), before + 1);
    };
    verifyResilience(fault);
}

void ProcessFaultsTest::setClock(std::int64_t seconds)
{
    QFile file(device().folder().runFolder() + QStringLiteral("/step-clock"));
    QVERIFY(file.open(QIODevice::ReadWrite));
    QCOMPARE(file.write(reinterpret_cast<const char*>(&seconds), sizeof seconds), qint64(sizeof seconds));
}

/// Sets the clock by some years and waits until the daemon has logged a line with the new time.
void ProcessFaultsTest::stepClock(int direction)
{
    const std::int64_t seconds = std::int64_t(direction) * (1 + dice.below(10)) * 366 * 24 * 3600;
    setClock(seconds);
    const int year = QDateTime::currentDateTime().addSecs(seconds).date().year();
    command(QStringLiteral("Dance"));
    WAIT_FOR(!log().isEmpty() && log().last().startsWith(QString::number(year)));
}

void ProcessFaultsTest::theClockIsSet()
{
    startThroughShell(QStringLiteral("export LD_PRELOAD=%1 STEP_CLOCK_FILE=/run/step-clock "
                                     "QT_MESSAGE_PATTERN='%{time yyyy} %{message}' "
                                     "ASAN_OPTIONS=\"verify_asan_link_order=0:$ASAN_OPTIONS\"; "
                                     "exec \"$0\"")
                          .replace(QStringLiteral("%1"), QStringLiteral(STEP_CLOCK)));
    const QString up = QStringLiteral(".* Up$");
    const QString down = QStringLiteral(".* Down$");
    Fault fault;
    fault.precede = [&] { setClock(0); };
    fault.begin = [&] {
        // While Up is pending, sets the clock forwards, then replaces Up by Down.
        const int upBefore = announced(up);
        const int downBefore = announced(down);
        QElapsedTimer waiting;
        waiting.start();
        tap(ls::KeyId::Up);
        stepClock(1);
        tap(ls::KeyId::Down);
        const bool wasInTime = waiting.elapsed() < 1500; // false on a very busy machine
        WAIT_FOR_EQUAL(announced(down), downBefore + 1);
        QVERIFY2(!wasInTime || announced(up) == upBefore, "the step causes an announcement");
        // While Up is pending, sets the clock back.
        QSignalSpy announcements(&device(), &SimulatedDevice::announced);
        tap(ls::KeyId::Up);
        stepClock(-1);
        WAIT_FOR(!announcements.isEmpty());
    };
    fault.log = QStringList{QStringLiteral("\\d{4} ") + QRegularExpression::escape(invalidCommand),
                            QStringLiteral("\\d{4} Successfully registered on DBus: .*")};
    verifyResilience(fault);
}

QTEST_GUILESS_MAIN(ProcessFaultsTest)
#include "ProcessFaultsTest.moc"
