// SPDX-License-Identifier: MIT
#include "tests/support/Waiting.h"
#include "tests/whole/system/SystemTest.h"

namespace {

const QString ran = QStringLiteral("Process command response");
const QString helpTitle = QStringLiteral("================= Help =================");

} // namespace

class SystemConsoleTest : public SystemTest
{
    Q_OBJECT

private Q_SLOTS:
    void aSimulatedKeyIsAnnounced();
    void aSplitLineIsJoined();
    void anEndlessLineIsDroppedAndTheNextOneIsExecuted();
    void anyBytesPrintTheHelp();
    void keysWorkAfterTheEndOfInput();
    void closedInputIsNotAConsole();
    void aFloodOfLinesIsProcessed();
};

void SystemConsoleTest::aSimulatedKeyIsAnnounced()
{
    QVERIFY(launch());
    device().typeLine(QStringLiteral("C 7 0 139"));
    QVERIFY(awaitAction(QStringLiteral("announce SingleKey UserMenu KeyboardHandler Menu")));
    QVERIFY(awaitLog(ran));
}

void SystemConsoleTest::aSplitLineIsJoined()
{
    QVERIFY(launch());
    for (const char* piece : {"C", " 7 0", " 13", "9\r", "\n"}) {
        device().daemon().type(piece);
        QVERIFY(nextKeyWorks());
    }
    QVERIFY(awaitLog(ran));
    QCOMPARE(completeLog().count(helpTitle), 0);
}

void SystemConsoleTest::anEndlessLineIsDroppedAndTheNextOneIsExecuted()
{
    QVERIFY(launch());
    device().daemon().type(QByteArray(1'000'000, 'C') + "\nC 4\n");
    QVERIFY(awaitLog(ran));
    QVERIFY(awaitLog(QStringLiteral("ls::ConsoleReader::readInput ERROR: line over 65536 bytes dropped.")));
    QVERIFY(nextKeyWorks());
}

void SystemConsoleTest::anyBytesPrintTheHelp()
{
    QVERIFY(launch());
    device().daemon().type(QByteArray("\x00\xff\xfe\x1b[2J\n", 8));
    QVERIFY(awaitLog(helpTitle));
    QVERIFY(nextKeyWorks());
}

void SystemConsoleTest::keysWorkAfterTheEndOfInput()
{
    QVERIFY(launch());
    device().daemon().type("C 4\nC 4");
    QVERIFY(awaitLog(ran));
    device().daemon().endInput();
    QVERIFY(nextKeyWorks());
    QCOMPARE(completeLog().count(ran), 1);
}

/// Otherwise, another file could get descriptor 0 and be read as console lines.
void SystemConsoleTest::closedInputIsNotAConsole()
{
    options.standardInput = DeviceOptions::StandardInput::Closed;
    QVERIFY(launch());
    const QString input = QStringLiteral("/proc/%1/fd/0").arg(device().daemon().processId());
    QCOMPARE(QFile::symLinkTarget(input), QStringLiteral("/dev/null"));
    QVERIFY(nextKeyWorks());
    QCOMPARE(completeLog().count(helpTitle), 0);
}

void SystemConsoleTest::aFloodOfLinesIsProcessed()
{
    QVERIFY(launch());
    device().daemon().type(QByteArray("C 4\n").repeated(2000));
    WAIT_FOR_EQUAL(log().count(ran), 2000);
    QVERIFY(nextKeyWorks());
}

QTEST_GUILESS_MAIN(SystemConsoleTest)
#include "SystemConsoleTest.moc"
