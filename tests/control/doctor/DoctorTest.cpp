// SPDX-License-Identifier: MIT
#include "control/doctor/Checks.h"
#include "control/doctor/Probes.h"
#include "control/doctor/Report.h"
#include "tests/control/doctor/MadeUpDevice.h"
#include "tests/delivery/documents/FencedBlocks.h"

#include <ls/Identifiers.h>

#include <QJsonArray>
#include <QtTest>

#include <functional>

using namespace control;

using Change = std::function<void(Facts&)>;
Q_DECLARE_METATYPE(Change)

namespace {

const QString document = QStringLiteral("key-does-nothing.md");

Facts healthy()
{
    return MadeUpDevice::healthy(QStringLiteral(KEY_LISTS));
}

/// The lines about everything that is not ok.
QString complaintsOf(const Facts& facts)
{
    Diagnoses diagnoses = Checks::all(facts);
    const auto isOk = [](const Diagnosis& each) { return each.level == Diagnosis::Level::Ok; };
    diagnoses.erase(std::remove_if(diagnoses.begin(), diagnoses.end(), isOk), diagnoses.end());
    QStringList lines = Report::toLines(diagnoses);
    lines = lines.mid(0, lines.size() - 2); // without the summary
    return lines.join('\n') + (lines.isEmpty() ? "" : "\n");
}

void removeKey(Facts& facts, const QString& key)
{
    for (NodeFacts& node : facts.panel.nodes) {
        node.codes.remove(ls::KeyId::meta.value(key));
    }
}

void setLists(Facts& facts, const QMap<QString, QByteArray>& files)
{
    facts.lists.sources = checker::ListSources::of(files);
    facts.lists.result = checker::check(facts.lists.sources, {});
}

} // namespace

/// The checks of `doctor` on made-up devices; the system test has those that need a daemon.
class DoctorTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aHealthyDeviceIsOk();
    void faultsAreNamed_data();
    void faultsAreNamed();
    void faultsOfTheDocumentAreNamed_data();
    void faultsOfTheDocumentAreNamed();
    void keysThatNoRowNeedsMayBeAbsent();
    void aProcessThatHasEndedIsHarmless();
    void theStatusIsTheWorstResult();
    void theObjectHasAllResults();
    void thisSystemCanBeLookedAt();
    void documentsExist();

private:
    static const QVector<QPair<QString, Change>>& faultsOfTheDocument();
};

void DoctorTest::aHealthyDeviceIsOk()
{
    QCOMPARE(complaintsOf(healthy()), QString());
    QCOMPARE(Report::statusOf(Checks::all(healthy())), Done);
}

