// SPDX-License-Identifier: MIT
#include "tests/support/LogRecorder.h"
#include "tests/support/Waiting.h"

#include <ls/ConsoleReader.h>

#include <QAbstractEventDispatcher>
#include <QSignalSpy>
#include <QTemporaryFile>
#include <QtTest>

#include <memory>

#include <fcntl.h>
#include <malloc.h>
#include <unistd.h>

namespace {

constexpr int limit = 64 * 1024;

const QString overlongText =
    QStringLiteral("ls::ConsoleReader::readInput ERROR: line over 65536 bytes dropped.");

bool isEventLoopIdle()
{
    return !QAbstractEventDispatcher::instance()->processEvents(QEventLoop::AllEvents);
}

std::size_t allocatedBytes()
{
    const struct mallinfo2 heap = ::mallinfo2();
    return heap.uordblks + heap.hblkhd;
}

} // namespace

class ConsoleReaderTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void lineEndIsRemoved_data();
    void lineEndIsRemoved();
    void splitLineIsJoined_data();
    void splitLineIsJoined();
    void unfinishedLineIsBuffered();
    void lineOfUpTo64KiBIsReported_data();
    void lineOfUpTo64KiBIsReported();
    void endlessLineIsDroppedWithOneLogLine();
    void endlessLineIsReportedBeforeItEnds();
    void endlessLineUsesNoMemory();
    void lineEndAfter64KiBMayBeSplit();
    void eachOverlongLineIsLogged();
    void manyLinesKeepTheirOrder();
    void floodDoesNotStarveOtherEvents();
    void staleWakeUpDoesNotBlock();
    void endOfInputDropsTheUnfinishedLine();
    void endOfInputDisablesTheNotifier();
    void inputWithoutDataIsNotPolled_data();
    void inputWithoutDataIsNotPolled();
    void regularFileIsReadToItsEnd();

private:
    void makePipe();
    void start()
    {
        m_reader = std::make_unique<ls::ConsoleReader>();
        listen();
    }
    void listen();
    void type(const QByteArray& bytes);
    void endInput();

    int m_savedInput = -1;
    int m_keyboard = -1;
    std::unique_ptr<ls::ConsoleReader> m_reader;
    QStringList m_lines;
};

void ConsoleReaderTest::init()
{
    m_savedInput = ::fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 3);
    makePipe();
    start();
}

void ConsoleReaderTest::cleanup()
{
    m_reader.reset();
    m_lines.clear();
    endInput();
    if (m_savedInput == -1) {
        ::close(STDIN_FILENO);
    } else {
        ::dup2(m_savedInput, STDIN_FILENO);
    }
    ::close(m_savedInput);
}

void ConsoleReaderTest::makePipe()
{
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0) {
        qFatal("no pipe");
    }
    const int input = ::fcntl(ends[0], F_DUPFD_CLOEXEC, 3);
    ::close(ends[0]);
    ::dup2(input, STDIN_FILENO);
    ::close(input);
    m_keyboard = ends[1];
    ::fcntl(m_keyboard, F_SETFL, O_NONBLOCK);
}

void ConsoleReaderTest::listen()
{
    connect(m_reader.get(), &ls::ConsoleReader::textReceived, this,
            [this](const QString& line) { m_lines.append(line); });
}

void ConsoleReaderTest::type(const QByteArray& bytes)
{
    for (int written = 0; written < bytes.size();) {
        const ssize_t count =
            ::write(m_keyboard, bytes.constData() + written, std::size_t(bytes.size() - written));
        written += int(qMax<ssize_t>(count, 0));
        QCoreApplication::processEvents();
    }
}

void ConsoleReaderTest::endInput()
{
    ::close(m_keyboard);
    m_keyboard = -1;
}

