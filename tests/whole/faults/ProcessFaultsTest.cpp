// SPDX-License-Identifier: MIT
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

void startThroughShell(DeviceOptions& options, const QString& script)
{
    options.daemon = QStringLiteral("/bin/sh");
    options.daemonArguments =
        QStringList{QStringLiteral("-c"), script, QStringLiteral(KEYBOARD_HANDLER_DAEMON)};
}

pid_t daemonOf(FaultTest& test)
{
    return pid_t(test.device().daemon().processId());
}

/// The number of bytes in a pipe.
int unreadBytes(const QString& path)
{
    const int pipe = ::open(qPrintable(path), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    int count = 0;
    ::ioctl(pipe, FIONREAD, &count);
    ::close(pipe);
    return count;
}

class FloodedInput : public Fault
{
public:
    using Fault::Fault;

    QString begin(FaultTest& test) override
    {
        // On a busy machine, the daemon may finish before the key is written.
        return FaultTest::await([&] {
            typeLines(test);
            return !test.receiverOfMenu().isEmpty() && unreadInput(test) > 0;
        })
                   ? QString()
                   : QStringLiteral("keys are not handled between the lines");
    }
    QString end(FaultTest& test) override
    {
        // Retries, because the log may still be full and drop the line.
        const QByteArray line = QByteArray(maxLineLength + 1 + dice.below(maxLineLength), 'C') + '\n';
        const int before = test.log().count(overlongLine);
        return FaultTest::await([&] {
            QSignalSpy announced(&test.device(), &SimulatedDevice::announced);
            test.device().daemon().type(line + "C 7 0 139\n");
            return FaultTest::await([&] { return !announced.isEmpty(); }) &&
                   test.log().count(overlongLine) > before;
        })
                   ? QString()
                   : QStringLiteral("an overlong line is not reported");
    }
    QStringList log() const override
    {
        return {QStringLiteral("QMap\\(.*\\)"), QStringLiteral("Process command response"),
                QStringLiteral("(|\\d+ log lines dropped: nobody read them\\.)"), overlongLine};
    }
    qint64 slackKiB() const override { return queueSlackKiB; }

private:
    void typeLines(FaultTest& test)
    {
        QByteArray lines;
        for (int i = 10'000 + dice.below(10'000); i > 0; --i) {
            lines += dice.pick({"C 4\n", "C 4 \r\n", "c 4\n"});
        }
        test.device().daemon().type(lines);
    }
    static int unreadInput(FaultTest& test)
    {
        return unreadBytes(QStringLiteral("/proc/%1/fd/0").arg(daemonOf(test)));
    }

    static constexpr int maxLineLength = 65536;
    const QString overlongLine =
        QStringLiteral("ls::ConsoleReader::readInput ERROR: line over 65536 bytes dropped.");
};

/// The key lists and the log are on a small disk; standard output is a device that is always full.
class FullDisk : public Fault
{
public:
    enum class From { Start, Later };

    FullDisk(quint64 seed, From from) : Fault(seed), m_from(from) {}

    void configure(DeviceOptions& options) override
    {
        options.viewArguments = QStringList{QStringLiteral("--size"), QStringLiteral("131072"),
                                            QStringLiteral("--tmpfs"), folder};
        const QString fill = QStringLiteral("cat /dev/zero 2>&- >%1/filler;").arg(folder);
        startThroughShell(options, QStringLiteral("cp %1/*.json %2; %3 exec \"$0\" >/dev/full 2>>%2/log")
                                       .arg(QStringLiteral(KEYBOARD_HANDLER_DATA_FOLDER), folder,
                                            m_from == From::Start ? fill : QString()));
    }
    QString begin(FaultTest& test) override
    {
        m_files = QStringLiteral("/proc/%1/root%2/").arg(daemonOf(test)).arg(folder);
        if (logLines().join('\n').contains(lineOfStart) != (m_from == From::Later)) {
            return QStringLiteral("the disk got full too late or too early");
        }
        if (!fill()) {
            return QStringLiteral("the disk is not full");
        }
        // The last block of the log may have room for some lines.
        const int lines = linesInABlock + dice.below(100);
        const int before = linesInLog();
        for (int i = 0; i < lines; ++i) {
            test.command(QStringLiteral("Dance"));
        }
        FaultTest::await([&] { return QFileInfo(m_files + QStringLiteral("log")).size() % blockSize == 0; });
        m_lines = linesInLog();
        return m_lines < before + lines ? QString() : QStringLiteral("the log has room");
    }
    QString end(FaultTest& test) override
    {
        QFile::remove(m_files + QStringLiteral("filler"));
        test.command(QStringLiteral("Dance"));
        if (!FaultTest::await([&] { return linesInLog() > m_lines; })) {
            return QStringLiteral("the log does not continue");
        }
        if (!unexpectedLine().isEmpty()) {
            return QStringLiteral("in the log: ") + unexpectedLine();
        }
        const int before = test.actions().filter(QStringLiteral("announce VolumeUp")).size();
        test.device().press(0, ls::KeyId::Function);
        test.tap(ls::KeyId::Up);
        test.device().release(0, ls::KeyId::Function);
        return FaultTest::await([&] {
            return test.actions().filter(QStringLiteral("announce VolumeUp")).size() == before + 1;
        })
                   ? QString()
                   : QStringLiteral("the daemon has no key lists");
    }

private:
    /// Writes until the disk is full.
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
    QStringList logLines() const
    {
        QFile log(m_files + QStringLiteral("log"));
        log.open(QIODevice::ReadOnly);
        return QString::fromUtf8(log.readAll()).split('\n');
    }
    int linesInLog() const
    {
        const QStringList lines = logLines();
        return int(std::count_if(lines.begin(), lines.end(), isOfCommand));
    }
    /// The first line that belongs neither to the command nor to the start.
    QString unexpectedLine() const
    {
        const QStringList lines = logLines();
        const auto odd = std::find_if_not(lines.begin(), lines.end(), [this](const QString& line) {
            return line.isEmpty() || isOfCommand(line) || line.startsWith(lineOfStart);
        });
        return odd == lines.end() ? QString() : *odd;
    }
    /// The line may be joined to a truncated one.
    static bool isOfCommand(const QString& line) { return line.endsWith(invalidCommand); }

