// SPDX-License-Identifier: MIT
#include "tests/support/Waiting.h"
#include "tests/whole/system/SystemTest.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

namespace {

enum class Reader {
    Absent,  // nothing is read
    Stopped, // of a terminal
    Late     // another writer has filled the pipe before
};

const QByteArray refusal = "KeyboardHandler::process ERROR: Invalid command!\n";
const QByteArray otherLine = "another writer's line\n";

/// More lines than fit into a pipe or a terminal.
constexpr int commandCount = 2000;

} // namespace

Q_DECLARE_METATYPE(Reader)

/// Tests kinds of log files and their effect on keys. Inside the device, the log is /run/log.
class SystemLogTest : public SystemTest
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void keysAreNotBlockedByTheLog_data();
    void keysAreNotBlockedByTheLog();
    void fileIsSharedBetweenWriters_data();
    void fileIsSharedBetweenWriters();
    void fullDeviceIsTolerated();

private:
    QString logPath() { return device().folder().runFolder() + QStringLiteral("/log"); }
    void openTerminal();
    void openPipe();
    void fillPipe() const;
    void refuseCommands(int count);
    QByteArray unread() const;

    int m_reader = -1;
    int m_terminal = -1; // the daemon's side
};

void SystemLogTest::init()
{
    ::close(std::exchange(m_reader, -1)); // of the previous function
    ::close(std::exchange(m_terminal, -1));
}

void SystemLogTest::openTerminal()
{
    m_reader = ::posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    ::grantpt(m_reader);
    ::unlockpt(m_reader);
    const char* path = ::ptsname(m_reader);
    m_terminal = ::open(path, O_RDWR | O_NOCTTY | O_CLOEXEC);
    termios settings{};
    ::tcgetattr(m_terminal, &settings);
    ::cfmakeraw(&settings);
    ::tcsetattr(m_terminal, TCSANOW, &settings);
    options.viewArguments +=
        {QStringLiteral("--dev-bind"), QFile::decodeName(path), QStringLiteral("/run/log")};
}

void SystemLogTest::openPipe()
{
    const QByteArray path = QFile::encodeName(logPath());
    ::mkfifo(path.constData(), S_IRUSR | S_IWUSR);
    m_reader = ::open(path.constData(), O_RDWR | O_NONBLOCK | O_CLOEXEC);
}

void SystemLogTest::fillPipe() const
{
    while (::write(m_reader, otherLine.constData(), size_t(otherLine.size())) == otherLine.size()) {
    }
}

void SystemLogTest::refuseCommands(int count)
{
    for (int i = 0; i < count; ++i) {
        QCOMPARE(command(QStringLiteral("Dance")).value(ls::errorIdKey), QVariant(ls::ErrorId::InvalidCmd));
    }
}

QByteArray SystemLogTest::unread() const
{
    QByteArray all;
    char chunk[4096];
    for (ssize_t size = ::read(m_reader, chunk, sizeof chunk); size > 0;
         size = ::read(m_reader, chunk, sizeof chunk)) {
        all.append(chunk, int(size));
    }
    return all;
}

void SystemLogTest::keysAreNotBlockedByTheLog_data()
{
    QTest::addColumn<bool>("isTerminal");
    QTest::addColumn<bool>("isOwn");
    QTest::addColumn<Reader>("reader");
    for (const bool isOwn : {true, false}) {
        const char* owner = isOwn ? "own" : "another user's";
        QTest::addRow("%s pipe, unread", owner) << false << isOwn << Reader::Absent;
        QTest::addRow("%s pipe, filled by another writer", owner) << false << isOwn << Reader::Late;
        QTest::addRow("%s terminal, unread", owner) << true << isOwn << Reader::Absent;
        QTest::addRow("%s terminal, stopped", owner) << true << isOwn << Reader::Stopped;
    }
}

void SystemLogTest::keysAreNotBlockedByTheLog()
{
    QFETCH(bool, isTerminal);
    QFETCH(bool, isOwn);
    QFETCH(Reader, reader);
    if (!isOwn) { // has the descriptor, but no permission to open its file
        options.viewArguments = QStringList{QStringLiteral("--cap-drop"), QStringLiteral("ALL")};
    }
    startThroughShell(QStringLiteral("exec 2>/run/log; %1 exec \"$0\"")
                          .arg(isOwn ? QString() : QStringLiteral("chmod 0 /run/log;")));
    if (isTerminal) {
        openTerminal();
    }
    QVERIFY(prepare());
    if (!isTerminal) {
        openPipe();
    }
    QVERIFY(launch());
    if (reader == Reader::Stopped) {
        QCOMPARE(::tcflow(m_terminal, TCOOFF), 0);
    } else if (reader == Reader::Late) {
        fillPipe();
    }
    refuseCommands(commandCount);
    QVERIFY(nextKeyWorks());

    if (reader == Reader::Stopped) {
        QCOMPARE(::tcflow(m_terminal, TCOON), 0);
    }
    QByteArray log;
    WAIT_FOR_EQUAL((log += unread()).count(refusal), commandCount);
    log.replace(otherLine, QByteArray());
    QCOMPARE(log, "Successfully registered on DBus: \"com.vantre.KeyboardHandler\"\n" +
                      refusal.repeated(commandCount));
}

void SystemLogTest::fileIsSharedBetweenWriters_data()
{
    QTest::addColumn<QString>("redirection");
    QTest::newRow("with append") << ">>";
    QTest::newRow("without append") << ">";
}

void SystemLogTest::fileIsSharedBetweenWriters()
{
    QFETCH(QString, redirection);
    startThroughShell(
        QStringLiteral("exec 2%1/run/log; echo before >&2; \"$0\" & echo $! >/run/daemon; wait; "
                       "echo after >&2")
            .arg(redirection));
    QVERIFY(launch());
    refuseCommands(10);
    const auto contentOf = [](const QString& path) {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    };
    const QByteArray expected =
        "before\nSuccessfully registered on DBus: \"com.vantre.KeyboardHandler\"\n" + refusal.repeated(10);
    WAIT_FOR(contentOf(logPath()).size() >= expected.size());
    const QString process =
        QString::fromLatin1(contentOf(device().folder().runFolder() + QStringLiteral("/daemon")));
    QCOMPARE(::kill(process.toInt(), SIGTERM), 0);
    WAIT_FOR(!device().isRunning());
    QCOMPARE(contentOf(logPath()), expected + "after\n");
}

void SystemLogTest::fullDeviceIsTolerated()
{
    startThroughShell(QStringLiteral("exec \"$0\" 2>/dev/full"));
    QVERIFY(launch());
    refuseCommands(commandCount);
    QVERIFY(nextKeyWorks());
}

QTEST_GUILESS_MAIN(SystemLogTest)
#include "SystemLogTest.moc"
