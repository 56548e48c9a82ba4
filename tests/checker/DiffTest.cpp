// SPDX-License-Identifier: MIT
#include "checker/DifferenceReport.h"
#include "tests/checker/CommandRun.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QtTest>

namespace {

CommandRun diff(const QStringList& arguments)
{
    return {checker::Commands::diff, QStringList{"diff"} + arguments};
}

/// Writes a list of combinations into a folder and returns its path.
QString combinations(const QTemporaryDir& parent, const QString& name, const QByteArray& rows)
{
    const QDir folder(parent.filePath(name));
    QFile file(folder.filePath("modifierKeyList.json"));
    const QByteArray text = "{ \"ModifierKeys\": [" + rows + "] }";
    const bool isWritten =
        folder.mkpath(".") && file.open(QIODevice::WriteOnly) && file.write(text) == text.size();
    return isWritten ? folder.path() : QString();
}

QByteArray row(const QByteArray& keys, const QByteArray& action)
{
    return "{ \"keys\": [" + keys + "], \"eAction\": \"" + action +
           "\", \"receiverService\": \"UserMenu\", \"validOnState\": \"Idle\" }";
}

} // namespace

/// `keyboard-handler-keys diff`.
class DiffTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theSameListsDoNotDiffer();
    void differencesAreMirrored();
    void servicesDoNotHearSpeech();
    void changedStatesAreCompared();
    void helpNamesWhoIsAssumed();
    void eachDifferenceNamesTheRulesThatMakeIt();
    void differencesAreGroupedByState();
    void programsReadJson();
    void aReportCanBeShortened();
    void peopleReadAPage();
    void unusableArgumentsAreRefused();
};

void DiffTest::theSameListsDoNotDiffer()
{
    const CommandRun run = diff({KEY_LISTS, KEY_LISTS});
    QCOMPARE(run.status, int(checker::Clean));
    QVERIFY2(run.out.contains(QRegularExpression("^No difference: proved, a person with 2 fingers, on one "
                                                 "device, only keys of the panel, the state "
                                                 "changes at most once, no keyboard test; "
                                                 "[\\d,]+ situations, [\\d,]+ steps\\.\n$")),
             qPrintable(run.out));
    QCOMPARE(run.err, QString());
}

void DiffTest::differencesAreMirrored()
{
    const QTemporaryDir parent;
    const QString one = combinations(parent, "one", row("\"Help\", \"Feed\"", "A"));
    const QString two = combinations(parent, "two", row("\"Help\", \"Feed\"", "B"));
    const auto cause = [](const QString& action, const QString& folder) {
        return QStringLiteral(
                   "speaks \"Feed\"; announces %1 to UserMenu, with Help and Feed, because Feed up "
                   "completes %1  [%2/modifierKeyList.json:1]")
            .arg(action, folder);
    };
    const QString a = cause("A", one);
    const QString b = cause("B", two);
    const CommandRun run = diff({one, two});
    QCOMPARE(run.status, int(checker::Found));
    QVERIFY2(run.out.startsWith("Idle: "), qPrintable(run.out));
    QCOMPARE(run.lines().mid(1, 2), QStringList({"    was " + a, "    now " + b}));
    QCOMPARE(diff({two, one}).lines().mid(1, 2), QStringList({"    was " + b, "    now " + a}));
    QVERIFY2(run.err.contains("note: " + two + ": longKeyList.json is missing"), qPrintable(run.err));
}

void DiffTest::servicesDoNotHearSpeech()
{
    const QTemporaryDir parent;
    // The keys complete a row whose action is dropped: the closing key is spoken once more.
    const QByteArray dropped = row("\"Help\", \"Feed\"", "A").replace("UserMenu", "Undefined");
    const QStringList folders{combinations(parent, "one", {}), combinations(parent, "two", dropped)};
    const CommandRun users = diff(folders);
    QCOMPARE(users.status, int(checker::Found));
    QVERIFY2(users.out.contains("speaks \"Feed\""), qPrintable(users.out));
    const CommandRun services = diff(folders + QStringList{"--for", "services"});
    QVERIFY2(services.status == int(checker::Clean), qPrintable(services.out));
    QVERIFY2(services.out.startsWith("No difference: proved, a person "), qPrintable(services.out));
    const QStringList announced{combinations(parent, "three", {}),
                                combinations(parent, "four", row("\"Help\", \"Feed\"", "A")), "--for",
                                "services"};
    QVERIFY2(diff(announced).out.contains("announces A to UserMenu"), qPrintable(diff(announced).out));
}