    static constexpr int blockSize = 4096; // bytes
    static constexpr int linesInABlock = 100;
    const QString folder = QStringLiteral("/var/lib/keyboard-handler");
    const QString lineOfStart = QStringLiteral("Successfully ");
    const From m_from;
    QString m_files;
    int m_lines = 0;
};

/// Every attempt to open a file or socket fails.
class DescriptorLimit : public Fault
{
public:
    using Fault::Fault;

    QString begin(FaultTest& test) override
    {
        const QString folder = QStringLiteral("/proc/%1/fd/").arg(daemonOf(test));
        rlim_t limit = 0;
        for (int spare = sanitizerDescriptors; spare >= 0; ++limit) {
            spare -= ::access(qPrintable(folder + QString::number(limit)), F_OK) == 0 ? 0 : 1;
        }
        ::prlimit(daemonOf(test), RLIMIT_NOFILE, nullptr, &m_usual);
        const rlimit none{limit - 1, m_usual.rlim_max};
        if (::prlimit(daemonOf(test), RLIMIT_NOFILE, &none, nullptr) == -1) {
            return QStringLiteral("the limit cannot be set");
        }
        BusClient client(test.device().bus().address());
        for (int i = 0; i < commandCount; ++i) {
            const QString outcome = client.outcome(command());
            if (outcome != QLatin1String("OK")) {
                return QStringLiteral("a command fails: ") + outcome;
            }
        }
        return {};
    }
    QString end(FaultTest& test) override
    {
        return ::prlimit(daemonOf(test), RLIMIT_NOFILE, &m_usual, nullptr) == 0
                   ? QString()
                   : QStringLiteral("the limit cannot be lifted");
    }

private:
    static constexpr int commandCount = 3400; // 10,000 in the three rounds
#ifdef __SANITIZE_ADDRESS__
    static constexpr int sanitizerDescriptors = 2; // the sanitizer checks memory through a pipe
#else
    static constexpr int sanitizerDescriptors = 0;
#endif

    QVariantMap command()
    {
        return {{ls::commandIdKey,
                 dice.pick({ls::KeyboardHandlerCmdId::GetModifierKeyList,
                            ls::KeyboardHandlerCmdId::GetShortcutKeyList,
                            ls::KeyboardHandlerCmdId::GetLongKeysTimeout,
                            ls::KeyboardHandlerCmdId::GetLastKey, ls::KeyboardHandlerCmdId::GetTestResult})},
                {ls::senderIdKey, ls::ServiceId::WwwApi}};
    }

    rlimit m_usual{};
};

class StoppedInAChord : public Fault
{
public:
    using Fault::Fault;

    QString begin(FaultTest& test) override
    {
        if (!test.awaitLoneKey()) {
            return QStringLiteral("the router does not become idle");
        }
        const auto volume = [&] { return test.actions().filter(QStringLiteral("announce Volume")).size(); };
        const int before = volume();
        const QString key = dice.pick({ls::KeyId::Up, ls::KeyId::Down});
        const int stoppedAt = 1 + dice.below(3);
        const std::array<std::function<void()>, 4> chord{
            [&] { test.device().press(m_device, ls::KeyId::Function); },
            [&] { test.device().press(m_device, key); }, [&] { test.device().release(m_device, key); },
            [&] { test.device().release(m_device, ls::KeyId::Function); }};
        for (int step = 0; step < int(chord.size()); ++step) {
            if (step == stoppedAt && !stopAmidKeys(test)) {
                return QStringLiteral("the daemon is gone, or does not read");
            }
            chord.at(size_t(step))();
        }
        QTest::qWait(dice.below(500));
        signalTo(daemonOf(test), SIGCONT);
        return FaultTest::await([&] { return volume() == before + 1; })
                   ? QString()
                   : QStringLiteral("the shortcut is lost");
    }

private:
    /// Stops the daemon when it has read all previous keys.
    bool stopAmidKeys(FaultTest& test) const
    {
        const QString keys = test.device().folder().keyboardFile(m_device);
        return FaultTest::await([&] { return unreadBytes(keys) == 0; }) && signalTo(daemonOf(test), SIGSTOP);
    }

