// SPDX-License-Identifier: MIT
#include "tests/daemon/app/LogProcess.h"

#include <QTemporaryFile>
#include <QtTest>

#include <fcntl.h>
#include <grp.h>
#include <sys/ioctl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

namespace {

constexpr size_t maxChunkSize = 4096; // bytes

enum class Kind { Pipe, Terminal, Socket };

/// A possible standard error of a process, and its reading end.
struct Channel
{
    explicit Channel(Kind kind);
    ~Channel();
    Channel(const Channel&) = delete;
    Channel& operator=(const Channel&) = delete;

    /// Reads until the text ends with `end` or nothing more can be read.
    QByteArray readUntil(const QByteArray& end, size_t maxChunk = maxChunkSize) const;
    void closeWriter() { ::close(std::exchange(writer, -1)); }

    int reader = -1;
    int writer = -1;
};

Channel::Channel(Kind kind)
{
    int ends[2] = {-1, -1};
    if (kind == Kind::Terminal) {
        ends[0] = ::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
        ::grantpt(ends[0]);
        ::unlockpt(ends[0]);
        ends[1] = ::open(::ptsname(ends[0]), O_RDWR | O_NOCTTY | O_CLOEXEC);
        termios settings{};
        ::tcgetattr(ends[1], &settings);
        ::cfmakeraw(&settings);
        ::tcsetattr(ends[1], TCSANOW, &settings);
    } else if (kind == Kind::Socket) {
        ::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends);
    } else if (::pipe2(ends, O_CLOEXEC) == -1) {
        return;
    }
    reader = ends[0];
    writer = ends[1];
}

Channel::~Channel()
{
    ::close(reader);
    ::close(writer);
}

QByteArray Channel::readUntil(const QByteArray& end, size_t maxChunk) const
{
    QByteArray all;
    char chunk[maxChunkSize];
    for (ssize_t size = 1; size > 0 && !all.endsWith(end);) {
        size = ::read(reader, chunk, maxChunk);
        all.append(chunk, static_cast<int>(std::max<ssize_t>(size, 0)));
    }
    return all;
}

/// Removes this process's permission to open `file`, but keeps its open descriptor.
void becomeAnotherUser(int file)
{
    constexpr uid_t nobody = 65534;
    ::fchmod(file, 0);
    if (::geteuid() == 0 && (::setgroups(0, nullptr) == -1 || ::setuid(nobody) == -1)) {
        std::abort();
    }
}

QByteArray line(int number)
{
    return "line " + QByteArray::number(number) + ' ' + QByteArray(90, 'x') + '\n';
}

QByteArray lines(int count)
{
    QByteArray all;
    for (int i = 0; i < count; ++i) {
        all += line(i);
    }
    return all;
}

void logLines(int count)
{
    for (int i = 0; i < count; ++i) {
        qCritical("%s", line(i).chopped(1).constData());
    }
}

constexpr int manyLines = 3000; // much more than fits into a pipe, a socket or a terminal

} // namespace

Q_DECLARE_METATYPE(Kind)

class LogOutputTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void unreadLogDoesNotBlock_data();
    void unreadLogDoesNotBlock();
    void linesKeepTheirOrderWhileTheLogIsRead_data() { unreadLogDoesNotBlock_data(); }
    void linesKeepTheirOrderWhileTheLogIsRead();
    void stoppedTerminalDoesNotBlock_data() { addOwners(); }
    void stoppedTerminalDoesNotBlock();
    void linesAreNotSplitByAnotherWriter_data() { addOwners(); }
    void linesAreNotSplitByAnotherWriter();
    void nonBlockingPipeKeepsEveryLine();
    void droppedLinesAreCountedWhenThereIsRoom();
    void overlongLineIsWritten();
    void filesAreSharedWithOtherWriters_data();
    void filesAreSharedWithOtherWriters();
    void patternIsAppliedLikeInQt_data();
    void patternIsAppliedLikeInQt();
    void exitWaitsForTheReader();
    void fatalMessageWaitsForTheReader();
    void unreadLogDoesNotBlockTheExit_data() { unreadLogDoesNotBlock_data(); }
    void unreadLogDoesNotBlockTheExit();
    void unwritableLogIsTolerated_data();
    void unwritableLogIsTolerated();
    void terminalThatStopsBackgroundWritersDoesNotStopTheProcess();
    void fileSizeLimitDoesNotEndTheProcess();
    void linesAreQueuedUntilAThreadCanBeCreated();

