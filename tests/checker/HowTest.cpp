// SPDX-License-Identifier: MIT
#include "checker/ActionSearch.h"
#include "model/KeyFacts.h"
#include "simulator/script/KeyScriptText.h"
#include "simulator/script/Transcript.h"
#include "tests/checker/CommandRun.h"
#include "tests/model/ListMaps.h"
#include "tests/virtual/DeviceTest.h"

#include <QTemporaryDir>

namespace {

CommandRun how(const QStringList& arguments)
{
    return {checker::Commands::how, QStringList{"how"} + arguments + QStringList{KEY_LISTS}};
}

QStringList commentsOf(const CommandRun& run)
{
    return run.lines().filter(QRegularExpression("^# "));
}

} // namespace

class HowTest : public DeviceTest
{
    Q_OBJECT

private Q_SLOTS:
    void shortestWayIsInWords_data();
    void shortestWayIsInWords();
    void scriptsGoAsExpectedOnTheDaemon();
    void rowsAreInTheScriptOnRequest();
    void workingRowsComeFirst();
    void neverIsProved();
    void statesThatTheRowDoesNotNameNeedNoProof();
    void servicesMayAnnounceWhatKeysCannot();
    void keysMayNeedAnotherStateFirst();
    void searchThatEndsAtItsLimitProvesNothing();
    void unknownActionsListTheKnownOnes();
    void singleKeysAreGrouped();
    void factoryResetIsHeld();

private:
    void playScript(const QString& text);
};

void HowTest::shortestWayIsInWords_data()
{
    QTest::addColumn<QString>("action");
    QTest::addColumn<QString>("words");
    QTest::newRow("a combination") << "PaperStatus"
                                   << "# In Idle: Help, then Feed";
    QTest::newRow("a shortcut") << "VolumeUp"
                                << "# In Idle: hold Function, then press Up";
    QTest::newRow("a long press") << "CancelJob"
                                  << "# In Print and PrintOff: hold Back for 2.25 s";
    QTest::newRow("three keys") << "PrintSelfTest"
                                << "# In Idle: Function, then Help, then One";
}

void HowTest::shortestWayIsInWords()
{
    QFETCH(QString, action);
    QFETCH(QString, words);
    const CommandRun run = how({action});
    QCOMPARE(run.status, int(checker::Clean));
    QCOMPARE(commentsOf(run).value(1), words);
    QVERIFY2(commentsOf(run).first().contains(QRegularExpression("KeyList.json:\\d+\\]$")),
             qPrintable(run.out));
}

void HowTest::scriptsGoAsExpectedOnTheDaemon()
{
    for (const QString& action : checker::ActionSearch::actionsOf(ListMaps::installed())) {
        const CommandRun run = how({action, "--rows"});
        QCOMPARE(run.status, int(checker::Clean));
        for (const QString& script : run.out.split("\n\n")) {
            playScript(script);
            if (QTest::currentTestFailed()) {
                return;
            }
            QVERIFY2(script.contains("announce " + action), qPrintable(script));
        }
    }
}

void HowTest::playScript(const QString& text)
{
    const ParsedScript parsed = parseKeyScript(text);
    QVERIFY2(parsed.faults.isEmpty(), qPrintable(text));
    device = std::make_unique<VirtualDevice>();
    device->setModel(parsed.script.model);
    device->setRows(parsed.script.rows);
    device->start(parsed.script.initialState);
    device->take();
    for (const ScriptStep& step : parsed.script.steps) {
        device->waitUntil(step.at);
        device->play(step);
    }
    device->waitUntil(parsed.script.duration());
    const QStringList difference =
        Transcript::difference(parsed.script, device->takeObservations(), Transcript::Clock::Virtual);
    QVERIFY2(difference.isEmpty(), qPrintable(difference.join('\n') + '\n' + text));
}

void HowTest::rowsAreInTheScriptOnRequest()
{
    const CommandRun full = how({"VolumeUp", "--rows"});
    QCOMPARE(parseKeyScript(full.out).script.rows.size(), ListMaps::installed().ids().size());
    const CommandRun brief = how({"VolumeUp"});
    QVERIFY(parseKeyScript(brief.out).script.rows.isEmpty());
    QVERIFY2(
        brief.out.contains("# The scripts need these key lists: keyboard-handler-simulator --data FOLDER"),
        qPrintable(brief.out));
    const CommandRun here(checker::Commands::how, {"how", "VolumeUp"});
    QCOMPARE(here.status, int(checker::Unusable)); // the current folder has no lists
}

