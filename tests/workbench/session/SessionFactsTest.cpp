// SPDX-License-Identifier: MIT
#include "workbench/session/SessionFacts.h"

#include <QtTest>

namespace {

entry::Command command(const QString& name)
{
    return {{{"commandId", name}}};
}

entry::Answer answer(const QString& result)
{
    return {{{"resultId", result}}, {}};
}

entry::Announcement single(const QString& key, const QString& receiver)
{
    return {"SingleKey", receiver, {}, {key}, {}};
}

} // namespace

Q_DECLARE_METATYPE(QVector<SessionEvent>)

class SessionFactsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void keysAreHeldUntilTheyAreReleased();
    void aNewDeviceResetsTheFacts();
    void testRunsFromItsAnswerToOk_data();
    void testRunsFromItsAnswerToOk();
};

void SessionFactsTest::keysAreHeldUntilTheyAreReleased()
{
    SessionFacts facts;
    for (const entry::Key& key : {entry::Key{1, "Up", 1}, entry::Key{0, "Up", 1}, entry::Key{0, "Help", 1},
                                  entry::Key{0, "Help", 2}, entry::Key{0, "Up", 0}}) {
        facts.note(key);
    }
    QCOMPARE(facts.heldKeys(), QVector<HeldKey>({{0, "Help"}, {1, "Up"}}));
}

void SessionFactsTest::aNewDeviceResetsTheFacts()
{
    SessionFacts facts;
    facts.note(entry::Key{1, "Up", 1});
    facts.note(command("StartTestMode"));
    facts.note(answer("Success"));
    QVERIFY(facts.isTesting() && !facts.heldKeys().isEmpty());
    facts.note(entry::Device{entry::Device::Status::Ended, {}, {}, {}});
    QVERIFY(!facts.isTesting() && facts.heldKeys().isEmpty());
}

void SessionFactsTest::testRunsFromItsAnswerToOk_data()
{
    QTest::addColumn<QVector<SessionEvent>>("events");
    QTest::addColumn<bool>("runs");
    const auto row = [](const char* name, const QVector<SessionEvent>& events, bool runs) {
        QTest::newRow(name) << events << runs;
    };
    const entry::Command start = command("StartTestMode");
    const entry::Command other = command("GetLastKey");
    const entry::Answer success = answer("Success");
    row("not answered yet", {start}, false);
    row("answered", {start, success}, true);
    row("refused", {start, answer("Failure")}, false);
    row("another command was answered", {other, start, success}, false);
    row("both were answered", {other, start, success, success}, true);
    row("its Ok", {start, success, single("Ok", "ErrorHandler")}, false);
    row("the single Ok of Idle", {start, success, single("Ok", "UserMenu")}, true);
    row("another key", {start, success, single("Up", "PrintManager")}, true);
}

void SessionFactsTest::testRunsFromItsAnswerToOk()
{
    QFETCH(QVector<SessionEvent>, events);
    SessionFacts facts;
    for (const SessionEvent& event : qAsConst(events)) {
        facts.note(event);
    }
    QTEST(facts.isTesting(), "runs");
}

QTEST_GUILESS_MAIN(SessionFactsTest)
#include "SessionFactsTest.moc"