private:
    static void addOwners();
};

void LogOutputTest::initTestCase()
{
    qputenv("QT_FORCE_STDERR_LOGGING", "1");
}

void LogOutputTest::addOwners()
{
    QTest::addColumn<bool>("isOwn");
    QTest::newRow("own") << true;
    QTest::newRow("another user's") << false;
}

void LogOutputTest::unreadLogDoesNotBlock_data()
{
    QTest::addColumn<Kind>("kind");
    QTest::addColumn<bool>("isOwn");
    QTest::newRow("pipe") << Kind::Pipe << true;
    QTest::newRow("another user's pipe") << Kind::Pipe << false;
    QTest::newRow("terminal") << Kind::Terminal << true;
    QTest::newRow("another user's terminal") << Kind::Terminal << false;
    QTest::newRow("socket") << Kind::Socket << true;
}

void LogOutputTest::unreadLogDoesNotBlock()
{
    QFETCH(Kind, kind);
    QFETCH(bool, isOwn);
    const Channel channel(kind);
    LogProcess process(channel.writer, [&] {
        if (!isOwn) {
            becomeAnotherUser(STDERR_FILENO);
        }
        logLines(manyLines);
    });
    QVERIFY(process.awaitLogged());
    QCOMPARE(channel.readUntil(line(manyLines - 1)), lines(manyLines));
    QCOMPARE(::fcntl(channel.writer, F_GETFL) & O_NONBLOCK, 0);
}

void LogOutputTest::linesKeepTheirOrderWhileTheLogIsRead()
{
    QFETCH(Kind, kind);
    QFETCH(bool, isOwn);
    const Channel channel(kind);
    LogProcess process(channel.writer, [&] {
        if (!isOwn) {
            becomeAnotherUser(STDERR_FILENO);
        }
        logLines(manyLines);
    });
    // Slowly, so that some lines are written while others are queued.
    QCOMPARE(channel.readUntil(line(manyLines - 1), 16), lines(manyLines));
}

void LogOutputTest::stoppedTerminalDoesNotBlock()
{
    QFETCH(bool, isOwn);
    const Channel terminal(Kind::Terminal);
    QCOMPARE(::tcflow(terminal.writer, TCOOFF), 0);
    LogProcess process(terminal.writer, [&] {
        if (!isOwn) {
            becomeAnotherUser(STDERR_FILENO);
        }
        logLines(manyLines);
    });
    QVERIFY(process.awaitLogged());
    int unread = -1;
    QCOMPARE(::ioctl(terminal.reader, FIONREAD, &unread), 0);
    QCOMPARE(unread, 0);
    QCOMPARE(::tcflow(terminal.writer, TCOON), 0);
    QCOMPARE(terminal.readUntil(line(manyLines - 1)), lines(manyLines));
}

/// Another process repeatedly leaves less room than a line needs.
void LogOutputTest::linesAreNotSplitByAnotherWriter()
{
    QFETCH(bool, isOwn);
    const Channel pipe(Kind::Pipe);
    const int size = ::fcntl(pipe.writer, F_SETPIPE_SZ, 4096);
    const QByteArray other(50, 'o');
    const QByteArray filler = other.repeated(size / other.size() + 1).left(size - 50) + '\n';
    QCOMPARE(::write(pipe.writer, filler.constData(), size_t(filler.size())), ssize_t(filler.size()));
    LogProcess process(pipe.writer, [&] {
        if (!isOwn) {
            becomeAnotherUser(STDERR_FILENO);
        }
        logLines(manyLines);
    });
    QVERIFY(process.awaitLogged());
    LogProcess otherWriter(pipe.writer, [&] {
        for (int i = 0; i < manyLines; ++i) {
            const QByteArray text = other + '\n';
            [[maybe_unused]] const ssize_t written =
                ::write(STDERR_FILENO, text.constData(), size_t(text.size()));
        }
    });
    QByteArray own;
    for (QByteArray rest; !own.endsWith(line(manyLines - 1));) {
        rest += pipe.readUntil("\n");
        for (int end = rest.indexOf('\n'); end != -1; end = rest.indexOf('\n')) {
            const QByteArray text = rest.left(end + 1);
            rest.remove(0, end + 1);
            QVERIFY2(text.startsWith("line ") || text.count('o') == text.size() - 1, text.constData());
            own += text.startsWith("line ") ? text : QByteArray();
        }
    }
    QCOMPARE(own, lines(manyLines));
}

