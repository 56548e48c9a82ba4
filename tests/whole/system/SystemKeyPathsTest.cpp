// SPDX-License-Identifier: MIT
#include "simulator/script/KeyListJson.h"
#include "simulator/script/KeyScriptText.h"
#include "tests/whole/system/SystemTest.h"

/// Tests the path of each kind of key action from the input device to the bus. The details are tested on a
/// virtual clock.
class SystemKeyPathsTest : public SystemTest
{
    Q_OBJECT

private Q_SLOTS:
    void scriptsPlayAsExpected_data();
    void scriptsPlayAsExpected();
};

void SystemKeyPathsTest::scriptsPlayAsExpected_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("a lone key in idle") << "tap Up\n"
                                           "expect 50 speak EmbosserCore 24\n"
                                           "expect 1550 announce SingleKey UserMenu - Up\n";
    QTest::newRow("two receivers") << "tap Feed\n"
                                      "expect 50 speak EmbosserCore 19\n"
                                      "expect 1550 announce SingleKey PrintManager - Feed\n"
                                      "expect 1550 announce SingleKey UserMenu KeyboardHandler Feed\n";
    QTest::newRow("a key while printing") << "state Print\n"
                                             "tap Up\n"
                                             "expect 50 announce SingleKey PrintManager - Up\n";
    QTest::newRow("a key while starting up") << "state Startup\n"
                                                "tap Up\n"
                                                "expect 0 cancel\n"
                                                "expect 0 speak EmbosserError 69\n";
    QTest::newRow("a long press valid in one of two states")
        << "state Error\n"
           "row long Hold WwwApi Idle|Error 1 Ok\n"
           "hold Ok 1400\n"
           "expect 1250 log KeyboardManager::onEvent WARN: Expected state is:  \"Idle\" , but current state "
           "is:  \"Error\" !?\n"
           "expect 1250 announce Hold WwwApi - Ok\n"
           "expect 1400 announce SingleKey ErrorHandler KeyboardHandler Ok\n";
    QTest::newRow("a combination") << "row modifier Both PrintManager Idle Help Feed\n"
                                      "tap Help\n"
                                      "expect 50 speak EmbosserCore 20\n"
                                      "wait 50\n"
                                      "tap Feed\n"
                                      "expect 150 announce Both PrintManager - Help Feed\n"
                                      "expect 150 speak EmbosserCore 19\n";
    QTest::newRow("a shortcut over both devices") << "row shortcut Chord UserMenu Idle Function Up\n"
                                                     "press Function\n"
                                                     "device 1\n"
                                                     "wait 20\n"
                                                     "press Up\n"
                                                     "expect 20 announce Chord UserMenu - Function Up\n";
    QTest::newRow("the factory-reset key") << "press FactoryReset\n"
                                              "expect 5000 announce FactoryReset WwwApi - FactoryReset\n"
                                              "expect 5000 speak EmbosserMenu 487\n";
    QTest::newRow("the keyboard test") << "state Error\n"
                                          "command StartTestMode\n"
                                          "expect 0 answer errorId=Undefined resultId=Success\n"
                                          "wait 200\n"
                                          "tap Ten\n"
                                          "expect 250 announce SingleKey ErrorHandler ServiceTool Ok\n"
                                          "expect 250 cancel\n"
                                          "expect 250 speak EmbosserCore 29\n"
                                          "wait 100\n"
                                          "command GetTestResult\n"
                                          "expect 350 answer errorId=Undefined resultId=1\n";
    QTest::newRow("a simulated key") << "state Update\n"
                                        "command SimulateKey as WwwApi Released Down\n"
                                        "expect 0 announce SingleKey UpdateManager WwwApi Down\n"
                                        "expect 0 answer errorId=Undefined resultId=Success\n";
    QTest::newRow("a key typed at the console")
        << "state Error\n"
           "console C 7 0 108\n"
           "expect 0 log Process command response\n"
           "expect 0 announce SingleKey ErrorHandler KeyboardHandler Down\n"
           "expect 0 log QMap((\"errorId\", QVariant(QString, \"Undefined\"))(\"resultId\", "
           "QVariant(QString, \"Success\")))\n";
    QTest::newRow("a change of state") << "wait 0\n"
                                          "state PrintOff\n"
                                          "wait 300\n"
                                          "tap Up\n"
                                          "expect 350 announce SingleKey PrintManager - Up\n";
}

void SystemKeyPathsTest::scriptsPlayAsExpected()
{
    QFETCH(QString, text);
    const ParsedScript parsed = parseKeyScript(text);
    QVERIFY2(parsed.faults.isEmpty(), qPrintable(parsed.faults.value(0).text));
    options.state = parsed.script.initialState;
    options.keyLists = KeyListJson::filesOf(parsed.script);
    QVERIFY(launch());
    QCOMPARE(play(parsed.script).join('\n'), QString());
}

QTEST_GUILESS_MAIN(SystemKeyPathsTest)
#include "SystemKeyPathsTest.moc"