void HowTest::workingRowsComeFirst()
{
    const QTemporaryDir folder;
    QFile list(folder.filePath("shortcutKeyList.json"));
    QVERIFY(list.open(QIODevice::WriteOnly));
    list.write(R"({"ShortcutKeys": [
        {"keys": ["Feed", "Ok"], "eAction": "Wake", "validOnState": "Startup"},
        {"keys": ["Feed", "Up"], "eAction": "Wake", "validOnState": "Idle"}]})");
    list.close();
    const CommandRun run(checker::Commands::how, {"how", "Wake", folder.path()});
    QCOMPARE(run.status, int(checker::Clean));
    QCOMPARE(commentsOf(run).value(1), QString("# In Idle: hold Feed, then press Up"));
    QVERIFY2(commentsOf(run).value(3).startsWith("# Never in Startup"), qPrintable(run.out));
}

void HowTest::neverIsProved()
{
    const QTemporaryDir folder;
    QFile list(folder.filePath("shortcutKeyList.json"));
    QVERIFY(list.open(QIODevice::WriteOnly));
    list.write(
        R"({"ShortcutKeys": [{"keys": ["Feed", "Ok"], "eAction": "Wake", "validOnState": "Startup"}]})");
    list.close();
    const CommandRun run(checker::Commands::how, {"how", "Wake", folder.path()});
    QCOMPARE(run.status, int(checker::Found));
    const QRegularExpression never(
        "^# Never in Startup: no keys announce this row \\(proved: any input; [1-9][\\d,]+ "
        "situations, [1-9][\\d,]+ steps\\)\\.$");
    QVERIFY2(commentsOf(run).value(1).contains(never), qPrintable(run.out));
    QVERIFY(!run.out.contains("\nmodel "));
}

void HowTest::statesThatTheRowDoesNotNameNeedNoProof()
{
    const CommandRun run = how({"CancelJob", "--state", "Idle"});
    QCOMPARE(run.status, int(checker::Found));
    QCOMPARE(commentsOf(run).mid(1), QStringList{"# Never in Idle: the row is valid in Print and PrintOff."});
}

void HowTest::servicesMayAnnounceWhatKeysCannot()
{
    const auto lists = ListMaps::ofRows({shortcutRow({"Feed", "Ok"}, "Startup", "Wake")});
    const auto ways = checker::ActionSearch(lists).waysTo("Wake", std::nullopt);
    QCOMPARE(ways.size(), 1);
    QCOMPARE(ways.first().verdict.kind, model::RowVerdict::Kind::Never);
    QVERIFY(ways.first().byServices);
}

void HowTest::keysMayNeedAnotherStateFirst()
{
    const auto lists = ListMaps::ofRows({modifierRow({"Help", "Feed"}, "Print", "Eject")});
    const auto ways = checker::ActionSearch(lists).waysTo("Eject", std::nullopt);
    QCOMPARE(ways.size(), 1);
    QCOMPARE(ways.first().verdict.kind, model::RowVerdict::Kind::Announced);
    QVERIFY(ways.first().verdict.witness.start != ways.first().state);
}

void HowTest::searchThatEndsAtItsLimitProvesNothing()
{
    checker::ActionSearch search(ListMaps::installed(), {10, 10});
    const auto ways = search.waysTo("PaperStatus", model::KeyFacts::idle);
    QCOMPARE(ways.first().verdict.kind, model::RowVerdict::Kind::NotProved);
}

void HowTest::unknownActionsListTheKnownOnes()
{
    const CommandRun run = how({"PaperStatsu"});
    QCOMPARE(run.status, int(checker::Unusable));
    QCOMPARE(run.out, QString());
    QVERIFY2(run.err.contains("PaperStatus") && run.err.contains("VolumeUp") && run.err.contains("SingleKey"),
             qPrintable(run.err));
}

void HowTest::singleKeysAreGrouped()
{
    const QStringList idle = commentsOf(how({"SingleKey", "--state", "Idle"}));
    QVERIFY2(idle.contains("# Menu: at the release, to UserMenu"), qPrintable(idle.join('\n')));
    QVERIFY2(!idle.filter(QRegularExpression("^# Back.*: 1.5 s after the release, to UserMenu$")).isEmpty(),
             qPrintable(idle.join('\n')));
    const CommandRun startup = how({"SingleKey", "--state", "Startup"});
    QCOMPARE(startup.status, int(checker::Found));
    QVERIFY2(startup.out.contains("# Never in Startup"), qPrintable(startup.out));
}

void HowTest::factoryResetIsHeld()
{
    const CommandRun idle = how({"FactoryReset", "--state", "Idle"});
    QVERIFY2(idle.out.contains("# FactoryReset: held for 5 s, to WwwApi"), qPrintable(idle.out));
    const CommandRun startup = how({"FactoryReset", "--state", "Startup"});
    QCOMPARE(startup.status, int(checker::Clean));
    QVERIFY2(startup.out.contains("FactoryReset, then the state becomes Startup"), qPrintable(startup.out));
}

VIRTUAL_TIME_TEST_MAIN(HowTest)
#include "HowTest.moc"