void DoctorTest::faultsAreNamed_data()
{
    QTest::addColumn<Change>("change");
    QTest::addColumn<QString>("expected"); // the beginning of a line

    const auto add = [](const char* name, const Change& change, const char* expected) {
        QTest::newRow(name) << change << QString::fromLatin1(expected);
    };
    add(
        "group missing", [](Facts& f) { f.user.groupExists = false; },
        "failure: rights: The group embosser-services does not exist");
    add(
        "member", [](Facts& f) { f.user = {"anna", false, "embosser-services", true, true, true}; },
        "unknown: rights: You are in the group embosser-services and may send commands, but only root sees");
    add(
        "member since the login",
        [](Facts& f) { f.user = {"anna", false, "embosser-services", true, false, true}; },
        "warning: rights: The user anna was added to the group embosser-services after you logged in");
    add(
        "not a member", [](Facts& f) { f.user = {"anna", false, "embosser-services", true, false, false}; },
        "warning: rights: The user anna is not in the group embosser-services");
    add(
        "no systemd log", [](Facts& f) { f.journal.fault = "no permission"; },
        "unknown: log: The log of the daemon cannot be read: no permission.");
    add(
        "unit masked", [](Facts& f) { f.unit.loadState = "masked"; },
        "failure: unit: The unit keyboard-handler is masked.");
    add(
        "unit not found", [](Facts& f) { f.unit.loadState = "not-found"; },
        "failure: unit: The unit keyboard-handler is not-found.");
    add(
        "unit failed", [](Facts& f) { f.unit.activeState = "failed", f.unit.result = "start-limit-hit"; },
        "failure: unit: The unit keyboard-handler has failed (start-limit-hit).");
    add(
        "unit starting", [](Facts& f) { f.unit.activeState = "activating"; },
        "warning: unit: The unit keyboard-handler is activating.");
    add(
        "systemd silent", [](Facts& f) { f.unit.fault = "systemctl does not end"; },
        "unknown: unit: systemd does not describe the unit: systemctl does not end");
    add(
        "readiness left behind", [](Facts& f) { f.daemons.clear(); },
        "warning: ready: The readiness file is there, but no daemon runs");
    add(
        "not ready", [](Facts& f) { f.readiness.ready = QDateTime(); },
        "failure: ready: The daemon has not declared itself ready: it is still starting");
    add(
        "may not ask", [](Facts& f) { f.bus.answer = BusFacts::Answer::Refused; },
        "unknown: answer: You may not ask the daemon whether it answers.");
    add(
        "other prefix",
        [](Facts& f) { f.bus.owner = 0, f.bus.names = QStringList{"org.example.KeyboardHandler"}; },
        "failure: name: No daemon has the name com.vantre.KeyboardHandler, but there is one with another "
        "prefix: "
        "org.example.");
    add(
        "bus restarted", [](Facts& f) { f.bus.owner = 0; },
        "failure: name: The daemon runs, but the name com.vantre.KeyboardHandler is not on the bus");
    add(
        "node is a file", [](Facts& f) { f.panel.nodes[1].kind = NodeFacts::Kind::Other; },
        "failure: nodes: /dev/input/event1 is not an input device.");
    add(
        "node unreadable",
        [](Facts& f) { f.panel.nodes[0].name.clear(), f.panel.nodes[0].fault = "Permission denied"; },
        "unknown: autorepeat: /dev/input/event0 does not say what it can do: Permission denied.");
    add(
        "files of the daemon hidden", [](Facts& f) { f.daemons[0].files.reset(); },
        "unknown: nodes: /dev/input/event0 is there; only root sees whether the daemon has it open.");
    add(
        "not opened", [](Facts& f) { f.daemons[0].files->removeFirst(); },
        "failure: nodes: /dev/input/event0 is there, but the daemon does not have it open");
    add(
        "former node opened",
        [](Facts& f) {
            f.daemons[0].files->removeFirst();
            f.daemons[0].fileNames.append("/dev/input/event0 (deleted)");
        },
        "failure: nodes: The daemon has a former /dev/input/event0 open");
    add(
        "repeat delay of 0", [](Facts& f) { f.panel.nodes[1].repeatDelay = 0; },
        "failure: autorepeat: /dev/input/event1 does not repeat held keys");
    add(
        "changed during the start", [](Facts& f) { f.lists.changed[1] = f.daemons[0].started.addMSecs(500); },
        "warning: lists: " KEY_LISTS
        "/modifierKeyList.json was changed at 2026-03-02 08:00:05, while the daemon "
        "was starting");
    add(
        "list missing",
        [](Facts& f) {
            setLists(f, {{"longKeyList.json", "{\"LongKeys\": []}"}});
        },
        "failure: lists: shortcutKeyList.json is missing: its gestures are not recognised.");
    add(
        "hidden row",
        [](Facts& f) {
            setLists(f, {{"modifierKeyList.json",
                          R"({"ModifierKeys": [
{"keys": ["One", "Ten", "Up"], "eAction": "A", "receiverService": "UserMenu", "validOnState": "Idle"},
{"keys": ["Ok", "Up"], "eAction": "B", "receiverService": "UserMenu", "validOnState": "Idle"}]})"}});
        },
        "failure: rows: modifierKeyList.json:3:10: no keys announce \"B\" [hidden].");
    add(
        "search without end", [](Facts& f) { f.lists.result.isProved = false; },
        "unknown: rows: The search for rows that keys never announce did not come to its end.");
    add(
        "no speech daemon", [](Facts& f) { f.bus.names.removeOne("com.vantre.SpeechDaemon"); },
        "warning: speech: com.vantre.SpeechDaemon is not on the bus");
    add(
        "starting device", [](Facts& f) { f.bus.state = ls::StateId::Startup; },
        "warning: state: The state handler reports Startup: each key is refused with a spoken sentence");
    add(
        "errors in the log",
        [](Facts& f) {
            f.journal.lines = QStringList{"StateHandler::getState ERROR: invalid result!",
                                          "KeyboardManager::onEvent WARN: Invalid event"};
        },
        "warning: log: The running daemon has logged errors (1 lines); the last one: StateHandler::getState "
        "ERROR: "
        "invalid result!");
}

