// SPDX-License-Identifier: MIT
#include "tests/support/Waiting.h"
#include "tests/whole/system/SystemAbuseTest.h"

#include <array>
#include <cstdlib>

#include <fcntl.h>
#include <unistd.h>

namespace {

const QString ran = QStringLiteral("Process command response");
const QString helpTitle = QStringLiteral("================= Help =================");
const QString badArgument = QStringLiteral("Arguments must be of integer type!");
const QString badParameter = QStringLiteral("Parameters must be of integer type.");
const QString notFound = QStringLiteral("Command not found!");
const QString wrongCount = QStringLiteral("Too many/few arguments received for command \"%1\"");
const QString dropped = QStringLiteral("ls::ConsoleReader::readInput ERROR: line over 65536 bytes dropped.");

/// Releases Menu. Its announcement shows that all previous lines are handled.
const QByteArray marker = "C 7 0 139\n";

/// Owns a descriptor.
class Descriptor
{
public:
    explicit Descriptor(int number) : m_number(number) {}
    ~Descriptor() { close(); }

    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    int number() const { return m_number; }
    void handDown() { ::fcntl(m_number, F_SETFD, 0); }
    void close()
    {
        if (m_number != -1) {
            ::close(m_number);
            m_number = -1;
        }
    }

private:
    int m_number;
};

int openTerminal()
{
    const int terminal = ::posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    return ::grantpt(terminal) == 0 && ::unlockpt(terminal) == 0 ? terminal : -1;
}

int openFarEnd(int terminal)
{
    return ::open(::ptsname(terminal), O_RDWR | O_NOCTTY | O_CLOEXEC);
}

} // namespace

class SystemConsoleAbuseTest : public SystemAbuseTest
{
    Q_OBJECT

private Q_SLOTS:
    void anEndlessLineIsDropped();
    void unusualLinesAreHandled_data();
    void unusualLinesAreHandled();
    void anyBytesAreHarmless();
    void aLineMayBeSplitAnywhere();
    void theEndOfInputDoesNotCompleteALine();
    void closedInputIsNotRead();
    void aHundredThousandLinesDoNotDelayKeys();
    void anUnreadLogDoesNotBlock();
    void aLogWithoutReaderIsTolerated();
    void anUnreadTerminalDoesNotBlock_data();
    void anUnreadTerminalDoesNotBlock();

private:
    /// Types `bytes` and the marker; waits until the marker is announced.
    bool work(const QByteArray& bytes);
    /// Starts the daemon with these shell redirections.
    void redirect(const QString& redirections);
};

bool SystemConsoleAbuseTest::work(const QByteArray& bytes)
{
    QSignalSpy announced(&device(), &SimulatedDevice::announced);
    device().daemon().type(bytes + marker);
    WAIT_FOR(!announced.isEmpty() || !device().isRunning());
    return !announced.isEmpty();
}

void SystemConsoleAbuseTest::redirect(const QString& redirections)
{
    startThroughShell(QStringLiteral("exec \"$0\" ") + redirections);
}

void SystemConsoleAbuseTest::anEndlessLineIsDropped()
{
    QVERIFY(launch());
    const QByteArray line(10'000'000, 'C');
    int lines = 0;
    const auto attack = [&] {
        QVERIFY(work(line + '\n'));
        ++lines;
    };
    QCOMPARE(damageOf(attack), QString());
    WAIT_FOR_EQUAL(log().count(dropped), lines);
    QCOMPARE(completeLog().count(ran), lines);
}