void LogOutputTest::nonBlockingPipeKeepsEveryLine()
{
    const Channel pipe(Kind::Pipe);
    QCOMPARE(::fcntl(pipe.writer, F_SETFL, O_NONBLOCK), 0);
    LogProcess process(pipe.writer, [] { logLines(manyLines); });
    QVERIFY(process.awaitLogged());
    QCOMPARE(pipe.readUntil(line(manyLines - 1)), lines(manyLines));
}

void LogOutputTest::droppedLinesAreCountedWhenThereIsRoom()
{
    constexpr int count = 30000;
    const Channel pipe(Kind::Pipe);
    LogProcess process(pipe.writer, [] { logLines(count); });
    QVERIFY(process.awaitLogged());
    const QByteArray text = " log lines dropped: nobody read them.\n";
    const QByteArray read = pipe.readUntil(text);
    const int kept = read.count('\n') - 1;
    QCOMPARE(read, lines(kept) + QByteArray::number(count - kept) + text);
    const int capacity = ::fcntl(pipe.writer, F_GETPIPE_SZ);
    QVERIFY(read.size() > 1024 * 1024);
    QVERIFY(read.size() <= 1024 * 1024 + capacity + text.size() + 10);
}

void LogOutputTest::overlongLineIsWritten()
{
    const Channel pipe(Kind::Pipe);
    const QByteArray text(2 * 1024 * 1024, 'x');
    LogProcess process(pipe.writer, [&] { qCritical("%s", text.constData()); });
    QVERIFY(process.awaitLogged());
    QCOMPARE(pipe.readUntil("\n"), text + '\n');
}

void LogOutputTest::filesAreSharedWithOtherWriters_data()
{
    QTest::addColumn<int>("flags");
    QTest::newRow("with append") << O_APPEND;
    QTest::newRow("without append") << 0;
}

void LogOutputTest::filesAreSharedWithOtherWriters()
{
    QFETCH(int, flags);
    QTemporaryFile file;
    QVERIFY(file.open());
    const int log = ::open(qPrintable(file.fileName()), O_WRONLY | O_CLOEXEC | flags);
    QCOMPARE(::write(log, "before\n", 7), ssize_t(7));
    LogProcess process(log, [] { logLines(10); });
    process.end();
    QCOMPARE(process.status(), 0);
    QCOMPARE(::write(log, "after\n", 6), ssize_t(6));
    ::close(log);
    QCOMPARE(file.readAll(), "before\n" + lines(10) + "after\n");
}

void LogOutputTest::patternIsAppliedLikeInQt_data()
{
    QTest::addColumn<QString>("pattern");
    QTest::newRow("the usual one") << "%{if-category}%{category}: %{endif}%{message}";
    QTest::newRow("with the category") << "%{category} %{message}";
    QTest::newRow("critical lines only") << "%{if-critical}%{message}%{endif}";
    QTest::newRow("a text for critical lines only") << "%{if-critical}critical%{endif}";
    QTest::newRow("nothing") << "";
}

void LogOutputTest::patternIsAppliedLikeInQt()
{
    QFETCH(QString, pattern);
    QByteArray written[2];
    for (const bool isQt : {false, true}) {
        Channel pipe(Kind::Pipe);
        LogProcess process(pipe.writer, [&] {
            if (isQt) {
                qInstallMessageHandler(nullptr);
            }
            qSetMessagePattern(pattern);
            qCritical("a critical line");
            qDebug("a line");
            qCritical("%s", "");
            qDebug() << "";
            qCritical("two\nlines");
        });
        pipe.closeWriter();
        process.end();
        written[isQt] = pipe.readUntil("the end of the file");
        QCOMPARE(process.status(), 0);
    }
    QCOMPARE(written[0], written[1]);
}

void LogOutputTest::exitWaitsForTheReader()
{
    Channel pipe(Kind::Pipe);
    LogProcess process(pipe.writer, [] { logLines(manyLines); });
    pipe.closeWriter();
    QVERIFY(process.awaitLogged());
    process.end();
    QCOMPARE(pipe.readUntil("the end of the file"), lines(manyLines));
    QCOMPARE(process.status(), 0);
}