void DoctorTest::faultsAreNamed()
{
    QFETCH(Change, change);
    QFETCH(QString, expected);
    Facts facts = healthy();
    change(facts);
    const QString complaints = complaintsOf(facts);
    QVERIFY2(complaints.startsWith(expected) || complaints.contains('\n' + expected), qPrintable(complaints));
}

/// The faults of the document that need a kernel, systemd or a log. The others are those of the system test.
const QVector<QPair<QString, Change>>& DoctorTest::faultsOfTheDocument()
{
    static const QVector<QPair<QString, Change>> faults{
        {"stopped-unit",
         [](Facts& f) {
             f.unit.activeState = "inactive", f.daemons.clear(), f.bus.owner = 0,
             f.readiness.ready = QDateTime();
         }},
        {"no-autorepeat",
         [](Facts& f) { f.panel.nodes[0].hasAutorepeat = false, f.panel.nodes[1].codes.clear(); }},
        {"missing-key", [](Facts& f) { removeKey(f, ls::KeyId::Chs); }},
        {"other-device",
         [](Facts& f) {
             f.panel.nodes[0].name = "Power Button";
             f.panel.nodesByName = {{"embosser-panel-0", "event1"}, {"embosser-panel-1", "event2"}};
         }},
        {"other-reader", [](Facts& f) { f.panel.nodes[0].readers = QStringList{"evtest (977)"}; }},
        {"absent-receiver", [](Facts& f) { f.bus.names.removeOne("com.vantre.PrintManager"); }},
    };
    return faults;
}

void DoctorTest::faultsOfTheDocumentAreNamed_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<Change>("change");
    for (const auto& [name, change] : faultsOfTheDocument()) {
        QTest::newRow(qPrintable(name)) << name << change;
    }
}

void DoctorTest::faultsOfTheDocumentAreNamed()
{
    QFETCH(QString, name);
    QFETCH(Change, change);
    Facts facts = healthy();
    change(facts);
    const QString shown = FencedBlocks(document).text(QStringLiteral("text"), name);
    const QString complaints = complaintsOf(facts);
    QVERIFY2(!shown.isEmpty() && complaints.contains(shown), qPrintable('\n' + complaints));
}

void DoctorTest::keysThatNoRowNeedsMayBeAbsent()
{
    Facts facts = healthy();
    removeKey(facts, ls::KeyId::On);
    removeKey(facts, ls::KeyId::Ten);
    QCOMPARE(complaintsOf(facts), QString());
    QVERIFY(Report::toLines(Checks::all(facts))
                .contains("ok: keys: The panel has the keys of all rows. It does not have On and Ten."));
}

/// The look at the readers of the panel sees many processes.
void DoctorTest::aProcessThatHasEndedIsHarmless()
{
    constexpr qint64 absent = 999'999'999;
    const ProcessFacts facts = Probes::process(absent);
    QCOMPARE(facts.id, absent);
    QVERIFY(!facts.files);
    QVERIFY(!facts.started.isValid());
}

void DoctorTest::theStatusIsTheWorstResult()
{
    Facts facts = healthy();
    facts.journal.fault = QStringLiteral("hidden");
    QCOMPARE(Report::statusOf(Checks::all(facts)), Doubtful);
    facts.journal.fault.clear();
    facts.bus.state = ls::StateId::Print;
    QCOMPARE(Report::statusOf(Checks::all(facts)), Doubtful);
    facts.bus.answer = BusFacts::Answer::Missing;
    QCOMPARE(Report::statusOf(Checks::all(facts)), Failed);
}