void ConsoleReaderTest::lineEndIsRemoved_data()
{
    QTest::addColumn<QByteArray>("typed");
    QTest::addColumn<QStringList>("expected");

    QTest::newRow("LF") << QByteArray("HELP\n") << QStringList{"HELP"};
    QTest::newRow("CR LF") << QByteArray("HELP\r\n") << QStringList{"HELP"};
    QTest::newRow("two CR") << QByteArray("a\r\r\n") << QStringList{"a\r"};
    QTest::newRow("CR within the line") << QByteArray("a\rb\n") << QStringList{"a\rb"};
    QTest::newRow("blanks") << QByteArray("  HELP  C \n") << QStringList{"  HELP  C "};
    QTest::newRow("empty lines") << QByteArray("\n\r\n\n") << QStringList{"", "", ""};
    QTest::newRow("several lines") << QByteArray("a\nb\r\nc\n") << QStringList{"a", "b", "c"};
    QTest::newRow("NUL byte") << QByteArray("a\0b\n", 4) << QStringList{QString("a") + QChar::Null + 'b'};
    QTest::newRow("UTF-8") << QByteArray("ä€\n") << QStringList{"ä€"};
    QTest::newRow("invalid UTF-8") << QByteArray("a\xff"
                                                 "b\n")
                                   << QStringList{QString("a") + QChar(QChar::ReplacementCharacter) + 'b'};
    QTest::newRow("cut UTF-8") << QByteArray("\xc3\nx\n")
                               << QStringList{QString(1, QChar::ReplacementCharacter), "x"};
}

void ConsoleReaderTest::lineEndIsRemoved()
{
    QFETCH(QByteArray, typed);
    QFETCH(QStringList, expected);

    type(typed);

    WAIT_FOR_EQUAL(m_lines, expected);
}

void ConsoleReaderTest::splitLineIsJoined_data()
{
    QTest::addColumn<int>("pieceSize");

    QTest::newRow("single bytes") << 1;
    QTest::newRow("two bytes") << 2;
    QTest::newRow("between CR and LF") << 4;
    QTest::newRow("within a character") << 7;
}

void ConsoleReaderTest::splitLineIsJoined()
{
    QFETCH(int, pieceSize);
    const QByteArray typed = "abc\r\nä€\r\nxyz\n";

    for (int start = 0; start < typed.size(); start += pieceSize) {
        type(typed.mid(start, pieceSize));
        WAIT_FOR(isEventLoopIdle());
    }

    WAIT_FOR_EQUAL(m_lines, QStringList({"abc", "ä€", "xyz"}));
}

void ConsoleReaderTest::unfinishedLineIsBuffered()
{
    type("HEL");
    WAIT_FOR(isEventLoopIdle());
    QVERIFY(m_lines.isEmpty());

    type("P\n");
    WAIT_FOR_EQUAL(m_lines, QStringList("HELP"));
}

void ConsoleReaderTest::lineOfUpTo64KiBIsReported_data()
{
    QTest::addColumn<int>("size");
    QTest::addColumn<QByteArray>("lineEnd");
    QTest::addColumn<bool>("isReported");

    for (const char* lineEnd : {"\n", "\r\n"}) {
        const char* const name = qstrlen(lineEnd) == 1 ? "LF" : "CR LF";
        QTest::addRow("one byte less, %s", name) << limit - 1 << QByteArray(lineEnd) << true;
        QTest::addRow("exactly, %s", name) << limit << QByteArray(lineEnd) << true;
        QTest::addRow("one byte more, %s", name) << limit + 1 << QByteArray(lineEnd) << false;
        QTest::addRow("two bytes more, %s", name) << limit + 2 << QByteArray(lineEnd) << false;
        QTest::addRow("twice as long, %s", name) << 2 * limit << QByteArray(lineEnd) << false;
    }
}

void ConsoleReaderTest::lineOfUpTo64KiBIsReported()
{
    QFETCH(int, size);
    QFETCH(QByteArray, lineEnd);
    QFETCH(bool, isReported);
    const LogRecorder log;

    type(QByteArray(size, 'x') + lineEnd + "next\n");

    WAIT_FOR(m_lines.endsWith("next"));
    QCOMPARE(m_lines.size(), isReported ? 2 : 1);
    QCOMPARE(m_lines.constFirst().size(), isReported ? size : 4);
    QCOMPARE(log.texts(QtCriticalMsg), isReported ? QStringList() : QStringList(overlongText));
}

void ConsoleReaderTest::endlessLineIsDroppedWithOneLogLine()
{
    const LogRecorder log;

    type(QByteArray(10 * 1024 * 1024, 'x'));
    type("rest\nnext\n");

    WAIT_FOR_EQUAL(m_lines, QStringList("next"));
    QCOMPARE(log.texts(QtCriticalMsg), QStringList(overlongText));
}

void ConsoleReaderTest::endlessLineIsReportedBeforeItEnds()
{
    const LogRecorder log;

    type(QByteArray(limit + 1, 'x'));

    WAIT_FOR_EQUAL(log.texts(QtCriticalMsg), QStringList(overlongText));
}

