// SPDX-License-Identifier: MIT
#include "app/LogOutput.h"

#include <QDebug>
#include <QtTest>

#include <chrono>
#include <thread>

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
    void fullPipeHoldsNobodyUp();
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
    QByteArray read;
    std::thread slowReader([&] {
        while (read.count('\n') < count) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
            read += readAll();
        }
    });
    const QtMessageHandler testHandler = qInstallMessageHandler(nullptr);
    LogOutput::install();
    for (int i = 0; i < count; ++i) {
        qCritical() << QString(100, 'x');
    }
    slowReader.join();
    qInstallMessageHandler(testHandler);
    QCOMPARE(read, QByteArray('"' + QByteArray(100, 'x') + "\"\n").repeated(count));
}

void LogOutputTest::fullPipeHoldsNobodyUp()
{
    const QtMessageHandler testHandler = qInstallMessageHandler(nullptr);
    LogOutput::install();
    for (int i = 0; i < 10000; ++i) {
        qCritical() << "line" << i << QString(90, 'x');
    }
    qInstallMessageHandler(testHandler);
    QVERIFY(!readAll().isEmpty());
}

void LogOutputTest::droppedLinesAreCountedWhenThereIsRoomAgain()
{
    const QtMessageHandler testHandler = qInstallMessageHandler(nullptr);
    LogOutput::install();
    qCritical() << "after";
    const QList<QByteArray> lines = readAll().split('\n');
    qInstallMessageHandler(testHandler);
    QVERIFY2(lines.join('|').contains("log lines dropped: nobody read them.|after|"),
             lines.join('|').constData());
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
    QVERIFY(::fcntl(STDERR_FILENO, F_GETFD) != -1);
}

QTEST_GUILESS_MAIN(LogOutputTest)
#include "LogOutputTest.moc"
