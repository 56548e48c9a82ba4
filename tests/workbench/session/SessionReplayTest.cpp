// SPDX-License-Identifier: MIT
#include "tests/support/Waiting.h"
#include "tests/workbench/session/SessionTest.h"
#include "workbench/web/SessionJson.h"

using Status = Session::Status;

namespace {

const QString shortScript = QStringLiteral("model Orvane\n"
                                           "state Print\n"
                                           "row shortcut Chord UserMenu Print Help Up\n"
                                           "press Help\n"
                                           "wait 100\n"
                                           "press Up\n"
                                           "expect +0 announce Chord UserMenu - Help Up\n");
const QString longScript = QStringLiteral("press Help\nwait 3600000\npress Up\n");

} // namespace

class SessionReplayTest : public SessionTest
{
    Q_OBJECT

private Q_SLOTS:
    void aScriptIsPlayedOnItsDevice();
    void aScriptWithoutRowsHasTheInstalledLists();
    void differencesAreReported();
    void aFaultyScriptChangesNothing_data();
    void aFaultyScriptChangesNothing();
    void otherClientsWaitForTheEnd();
    void aReplayCanBeStopped();
    void aReplayCanBeStoppedBeforeItsStart();
    void aRestartStopsAReplay();
    void aReplayReplacesAnother();
    void aCrashStopsAReplay();
    void aReceiverOfEntriesMayStopAReplay_data();
    void aReceiverOfEntriesMayStopAReplay();

private:
    QStringList replayStatus() const { return members("replay", "status"); }
    bool awaitReplay(const QString& status) { return awaitEntry("replay", "status", status); }
};

void SessionReplayTest::aScriptIsPlayedOnItsDevice()
{
    QVERIFY(launch());
    QVERIFY(session().replay(shortScript).isEmpty());
    QVERIFY(session().isReplaying());
    QVERIFY(awaitReplay("finished"));
    QCOMPARE(replayStatus(), QStringList({"playing", "finished"}));
    QCOMPARE(entries("replay").last().value("expectations").toInt(), 1);
    QCOMPARE(entries("replay").last().value("differences").toArray(), QJsonArray());
    QCOMPARE(session().model(), QStringLiteral("Orvane"));
    QCOMPARE(session().state(), QStringLiteral("Print"));
    QVERIFY(!session().isReplaying());
    QVERIFY(keys().contains("0 Help 0") && keys().contains("0 Up 0"));
    QCOMPARE(execute("tap Menu"), QString());
}

void SessionReplayTest::aScriptWithoutRowsHasTheInstalledLists()
{
    QVERIFY(launch());
    const auto installed = session().keyLists();
    QVERIFY(session().replay(shortScript).isEmpty());
    QVERIFY(session().keyLists() != installed);
    QVERIFY(awaitReplay("finished"));
    QVERIFY(session().replay(QStringLiteral("tap Menu")).isEmpty());
    QCOMPARE(session().keyLists(), installed);
    QCOMPARE(session().model(), QStringLiteral("Pellit"));
}

void SessionReplayTest::differencesAreReported()
{
    QVERIFY(session().replay(QStringLiteral("tap Menu\nexpect +0 cancel\n")).isEmpty());
    QVERIFY(awaitReplay("finished"));
    const QJsonArray lines = entries("replay").last().value("differences").toArray();
    QCOMPARE(lines.size(), 2);
    QCOMPARE(lines.first().toString(), QStringLiteral("missing     50 ms: cancel"));
    QVERIFY(lines.last().toString().startsWith("unexpected  "));
    QVERIFY(lines.last().toString().endsWith(" ms: announce SingleKey UserMenu - Menu"));
}

void SessionReplayTest::aFaultyScriptChangesNothing_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("line");
    QTest::addColumn<QString>("fault");
    QTest::newRow("a faulty line") << "press Up\njump" << 2 << "\"jump\" is not a keyword of a key script.";
    QTest::newRow("too long") << QString(1024 * 1024 + 1, '#') << 0
                              << "The script is longer than 1048576 bytes.";
    QTest::newRow("too many steps") << QString("press Up\n").repeated(20'001) << 0
                                    << "More than 20000 steps and expectations cannot be replayed.";
}

void SessionReplayTest::aFaultyScriptChangesNothing()
{
    QFETCH(QString, text);
    QVERIFY(launch());
    const QVector<ScriptFault> faults = session().replay(text);
    QCOMPARE(faults.size(), 1);
    QTEST(faults.first().line, "line");
    QTEST(faults.first().text, "fault");
    QCOMPARE(session().status(), Status::Ready);
    QVERIFY(!session().isReplaying());
}