void DoctorTest::theObjectHasAllResults()
{
    Facts facts = healthy();
    facts.bus.state = ls::StateId::Print;
    const Diagnoses diagnoses = Checks::all(facts);
    const QJsonObject object = Report::toObject(diagnoses);
    QCOMPARE(object.value("version").toInt(), 1);
    QCOMPARE(object.value("level").toString(), QStringLiteral("warning"));
    QCOMPARE(object.value("checks").toArray().size(), diagnoses.size());
    const auto isState = [](const QJsonValue& each) { return each.toObject().value("check") == "state"; };
    const QJsonArray checks = object.value("checks").toArray();
    const QJsonObject state = std::find_if(checks.begin(), checks.end(), isState)->toObject();
    QCOMPARE(state.keys(), QStringList({"cause", "check", "document", "level", "remedy"}));
    QCOMPARE(state.value("level").toString(), QStringLiteral("warning"));
    QCOMPARE(state.value("document").toString(), QStringLiteral("behaviour.md#single-keys"));
}

/// Without a bus, an empty private root has a result for each check.
void DoctorTest::thisSystemCanBeLookedAt()
{
    qunsetenv("DBUS_SYSTEM_BUS_ADDRESS");
    const Facts facts = Probes::facts(QStringLiteral("com.vantre"), {QCoreApplication::applicationPid()}, {});
    QVERIFY(!facts.bus.fault.isEmpty());
    QCOMPARE(facts.daemons.size(), 1);
    QVERIFY(facts.daemons.first().files);
    const qint64 ageMs = facts.daemons.first().started.msecsTo(QDateTime::currentDateTime());
    QVERIFY2(ageMs > -1000 && ageMs < 24 * 3600 * 1000, qPrintable(QString::number(ageMs)));
    QCOMPARE(facts.panel.nodes.first().kind, NodeFacts::Kind::Missing);
    const QString complaints = complaintsOf(facts);
    for (const char* expected :
         {"failure: bus: There is no system bus",
          "unknown: answer:", "failure: nodes: /dev/input/event0 is missing",
          "unknown: keys:", "failure: lists:", "unknown: receivers:", "unknown: state:", "unknown: log:"}) {
        QVERIFY2(complaints.contains(QLatin1String(expected)), qPrintable(complaints));
    }
}

/// Each document that a result names, with its heading.
void DoctorTest::documentsExist()
{
    QSet<QString> documents;
    for (const char* source : {"DaemonChecks", "ListChecks", "PanelChecks", "SurroundingChecks"}) {
        QFile code(QStringLiteral(PROJECT_FOLDER "/control/doctor/%1.cpp").arg(source));
        QVERIFY(code.open(QIODevice::ReadOnly));
        QRegularExpressionMatchIterator it = QRegularExpression("\"([a-z-]+\\.md(#[a-z0-9-]+)?)\"")
                                                 .globalMatch(QString::fromUtf8(code.readAll()));
        while (it.hasNext()) {
            documents.insert(it.next().captured(1));
        }
    }
    QVERIFY(documents.size() > 8);
    for (const QString& name : qAsConst(documents)) {
        QFile text(QStringLiteral(PROJECT_FOLDER "/docs/") + name.section('#', 0, 0));
        QVERIFY2(text.open(QIODevice::ReadOnly), qPrintable(name));
        QStringList anchors{QString()};
        for (const QString& line : QString::fromUtf8(text.readAll()).split('\n')) {
            if (line.startsWith('#')) {
                anchors.append(line.section(' ', 1)
                                   .toLower()
                                   .remove(QRegularExpression("[^a-z0-9 _-]"))
                                   .replace(' ', '-'));
            }
        }
        QVERIFY2(anchors.contains(name.section('#', 1)), qPrintable(name));
    }
}

QTEST_GUILESS_MAIN(DoctorTest)
#include "DoctorTest.moc"
