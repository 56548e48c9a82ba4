// SPDX-License-Identifier: MIT
#include "tests/support/Waiting.h"
#include "tests/whole/system/SystemTest.h"

class SystemSpeechDaemonTest : public SystemTest
{
    Q_OBJECT

private Q_SLOTS:
    void anAbsentSpeechDaemonChangesNothingElse();
    void theSpeechDaemonMayDisappearAndReturn();
};

void SystemSpeechDaemonTest::anAbsentSpeechDaemonChangesNothingElse()
{
    options.speechDaemon = false;
    QVERIFY(launch());
    tap(ls::KeyId::Up);
    QVERIFY(awaitAction(QStringLiteral("announce SingleKey UserMenu - Up")));
    QVERIFY(nextKeyWorks());
    QCOMPARE(actions().filter(QStringLiteral("speak ")), QStringList());
}

void SystemSpeechDaemonTest::theSpeechDaemonMayDisappearAndReturn()
{
    options.loggingRules = QStringLiteral("SpeechFeedback.debug=true");
    QVERIFY(launch());
    QVERIFY(awaitLog(QStringLiteral("SpeechFeedback: Connected to speech-daemon.")));
    device().dropSpeech();
    QVERIFY(awaitLog(QStringLiteral("SpeechFeedback: Disconnected from speech-daemon.")));
    tap(ls::KeyId::Up);
    QVERIFY(nextKeyWorks());
    QCOMPARE(actions().filter(QStringLiteral("speak ")), QStringList());
    device().restoreSpeech();
    WAIT_FOR_EQUAL(log().count(QStringLiteral("SpeechFeedback: Connected to speech-daemon.")), 2);
    tap(ls::KeyId::Down);
    QVERIFY(awaitAction(QStringLiteral("speak EmbosserCore 25")));
}

QTEST_GUILESS_MAIN(SystemSpeechDaemonTest)
#include "SystemSpeechDaemonTest.moc"