void SessionReplayTest::otherClientsWaitForTheEnd()
{
    QVERIFY(session().replay(longScript).isEmpty());
    QVERIFY(awaitReplay("playing"));
    QCOMPARE(execute("press Up", 1), QStringLiteral("A script is being replayed."));
    session().releaseKeysOf(1);
    WAIT_FOR_EQUAL(keys().mid(0, 1), QStringList("0 Help 1"));
    QVERIFY(!keys().contains("0 Help 0"));
}

void SessionReplayTest::aReplayCanBeStopped()
{
    QVERIFY(session().replay(longScript).isEmpty());
    QVERIFY(awaitReplay("playing"));
    WAIT_FOR_EQUAL(keys().mid(0, 1), QStringList("0 Help 1"));
    session().stopReplay();
    session().stopReplay();
    QCOMPARE(replayStatus(), QStringList({"playing", "stopped"}));
    QCOMPARE(keys().last(), QStringLiteral("0 Help 0"));
    QCOMPARE(session().status(), Status::Ready);
    QCOMPARE(execute("press Menu"), QString());
}

void SessionReplayTest::aReplayCanBeStoppedBeforeItsStart()
{
    QVERIFY(session().replay(longScript).isEmpty());
    session().stopReplay();
    QVERIFY(awaitStatus(Status::Ready));
    QVERIFY(tapMenuAfter(100));
    QCOMPARE(replayStatus(), QStringList("stopped"));
    QCOMPARE(keys(), QStringList({"0 Menu 1", "0 Menu 0"}));
}

void SessionReplayTest::aRestartStopsAReplay()
{
    QVERIFY(session().replay(longScript).isEmpty());
    QVERIFY(awaitReplay("playing"));
    QVERIFY(session().restart({}).isEmpty());
    QVERIFY(awaitStatus(Status::Ready));
    QCOMPARE(replayStatus(), QStringList({"playing", "stopped"}));
    forgetEntries();
    QVERIFY(tapMenuAfter(400));
    QCOMPARE(keys(), QStringList({"0 Menu 1", "0 Menu 0"}));
}

void SessionReplayTest::aReplayReplacesAnother()
{
    QVERIFY(session().replay(longScript).isEmpty());
    QVERIFY(awaitReplay("playing"));
    QVERIFY(session().replay(shortScript).isEmpty());
    QVERIFY(awaitReplay("finished"));
    QCOMPARE(replayStatus(), QStringList({"playing", "stopped", "playing", "finished"}));
    QCOMPARE(entries("replay").last().value("differences").toArray(), QJsonArray());
}

void SessionReplayTest::aCrashStopsAReplay()
{
    QVERIFY(session().replay(longScript).isEmpty());
    QVERIFY(awaitReplay("playing"));
    QVERIFY(crash());
    QCOMPARE(replayStatus(), QStringList({"playing", "stopped"}));
    QVERIFY(!session().isReplaying());
}

void SessionReplayTest::aReceiverOfEntriesMayStopAReplay_data()
{
    QTest::addColumn<QString>("type");
    for (const char* type : {"replay", "key", "heading", "state", "announcement", "recording", "device"}) {
        QTest::newRow(type) << QString::fromLatin1(type);
    }
}

void SessionReplayTest::aReceiverOfEntriesMayStopAReplay()
{
    QFETCH(QString, type);
    connect(&session(), &Session::added, this, [&](const SessionEntry& entry) {
        if (SessionJson::entry(entry).value("type").toString() == type) {
            session().stopReplay();
        }
    });
    const QString text =
        "press Up\n## Next\nstate Print\nrelease Up\nwait 50\npress Up\nrelease Up\nwait 50\n";
    QVERIFY(session().replay(text + longScript).isEmpty());
    QVERIFY(awaitStatus(Status::Ready) && awaitReplay("stopped"));
    QVERIFY(tapMenuAfter(150));
    QVERIFY(!session().isReplaying() && !replayStatus().contains("finished"));
    QCOMPARE(keys().filter("Up 1").size(), keys().filter("Up 0").size());
    QCOMPARE(keys().filter("Help 1").size(), keys().filter("Help 0").size());
    QCOMPARE(execute("press Menu"), QString());
}

QTEST_GUILESS_MAIN(SessionReplayTest)
#include "SessionReplayTest.moc"