void DiffTest::changedStatesAreCompared()
{
    const QTemporaryDir parent;
    const QDir folder(parent.filePath("two"));
    QFile file(folder.filePath("longKeyList.json"));
    QVERIFY(folder.mkpath(".") && file.open(QIODevice::WriteOnly));
    // In Startup, no long press begins, but one that began before ends.
    file.write("{ \"LongKeys\": [{ \"keys\": [\"Help\"], \"eAction\": \"A\", \"timeout\": 1, "
               "\"receiverService\": \"UserMenu\", \"validOnState\": \"Startup\" }] }");
    file.close();
    const CommandRun run = diff({combinations(parent, "one", {}), folder.path(), "--for", "services"});
    QVERIFY2(
        run.out.contains(QRegularExpression("^Startup: in \\w+, hold Help, .*then the state becomes "
                                            "Startup.*\n    was nothing\n    now announces A to UserMenu",
                                            QRegularExpression::MultilineOption)),
        qPrintable(run.out));
}

void DiffTest::helpNamesWhoIsAssumed()
{
    QVERIFY(diff({"--help"})
                .out.simplified()
                .contains("For both, a person presses keys of the panel with two fingers, and the state "
                          "changes at most once."));
}

void DiffTest::eachDifferenceNamesTheRulesThatMakeIt()
{
    const QTemporaryDir parent;
    const QString one = combinations(parent, "one", row("\"Help\", \"Feed\"", "A"));
    const CommandRun run = diff({one, combinations(parent, "two", {})});
    QCOMPARE(
        run.lines().mid(1, 2),
        QStringList({"    was speaks \"Feed\"; announces A to UserMenu, with Help and Feed, because Feed up "
                     "completes A  [" +
                         one + "/modifierKeyList.json:1]",
                     "    now speaks \"Feed\""}));
}

void DiffTest::differencesAreGroupedByState()
{
    const QTemporaryDir parent;
    const QString one = combinations(parent, "one", {});
    const QString two = combinations(parent, "two", row("\"Help\", \"Feed\"", "A"));
    QFile longPresses(two + "/longKeyList.json");
    QVERIFY(longPresses.open(QIODevice::WriteOnly));
    longPresses.write(
        "{ \"LongKeys\": [" +
        row("\"Ok\"", "B").replace("\"Idle\"", "\"Print|Idle\"").replace(" }", ", \"timeout\": 1 }") + "] }");
    longPresses.close();
    const CommandRun run = diff({one, two, "--format", "json"});
    QStringList states;
    for (const QJsonValue& each :
         QJsonDocument::fromJson(run.out.toUtf8()).object().value("differences").toArray()) {
        const QString state = each.toObject().value("state").toString();
        if (states.isEmpty() || states.last() != state) {
            states.append(state);
        }
    }
    QVERIFY2(states.contains("Idle") && states.contains("Print"), qPrintable(states.join(' ')));
    QCOMPARE(states.removeDuplicates(), 0);
}