void ConsoleReaderTest::endlessLineUsesNoMemory()
{
    const LogRecorder log;
    const QByteArray piece(1024 * 1024, 'x');
    type(piece);
    const std::size_t before = allocatedBytes();

    for (int i = 0; i < 10; ++i) {
        type(piece);
    }

    WAIT_FOR(isEventLoopIdle());
    QVERIFY(allocatedBytes() < before + 1024 * 1024);
}

void ConsoleReaderTest::lineEndAfter64KiBMayBeSplit()
{
    const QByteArray maxLine(limit, 'x');

    type(maxLine + '\r');
    WAIT_FOR(isEventLoopIdle());
    QVERIFY(m_lines.isEmpty());

    type("\n");
    WAIT_FOR_EQUAL(m_lines, QStringList(maxLine));
}

void ConsoleReaderTest::eachOverlongLineIsLogged()
{
    const QByteArray overlong = QByteArray(limit + 1, 'x') + '\n';
    const LogRecorder log;

    type(overlong + "between\n" + overlong + overlong + "next\n");

    WAIT_FOR_EQUAL(m_lines, QStringList({"between", "next"}));
    QCOMPARE(log.texts(QtCriticalMsg), QStringList({overlongText, overlongText, overlongText}));
}

void ConsoleReaderTest::manyLinesKeepTheirOrder()
{
    QByteArray typed;
    QStringList expected;
    for (int i = 0; i < 20000; ++i) {
        expected.append(QString::number(i));
        typed.append(QByteArray::number(i) + '\n');
    }

    type(typed);

    WAIT_FOR_EQUAL(m_lines, expected);
}

void ConsoleReaderTest::floodDoesNotStarveOtherEvents()
{
    int turns = 0;
    QTimer other;
    connect(&other, &QTimer::timeout, this, [&turns] { ++turns; });
    other.start(0);
    constexpr int lines = 4096;

    type(QByteArray(lines, '\n'));

    WAIT_FOR_EQUAL(m_lines.size(), lines);
    QVERIFY2(turns >= lines / 256 - 1, qPrintable(QString::number(turns)));
}

void ConsoleReaderTest::staleWakeUpDoesNotBlock()
{
    QVERIFY(QMetaObject::invokeMethod(m_reader.get(), "readInput"));

    type("HELP\n");
    WAIT_FOR_EQUAL(m_lines, QStringList("HELP"));
}

void ConsoleReaderTest::endOfInputDropsTheUnfinishedLine()
{
    const LogRecorder log;

    type("whole\nunfinis");
    endInput();

    WAIT_FOR(isEventLoopIdle());
    QCOMPARE(m_lines, QStringList("whole"));
    QVERIFY(log.lines().isEmpty());
}

void ConsoleReaderTest::endOfInputDisablesTheNotifier()
{
    endInput();
    WAIT_FOR(isEventLoopIdle());

    makePipe();
    type("late\n");

    WAIT_FOR(isEventLoopIdle());
    QVERIFY(m_lines.isEmpty());
}

void ConsoleReaderTest::inputWithoutDataIsNotPolled_data()
{
    QTest::addColumn<QString>("input");

    QTest::newRow("/dev/null") << "/dev/null";
    QTest::newRow("unreadable folder") << "/tmp";
}

void ConsoleReaderTest::inputWithoutDataIsNotPolled()
{
    QFETCH(QString, input);
    const int fd = ::open(qPrintable(input), O_RDONLY | O_CLOEXEC);
    ::dup2(fd, STDIN_FILENO);
    ::close(fd);
    const LogRecorder log;

    start();

    WAIT_FOR(isEventLoopIdle());
    QVERIFY(log.lines().isEmpty());
}

void ConsoleReaderTest::regularFileIsReadToItsEnd()
{
    QTemporaryFile file;
    QVERIFY(file.open());
    QVERIFY(file.write("first\nsecond\nunfinished") != -1);
    QVERIFY(file.seek(0));
    ::dup2(file.handle(), STDIN_FILENO);

    start();

    WAIT_FOR(isEventLoopIdle());
    QCOMPARE(m_lines, QStringList({"first", "second"}));
}

QTEST_GUILESS_MAIN(ConsoleReaderTest)
#include "ConsoleReaderTest.moc"
