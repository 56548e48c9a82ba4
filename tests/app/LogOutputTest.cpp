// SPDX-License-Identifier: MIT
#include "app/LogOutput.h"

#include <QDebug>
#include <QtTest>

#include <csignal>

#include <fcntl.h>
#include <unistd.h>

/// The log is installed once in a process: each function goes on where the one before ended. Standard error
/// is a pipe of the test's; the results of the test go to standard output.
class LogOutputTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void linesArriveWhole();
    void slowReaderGetsEveryLine();
    void stoppedReaderHoldsNobodyUpAndMissesLines();
    void droppedLinesAreCountedWhenThereIsRoomAgain();
    void inheritedDescriptorKeepsItsFlags();
    void readerThatWentAwayHoldsNobodyUp();

private:
    QByteArray readAll();

    int reader = -1;
};

void LogOutputTest::initTestCase()
{
    int ends[2];
    QVERIFY(::pipe2(ends, O_CLOEXEC) == 0);
    reader = ends[0];
    QVERIFY(::fcntl(reader, F_SETFL, O_NONBLOCK) == 0);
    QVERIFY(::dup2(ends[1], STDERR_FILENO) == STDERR_FILENO);
    ::close(ends[1]);
}

QByteArray LogOutputTest::readAll()
{
    QByteArray all;
    char chunk[4096];
    for (ssize_t size = ::read(reader, chunk, sizeof chunk); size > 0;
         size = ::read(reader, chunk, sizeof chunk)) {
        all.append(chunk, static_cast<int>(size));
    }
    return all;
}

void LogOutputTest::linesArriveWhole()
{
    const QtMessageHandler testHandler = qInstallMessageHandler(nullptr);
    LogOutput::install();
    qCritical() << "first" << QStringLiteral("line");
    qDebug() << "";
    const QByteArray written = readAll();
    qInstallMessageHandler(testHandler);
    QCOMPARE(written, QByteArray("first \"line\"\n\n"));
}

void LogOutputTest::slowReaderGetsEveryLine()
{
    constexpr int count = 3000; // much more than the pipe holds
    const QtMessageHandler testHandler = qInstallMessageHandler(nullptr);
    LogOutput::install();
    for (int i = 0; i < count; ++i) {
        qCritical() << QString(100, 'x');
    }
    qInstallMessageHandler(testHandler);
    QByteArray read;
    QTRY_COMPARE((read += readAll()).count('\n'), count);
    QCOMPARE(read, QByteArray('"' + QByteArray(100, 'x') + "\"\n").repeated(count));
}

void LogOutputTest::stoppedReaderHoldsNobodyUpAndMissesLines()
{
    const QtMessageHandler testHandler = qInstallMessageHandler(nullptr);
    LogOutput::install();
    for (int i = 0; i < 30000; ++i) {
        qCritical() << "line" << i << QString(90, 'x');
    }
    qInstallMessageHandler(testHandler);
    QByteArray read;
    QTRY_VERIFY((read += readAll()).size() > 1000000);
    for (const QByteArray& line : read.left(read.lastIndexOf('\n')).split('\n')) {
        QVERIFY2(line.startsWith("line ") && line.endsWith("x\""), line.constData());
    }
}

void LogOutputTest::droppedLinesAreCountedWhenThereIsRoomAgain()
{
    const QtMessageHandler testHandler = qInstallMessageHandler(nullptr);
    LogOutput::install();
    qCritical() << "after";
    qInstallMessageHandler(testHandler);
    QByteArray read;
    QTRY_VERIFY((read += readAll()).endsWith("\nafter\n"));
    const QList<QByteArray> lines = read.split('\n');
    const QString report = QString::fromLatin1(lines.at(lines.size() - 3));
    const QRegularExpression expected("^\\d+ log lines dropped: nobody read them\\.$");
    QVERIFY2(expected.match(report).hasMatch(), qPrintable(report));
}

void LogOutputTest::inheritedDescriptorKeepsItsFlags()
{
    QCOMPARE(::fcntl(STDERR_FILENO, F_GETFL) & O_NONBLOCK, 0);
}

void LogOutputTest::readerThatWentAwayHoldsNobodyUp()
{
    ::close(reader);
    const QtMessageHandler testHandler = qInstallMessageHandler(nullptr);
    LogOutput::install();
    for (int i = 0; i < 1000; ++i) {
        qCritical() << "nobody reads this";
    }
    qInstallMessageHandler(testHandler);
    // Each of these lines would have been the end of the process otherwise.
    struct sigaction action = {};
    QCOMPARE(::sigaction(SIGPIPE, nullptr, &action), 0);
    QVERIFY(action.sa_handler == SIG_IGN);
}

QTEST_GUILESS_MAIN(LogOutputTest)
#include "LogOutputTest.moc"