void LogOutputTest::fatalMessageWaitsForTheReader()
{
    Channel pipe(Kind::Pipe);
    LogProcess process(pipe.writer, [] {
        const rlimit noCore{0, 0};
        ::setrlimit(RLIMIT_CORE, &noCore);
        logLines(manyLines);
        qFatal("the last line");
    });
    pipe.closeWriter();
    QCOMPARE(pipe.readUntil("the end of the file"), lines(manyLines) + "the last line\n");
    QCOMPARE(process.status(), 128 + SIGABRT);
}

void LogOutputTest::unreadLogDoesNotBlockTheExit()
{
    QFETCH(Kind, kind);
    QFETCH(bool, isOwn);
    const Channel channel(kind);
    LogProcess process(channel.writer, [&] {
        if (!isOwn) {
            becomeAnotherUser(STDERR_FILENO);
        }
        logLines(manyLines);
    });
    process.end();
    QCOMPARE(process.status(), 0);
}

void LogOutputTest::unwritableLogIsTolerated_data()
{
    QTest::addColumn<int>("log");
    Channel unread(Kind::Pipe);
    Channel closedSocket(Kind::Socket);
    QTest::newRow("closed") << -1;
    QTest::newRow("full") << ::open("/dev/full", O_WRONLY | O_CLOEXEC);
    QTest::newRow("without a right to write") << ::open("/dev/null", O_RDONLY | O_CLOEXEC);
    QTest::newRow("pipe without a reader") << std::exchange(unread.writer, -1);
    QTest::newRow("socket without a reader") << std::exchange(closedSocket.writer, -1);
}

void LogOutputTest::unwritableLogIsTolerated()
{
    QFETCH(int, log);
    LogProcess process(log, [&] {
        if (log == -1) {
            ::close(STDERR_FILENO);
        }
        logLines(manyLines);
    });
    process.end();
    QCOMPARE(process.status(), 0);
    ::close(log);
}

void LogOutputTest::terminalThatStopsBackgroundWritersDoesNotStopTheProcess()
{
    const Channel terminal(Kind::Terminal);
    // A session leader, so that the logging process is in the background of its terminal.
    LogProcess leader(terminal.writer, [] {
        termios settings{};
        if (::setsid() == -1 || ::ioctl(STDERR_FILENO, TIOCSCTTY, 0) == -1 ||
            ::tcgetattr(STDERR_FILENO, &settings) == -1) {
            std::abort();
        }
        settings.c_lflag |= TOSTOP;
        ::tcsetattr(STDERR_FILENO, TCSANOW, &settings);
        const pid_t background = ::fork();
        if (background == 0) {
            ::setpgid(0, 0);
            logLines(10);
            std::exit(EXIT_SUCCESS);
        }
        int status = 0;
        ::waitpid(background, &status, WUNTRACED);
        if (!WIFEXITED(status)) {
            ::kill(background, SIGKILL);
            std::abort();
        }
    });
    QVERIFY(leader.awaitLogged());
    QCOMPARE(terminal.readUntil(line(9)), lines(10));
}

void LogOutputTest::fileSizeLimitDoesNotEndTheProcess()
{
    QTemporaryFile file;
    QVERIFY(file.open());
    LogProcess process(::dup(file.handle()), [] {
        const rlimit limit{1000, 1000};
        ::setrlimit(RLIMIT_FSIZE, &limit);
        logLines(manyLines);
    });
    process.end();
    QCOMPARE(process.status(), 0);
    QCOMPARE(QFile(file.fileName()).size(), 1000);
}

void LogOutputTest::linesAreQueuedUntilAThreadCanBeCreated()
{
    const Channel pipe(Kind::Pipe);
    LogProcess process(pipe.writer, [&] {
        becomeAnotherUser(STDERR_FILENO); // root has no such limit
        rlimit usual{};
        ::getrlimit(RLIMIT_NPROC, &usual);
        const rlimit none{0, usual.rlim_max};
        ::setrlimit(RLIMIT_NPROC, &none);
        logLines(9);
        int unread = -1;
        if (::ioctl(pipe.reader, FIONREAD, &unread) == -1 || unread != 0) {
            std::abort(); // the limit did not apply, or this thread wrote
        }
        ::setrlimit(RLIMIT_NPROC, &usual);
        qCritical("%s", line(9).chopped(1).constData());
    });
    QVERIFY(process.awaitLogged());
    QCOMPARE(pipe.readUntil(line(9)), lines(10));
}

QTEST_GUILESS_MAIN(LogOutputTest)
#include "LogOutputTest.moc"