    const int m_device = dice.below(Panel::keyboardCount);
};

class SetClock : public Fault
{
public:
    using Fault::Fault;

    void configure(DeviceOptions& options) override
    {
        startThroughShell(options, QStringLiteral("export LD_PRELOAD=%1 STEP_CLOCK_FILE=/run/step-clock "
                                                  "QT_MESSAGE_PATTERN='%{time yyyy} %{message}' "
                                                  "ASAN_OPTIONS=\"verify_asan_link_order=0:$ASAN_OPTIONS\"; "
                                                  "exec \"$0\"")
                                       .replace(QStringLiteral("%1"), QStringLiteral(STEP_CLOCK)));
    }
    QString precede(FaultTest& test) override { return set(test, 0); }
    QString begin(FaultTest& test) override
    {
        const QString early = keyComesEarly(test);
        return early.isEmpty() ? keyComesLate(test) : early;
    }
    QStringList log() const override
    {
        return {QStringLiteral("\\d{4} ") + QRegularExpression::escape(invalidCommand),
                QStringLiteral("\\d{4} Successfully registered on DBus: .*")};
    }

private:
    static QString set(FaultTest& test, std::int64_t seconds)
    {
        QFile file(test.device().folder().runFolder() + QStringLiteral("/step-clock"));
        const bool isSet =
            file.open(QIODevice::ReadWrite) &&
            file.write(reinterpret_cast<const char*>(&seconds), sizeof seconds) == sizeof seconds;
        return isSet ? QString() : QStringLiteral("the clock cannot be set");
    }
    /// Sets the clock by some years and waits until the daemon has logged a line with the new time.
    QString step(FaultTest& test, int direction)
    {
        const std::int64_t seconds = std::int64_t(direction) * (1 + dice.below(10)) * 366 * 24 * 3600;
        const QString fault = set(test, seconds);
        const int year = QDateTime::currentDateTime().addSecs(seconds).date().year();
        test.command(QStringLiteral("Dance"));
        const bool isSeen = FaultTest::await(
            [&] { return !test.log().isEmpty() && test.log().last().startsWith(QString::number(year)); });
        return isSeen ? fault : QStringLiteral("the daemon does not see the step");
    }

    /// While Up is pending, sets the clock forwards, then replaces Up by Down.
    QString keyComesEarly(FaultTest& test)
    {
        const auto announced = [&](const char* key) {
            return test.actions()
                .filter(QRegularExpression(QStringLiteral("^announce .* %1$").arg(key)))
                .size();
        };
        const int up = announced("Up");
        const int down = announced("Down");
        QElapsedTimer waiting;
        waiting.start();
        test.tap(ls::KeyId::Up);
        const QString fault = step(test, 1);
        test.tap(ls::KeyId::Down);
        const bool wasInTime = waiting.elapsed() < 1500; // false on a very busy machine
        if (!FaultTest::await([&] { return announced("Down") == down + 1; })) {
            return QStringLiteral("the lone key is not announced");
        }
        return wasInTime && announced("Up") > up ? QStringLiteral("the step causes an announcement") : fault;
    }
    /// While Up is pending, sets the clock back.
    QString keyComesLate(FaultTest& test)
    {
        QSignalSpy announced(&test.device(), &SimulatedDevice::announced);
        test.tap(ls::KeyId::Up);
        const QString fault = step(test, -1);
        return FaultTest::await([&] { return !announced.isEmpty(); })
                   ? fault
                   : QStringLiteral("a key is not announced after the step");
    }
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
};

void ProcessFaultsTest::standardInputIsFlooded()
{
    FloodedInput fault(seed());
    QCOMPARE(damageFrom(fault), QString());
}

void ProcessFaultsTest::theDiskIsFullAtTheStart()
{
    FullDisk fault(seed(), FullDisk::From::Start);
    QCOMPARE(damageFrom(fault), QString());
}

void ProcessFaultsTest::theDiskBecomesFull()
{
    FullDisk fault(seed(), FullDisk::From::Later);
    QCOMPARE(damageFrom(fault), QString());
}

void ProcessFaultsTest::theDescriptorLimitIsReached()
{
    DescriptorLimit fault(seed());
    QCOMPARE(damageFrom(fault), QString());
}

void ProcessFaultsTest::theDaemonIsStoppedInAChord()
{
    StoppedInAChord fault(seed());
    QCOMPARE(damageFrom(fault), QString());
}

void ProcessFaultsTest::theClockIsSet()
{
    SetClock fault(seed());
    QCOMPARE(damageFrom(fault), QString());
}

QTEST_GUILESS_MAIN(ProcessFaultsTest)
#include "ProcessFaultsTest.moc"