void SystemConsoleAbuseTest::unusualLinesAreHandled_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QStringList>("log");
    const auto judge = [](const char* name, const QByteArray& line, const QStringList& log) {
        QTest::newRow(name) << line << log;
    };
    const QByteArray words = QByteArray(" 1").repeated(20'000);
    const QString simulate = QStringLiteral("KeyboardHandler::simulateKey ");
    judge("a carriage return at the end", "C 4\r", {ran});
    judge("two carriage returns", "C 4\r\r", {ran});
    judge("a sign", "C +4", {ran});
    judge("a zero byte in the first word", QByteArray("C\0 4", 4), {ran});
    judge("a zero byte after the number", QByteArray("C 4\0", 4), {badArgument});
    judge("no UTF-8", "C 4\xff", {badArgument});
    judge("digits of another script", "C \xd9\xa4", {badArgument});
    judge("a number of another base", "C 0x4", {badArgument});
    judge("a very long number", "C " + QByteArray(60'000, '9'), {badArgument});
    judge("a very long parameter", "C 7 0 " + QByteArray(60'000, '1'), {badParameter});
    judge("a number beyond all commands", "C 2147483647", {notFound, wrongCount.arg("")});
    judge("a negative number", "C -4", {notFound, wrongCount.arg("")});
    judge("thousands of words", "C 4" + words, {wrongCount.arg("GetLastKey")});
    judge("thousands of parameters", "C 7" + words, {wrongCount.arg("SimulateKey")});
    judge("thousands of words of an unknown command", "C 77" + words, {notFound, wrongCount.arg("")});
    judge("no key action", "C 7 -1 139",
          {ran, "Keyboard::simulateKey ERROR: Key value is invalid!", simulate + "FAILED!"});
    judge("the least key action", "C 7 -2147483648 139",
          {ran, simulate + "ERROR: Invalid key action received!"});
    judge("a huge key action", "C 7 2147483647 139", {ran, simulate + "ERROR: Invalid key action received!"});
    judge("a negative key", "C 7 0 -139", {ran, simulate + "ERROR: Invalid key received!"});
    judge("a huge key", "C 7 0 2147483647", {ran, simulate + "ERROR: Invalid key received!"});
    judge("a number beyond numbers", "C 7 0 2147483648", {badParameter});
    judge("help for a huge number", "HELP 2147483647", {notFound});
    judge("help for no number", "HELP \xff", {badArgument});
}

void SystemConsoleAbuseTest::unusualLinesAreHandled()
{
    QFETCH(QByteArray, line);
    QFETCH(QStringList, log);
    QVERIFY(launch());
    QVERIFY(work(line + '\n'));
    WAIT_FOR(this->log().contains(ran));
    const QStringList commandLog = completeLog().filter(
        QRegularExpression(QStringLiteral("ERROR|FAILED|argument|Arguments|Parameters|not found|response")));
    QCOMPARE(commandLog, log + QStringList(ran));
    QCOMPARE(faults(), QString());
}

void SystemConsoleAbuseTest::anyBytesAreHarmless()
{
    QByteArray bytes;
    for (int i = 0; i < 100'000; ++i) {
        bytes.append(char((i * 7919 + i / 251) % 256));
    }
    QVERIFY(launch());
    QCOMPARE(damageOf([&] { QVERIFY(work(bytes + '\n')); }), QString());
}

void SystemConsoleAbuseTest::aLineMayBeSplitAnywhere()
{
    const QByteArray line = "C 7 0 139\r\n";
    QVERIFY(launch());
    for (int split = 1; split < line.size(); ++split) {
        device().daemon().type(line.left(split));
        QVERIFY(nextKeyWorks());
        QSignalSpy announced(&device(), &SimulatedDevice::announced);
        device().daemon().type(line.mid(split));
        WAIT_FOR_EQUAL(announced.size(), 1);
    }
    WAIT_FOR_EQUAL(log().count(ran), line.size() - 1);
    QCOMPARE(completeLog().count(helpTitle), 0);
}

void SystemConsoleAbuseTest::theEndOfInputDoesNotCompleteALine()
{
    QVERIFY(launch());
    QVERIFY(work({}));
    device().daemon().type(marker.chopped(1));
    device().daemon().endInput();
    QVERIFY(idles());
    QCOMPARE(faults(), QString());
    QCOMPARE(completeLog().count(ran), 1);
}

/// Without /dev/null as descriptor 0, the daemon would read another of its files as console lines.
void SystemConsoleAbuseTest::closedInputIsNotRead()
{
    options.standardInput = DeviceOptions::StandardInput::Closed;
    QVERIFY(launch());
    const QString input = QStringLiteral("/proc/%1/fd/0").arg(device().daemon().processId());
    QCOMPARE(QFile::symLinkTarget(input), QStringLiteral("/dev/null"));
    QVERIFY(nextKeyWorks());
    QCOMPARE(completeLog().count(helpTitle), 0);
}

void SystemConsoleAbuseTest::aHundredThousandLinesDoNotDelayKeys()
{
    QVERIFY(launch());
    QSignalSpy announced(&device(), &SimulatedDevice::announced);
    device().daemon().type(QByteArray("C 4\n").repeated(100'000));
    QVERIFY(awaitLog(ran));
    tap(ls::KeyId::Menu);
    WAIT_FOR_EQUAL(announced.size(), 1);
    QVERIFY(work({}));
    QCOMPARE(faults(), QString());
}

void SystemConsoleAbuseTest::anUnreadLogDoesNotBlock()
{
    std::array<int, 2> ends{};
    QCOMPARE(::pipe2(ends.data(), O_CLOEXEC), 0);
    Descriptor reader(ends[0]);
    Descriptor writer(ends[1]);
    redirect(QStringLiteral("2>&%1 %1>&-").arg(writer.number()));
    QVERIFY(prepare());
    writer.handDown();
    QVERIFY(launch());
    QCOMPARE(damageOf([&] { QVERIFY(work(QByteArray("HELP S\n").repeated(500))); }), QString());
}

void SystemConsoleAbuseTest::aLogWithoutReaderIsTolerated()
{
    std::array<int, 2> ends{};
    QCOMPARE(::pipe2(ends.data(), O_CLOEXEC), 0);
    Descriptor reader(ends[0]);
    Descriptor writer(ends[1]);
    redirect(QStringLiteral("2>&%1 %1>&-").arg(writer.number()));
    QVERIFY(prepare());
    writer.handDown();
    reader.close();
    QVERIFY(launch());
    QCOMPARE(damageOf([&] { QVERIFY(work("HELP S\n")); }), QString());
}

void SystemConsoleAbuseTest::anUnreadTerminalDoesNotBlock_data()
{
    QTest::addColumn<QString>("redirections");
    QTest::newRow("as input") << "<&%1 %1>&-";
    QTest::newRow("as input and for the log") << "<&%1 2>&%1 %1>&-";
}

void SystemConsoleAbuseTest::anUnreadTerminalDoesNotBlock()
{
    QFETCH(QString, redirections);
    Descriptor terminal(openTerminal());
    Descriptor farEnd(openFarEnd(terminal.number()));
    redirect(redirections.arg(farEnd.number()));
    QVERIFY(prepare());
    farEnd.handDown();
    QVERIFY(launch());
    farEnd.close();
    QSignalSpy announced(&device(), &SimulatedDevice::announced);
    for (int i = 0; i < 2000; ++i) {
        // A terminal with unread echo may stop accepting input.
        const ssize_t count = ::write(terminal.number(), marker.constData(), size_t(marker.size()));
        WAIT_FOR(count == -1 || !announced.isEmpty());
    }
    QCOMPARE(faults(), QString());
    terminal.close();
    QVERIFY(idles());
    QCOMPARE(faults(), QString());
}

QTEST_GUILESS_MAIN(SystemConsoleAbuseTest)
#include "SystemConsoleAbuseTest.moc"