void DiffTest::programsReadJson()
{
    const QTemporaryDir parent;
    const QString one = combinations(parent, "one", row("\"Help\", \"Feed\"", "A"));
    const QString two = combinations(parent, "two", row("\"Help\", \"Feed\"", "\\u001b"));
    const CommandRun run = diff({one, two, "--format", "json", "--for", "services"});
    const QJsonObject report = QJsonDocument::fromJson(run.out.toUtf8()).object();
    QCOMPARE(report.value("version").toInt(), 1);
    QCOMPARE(report.value("old").toString(), one);
    QCOMPARE(report.value("for").toString(), QString("services"));
    QCOMPARE(report.value("complete").toBool(), true);
    const QJsonObject first = report.value("differences").toArray().first().toObject();
    QCOMPARE(first.value("state").toString(), QString("Idle"));
    QCOMPARE(first.value("was").toArray(), QJsonArray{"announces A to UserMenu, with Help and Feed"});
    QCOMPARE(first.value("now").toArray(), QJsonArray{"announces \x1b to UserMenu, with Help and Feed"});
    const QString text = diff({one, two, "--for", "services"}).out;
    QStringList lines;
    for (const QString& line : text.trimmed().split('\n')) {
        lines.append(line.trimmed());
    }
    QCOMPARE(first.value("lines").toArray().first().toString(), lines.first());
    QCOMPARE(first.value("lines").toArray().at(1).toString(), lines.at(1));
    QCOMPARE(report.value("conclusion").toString(), lines.last());
}

void DiffTest::aReportCanBeShortened()
{
    const auto with = [](const QByteArray& action, const QByteArray& other) {
        return checker::ListSources::of(
            {{"modifierKeyList.json", "{ \"ModifierKeys\": [" + row("\"Help\", \"Feed\"", action) + ", " +
                                          row("\"Ok\", \"Feed\"", other) + "] }"}});
    };
    const checker::ListSources one = with("A", "B");
    const checker::ListSources two = with("C", "D");
    const checker::ComparedLists compared{"one",
                                          "two",
                                          one.lists(false),
                                          two.lists(false),
                                          checker::PlacesOf::rowsIn(one),
                                          checker::PlacesOf::rowsIn(two)};
    const auto countsOf = [&compared](const checker::DifferenceReport::Extent& extent) {
        const QByteArray json = checker::DifferenceReport(compared, extent).json();
        const QJsonObject report = QJsonDocument::fromJson(json).object();
        return QPair(report.value("differences").toArray().size(), report.value("leftOut").toInt());
    };
    checker::DifferenceReport::Extent extent;
    extent.limits = {300'000, 5'000'000};
    const int all = countsOf(extent).first;
    QVERIFY(all >= 2);
    extent.maxDifferences = 1;
    QCOMPARE(countsOf(extent), QPair(1, all - 1));
    extent.maxDifferences = all;
    extent.maxText = 1;
    QCOMPARE(countsOf(extent), QPair(1, all - 1));
    extent.limits = {1, 1};
    QVERIFY(!checker::DifferenceReport(compared, extent).isProved());
}

void DiffTest::peopleReadAPage()
{
    const QTemporaryDir parent;
    const QString one = combinations(parent, "one", row("\"Help\", \"Feed\"", "<b>"));
    const CommandRun run = diff({one, combinations(parent, "two", {}), "--format", "html"});
    QVERIFY2(run.out.startsWith("<!DOCTYPE html>\n<html lang=\"en\">"), qPrintable(run.out));
    QVERIFY2(run.out.contains("<caption>Differences in the state Idle</caption>"), qPrintable(run.out));
    QVERIFY2(run.out.contains("announces &lt;b&gt; to UserMenu"), qPrintable(run.out));
    QVERIFY2(!run.out.contains("<b>"), qPrintable(run.out));
}

void DiffTest::unusableArgumentsAreRefused()
{
    QCOMPARE(diff({}).status, int(checker::Unusable));
    QCOMPARE(diff({KEY_LISTS}).status, int(checker::Unusable));
    QCOMPARE(diff({KEY_LISTS, "/nowhere"}).status, int(checker::Unusable));
    QCOMPARE(diff({KEY_LISTS, KEY_LISTS, "--for", "cats"}).status, int(checker::Unusable));
    QCOMPARE(diff({KEY_LISTS, KEY_LISTS, "--format", "sarif"}).status, int(checker::Unusable));
    QCOMPARE(diff({KEY_LISTS, KEY_LISTS, "--model", "Other"}).status, int(checker::Unusable));
    QCOMPARE(diff({"--help"}).status, int(checker::Clean));
}

QTEST_GUILESS_MAIN(DiffTest)
#include "DiffTest.moc"
