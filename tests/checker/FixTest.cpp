// SPDX-License-Identifier: MIT
#include "checker/Mending.h"
#include "tests/checker/CommandRun.h"
#include "tests/checker/ListTexts.h"

#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QtTest>

using namespace checker;
using model::List;

namespace {

QByteArray row(const QByteArray& keys, const QByteArray& action = "A", const QByteArray& more = "")
{
    return "{ \"keys\": [" + keys + "], \"eAction\": \"" + action +
           "\", \"receiverService\": \"UserMenu\", \"validOnState\": \"Idle\"" + more + " }";
}

QByteArray held(const QByteArray& timeout, const QByteArray& key = "\"Help\"", const QByteArray& action = "A")
{
    return row(key, action, ", \"timeout\": " + timeout);
}

const QByteArray sequence = row("\"Function\", \"Help\", \"One\"", "S");

CheckResult findAll(const ListSources& sources)
{
    return check(sources, {});
}

QByteArray textOf(const Mending& mending, List list)
{
    return mending.sources().file(list).text();
}

/// A folder with one file.
struct Folder
{
    explicit Folder(const QByteArray& text, const QString& name = QStringLiteral("longKeyList.json"))
        : path(folder.filePath(name))
    {
        QFile file(path);
        file.open(QIODevice::WriteOnly);
        file.write(text);
    }

    QByteArray text() const
    {
        QFile file(path);
        file.open(QIODevice::ReadOnly);
        return file.readAll();
    }
    CommandRun fix() const { return CommandRun(Commands::check, {"check", "--fix", path}); }

    QTemporaryDir folder;
    QString path;
};

QByteArray longPresses(const QByteArray& rows)
{
    return "{\"LongKeys\": [\n" + rows + "\n]}\n";
}

} // namespace

/// What `keyboard-handler-keys check --fix` changes, and what it leaves as it is.
class FixTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void mends_data();
    void mends();
    void doesNotMend_data();
    void doesNotMend();
    void mendsOnceAndForAll_data() { mends_data(); }
    void mendsOnceAndForAll();
    void aRowGoesToTheEnd();
    void elementsBetweenTheRowsStay();
    void aMendThatTakesTheKeysOfAnotherRowIsNotMade();
    void aMendThatIsMadeByAnotherOneIsFound();
    void onlyTheMendedBytesChange_data();
    void onlyTheMendedBytesChange();
    void theCommandSaysWhatItDoes();
    void allowedFindingsStay();
    void filesWithoutMendsAreNotWritten();
    void permissionsAndLinksStay();
    void aReadOnlyFileStays();
    void standardInputCannotBeMended();
};

void FixTest::mends_data()
{
    QTest::addColumn<int>("list");
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QByteArray>("after");
    QTest::addColumn<QString>("promise");

    const auto add = [](List list, const char* name, const QByteArray& before, const QByteArray& after,
                        const QString& promise) {
        QTest::newRow(name) << static_cast<int>(list) << before << after << promise;
    };
    const QString same = QStringLiteral("the daemon reads the same rows as before");
    const QString longPress =
        QStringLiteral("row 1: holding Help for 2.25 s now announces \"A\" to UserMenu in "
                       "Idle; all other rows do what they did");
    const QString shortcut =
        QStringLiteral("row 1: holding Help and pressing Up now announces \"A\" to UserMenu "
                       "in Idle; all other rows do what they did");
    const QByteArray good = row("\"Help\", \"Up\"");
    const auto misspelt = [&](const char* word, const char* wrong) {
        return QByteArray(good).replace(word, wrong);
    };

    add(List::LongPresses, "a rounded time", held("1.5"), held("2"), same);
    add(List::LongPresses, "a time as a text", held("\"2\""), held("2"), same);
    add(List::LongPresses, "keys that are not a list", held("2").replace("[\"Help\"]", "\"Help\""), held("2"),
        same);
    add(List::LongPresses, "an action that is a number", held("2", "\"Help\"", "5").replace("\"5\"", "5"),
        held("2", "\"Help\"", "5"), same);
    add(List::LongPresses, "a member that is there twice",
        row("\"Help\"", "A", ",\n \"eAction\" : \"A\", \"timeout\": 2"), held("2"), same);
    add(List::LongPresses, "a misspelt time", held("2").replace("timeout", "timeOut"), held("2"), longPress);
    add(List::LongPresses, "a misspelt state among others", held("2").replace("Idle", "Error | Idel"),
        held("2").replace("Idle", "Error | Idle"), QString(longPress).replace("Idle", "Idle and Error"));
    add(List::LongPresses, "three mends of a row",
        held("\"2\"").replace("Help", "Hlep").replace("UserMenu", "UserMenue"), held("2"), longPress);
    add(List::Shortcuts, "a misspelt key", misspelt("Help", "Hlep"), good, shortcut);
    add(List::Shortcuts, "a misspelt member", misspelt("receiverService", "recieverService"), good, shortcut);
    add(List::Shortcuts, "a member in other letters", misspelt("eAction", "eaction"), good, shortcut);
    add(List::Shortcuts, "a misspelt receiver", misspelt("UserMenu", "UserMenue"), good, shortcut);
    add(List::Shortcuts, "a misspelt state", misspelt("Idle", "idle"), good, shortcut);
    add(List::Combinations, "a row that hides another", sequence + ",\n" + good, good + ",\n" + sequence,
        "\"A\" works now, and all rows that worked still do");
}

void FixTest::mends()
{
    QFETCH(int, list);
    QFETCH(QByteArray, before);
    QFETCH(QByteArray, after);
    QFETCH(QString, promise);
    std::array<QByteArray, 3> texts;
    texts[static_cast<size_t>(list)] = before;
    const Mending mending(ListTexts::withRows(texts[0], texts[1], texts[2]), findAll);
    const auto changed = static_cast<List>(list);
    QCOMPARE(textOf(mending, changed),
             "{\"" + model::KeyLists::sectionOf(changed).toUtf8() + "\": [\n" + after + "]}\n");
    QCOMPARE(mending.changed(), QVector<List>{changed});
    QVERIFY2(mending.made().contains("    " + promise), qPrintable(mending.made().join('\n')));
    QCOMPARE(mending.refused(), QStringList());
    for (const Finding& finding : mending.result().findings) {
        QVERIFY2(!finding.mend, qPrintable(finding.message));
    }
}

/// A second run finds nothing to mend.
void FixTest::mendsOnceAndForAll()
{
    QFETCH(int, list);
    QFETCH(QByteArray, before);
    std::array<QByteArray, 3> texts;
    texts[static_cast<size_t>(list)] = before;
    const Mending first(ListTexts::withRows(texts[0], texts[1], texts[2]), findAll);
    const Mending second(first.sources(), findAll);
    QCOMPARE(second.made(), QStringList());
    QCOMPARE(second.changed(), QVector<List>());
}

void FixTest::doesNotMend_data()
{
    QTest::addColumn<QByteArray>("rows");

    QTest::newRow("a time that is rounded to 0") << held("0.4");
    QTest::newRow("a time that is true") << held("true");
    QTest::newRow("a time in milliseconds") << held("3000");
    QTest::newRow("a time over the limit") << held("1e300");
    QTest::newRow("no time") << row("\"Help\"");
    QTest::newRow("two names that resemble a member")
        << row("\"Help\"", "A", ", \"timeOut\": 2, \"timeuot\": 3");
    QTest::newRow("a key that resembles two") << held("2", "\"Uk\"");
    QTest::newRow("a key that resembles none") << held("2", "\"Escape\"");
    QTest::newRow("an empty state") << held("2").replace("Idle", "");
    QTest::newRow("a member twice, with two values")
        << row("\"Help\"", "A", ", \"eAction\": \"B\", \"timeout\": 2");
    QTest::newRow("a key that does not count") << held("2", "\"Help\", \"Hlep\"");
    QTest::newRow("long presses of the same key") << held("2") + "," + held("3", "\"Help\"", "B");
}

void FixTest::doesNotMend()
{
    QFETCH(QByteArray, rows);
    const Mending mending(ListTexts::withRows(rows, {}, {}), findAll);
    QVERIFY(!mending.result().findings.isEmpty());
    QCOMPARE(mending.made(), QStringList());
    QCOMPARE(mending.changed(), QVector<List>());
}

/// The rows change places, and what is between them stays.
void FixTest::aRowGoesToTheEnd()
{
    const QByteArray one = row("\"Ok\", \"Up\"", "B");
    const QByteArray two = row("\"Ok\", \"Down\"", "C");
    const Mending mending(
        ListTexts::withRows({}, "  " + sequence + " ,\n\t" + one + ",\r\n\n" + two + " ", {}), findAll);
    QCOMPARE(textOf(mending, List::Combinations),
             "{\"ModifierKeys\": [\n  " + one + " ,\n\t" + two + ",\r\n\n" + sequence + " ]}\n");
    QCOMPARE(mending.made().value(0),
             QString("mended: modifierKeyList.json:2:13: row 1 is now the last one"));
    QCOMPARE(mending.result().findings.size(), 0);
}

void FixTest::elementsBetweenTheRowsStay()
{
    const QByteArray one = row("\"Ok\", \"Up\"", "B");
    const Mending mending(ListTexts::withRows({}, sequence + ", 5, " + one, {}), findAll);
    QCOMPARE(textOf(mending, List::Combinations),
             "{\"ModifierKeys\": [\n5, " + one + ", " + sequence + "]}\n");
}

/// The misspelt row would count for the key instead of the first row.
void FixTest::aMendThatTakesTheKeysOfAnotherRowIsNotMade()
{
    const QByteArray rows = held("2", "\"Help\"", "First") + ",\n" + held("3", "\"Hlep\"", "Second");
    const Mending mending(ListTexts::withRows(rows, {}, {}), findAll);
    QCOMPARE(mending.made(), QStringList());
    QCOMPARE(mending.changed(), QVector<List>());
    QCOMPARE(
        mending.refused(),
        QStringList("not mended: longKeyList.json:3:12: write \"Help\". With all changes of this row, row 1, "
                    "\"First\", would no longer be announced in Idle."));
    QCOMPARE(mending.result().findings.first().id, QString("unknown-key"));
}

/// The state is looked at only when its member has its name.
void FixTest::aMendThatIsMadeByAnotherOneIsFound()
{
    const QByteArray good = held("2");
    const Mending mending(
        ListTexts::withRows(QByteArray(good).replace("validOnState", "validonstate").replace("Idle", "Idel"),
                            {}, {}),
        findAll);
    QCOMPARE(textOf(mending, List::LongPresses), "{\"LongKeys\": [\n" + good + "]}\n");
}

void FixTest::onlyTheMendedBytesChange_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QByteArray>("after");

    const auto add = [](const char* name, const QByteArray& text) {
        QTest::newRow(name) << QByteArray(text).replace("HELP", "Hlep").replace("ACTION", "eaction")
                            << QByteArray(text).replace("HELP", "Help").replace("ACTION", "eAction");
    };
    const QByteArray text =
        "{\n  \"LongKeys\": [\n    { \"keys\": [ \"HELP\" ], \"ACTION\": \"A\",\n      "
        "\"receiverService\":\"UserMenu\" , \"timeout\": 2, \"validOnState\": \"Idle\" }\n  ]\n}\n";
    add("line feeds", text);
    add("carriage returns and line feeds", QByteArray(text).replace("\n", "\r\n"));
    add("tabs", QByteArray(text).replace("  ", "\t"));
    add("a byte order mark", "\xEF\xBB\xBF" + text);
    add("one line without an end", QByteArray(text).simplified());
    add("other members and escape sequences",
        QByteArray(text).replace("\"timeout\"", "\"#\": \"\\u00e4 \xC3\xA4 // /* \", \"t\\u0069meout\""));
}

void FixTest::onlyTheMendedBytesChange()
{
    QFETCH(QByteArray, before);
    QFETCH(QByteArray, after);
    const Folder folder(before);
    folder.fix();
    QCOMPARE(folder.text(), after);
}

void FixTest::theCommandSaysWhatItDoes()
{
    const Folder folder(longPresses(held("2", "\"Hlep\"") + ",\n" + held("0.4", "\"Ok\"", "B")));
    const CommandRun run = folder.fix();
    QCOMPARE(run.status, int(Found));
    QCOMPARE(run.err, QString());
    QCOMPARE(
        run.lines().mid(0, 2),
        QStringList(
            {QStringLiteral("mended: %1:2:12: \"Hlep\" is now \"Help\"").arg(folder.path),
             "    row 1: holding Help for 2.25 s now announces \"A\" to UserMenu in Idle; all other rows "
             "do what they did"}));
    QVERIFY(!run.out.contains("unknown-key"));
    QVERIFY(run.out.contains("error[time]"));
    const CommandRun json(Commands::check, {"check", "--fix", "--format", "json", folder.path});
    QVERIFY(json.out.startsWith('{'));
}

void FixTest::allowedFindingsStay()
{
    const QByteArray text = longPresses(held("1.5"));
    const Folder folder(text);
    const CommandRun run(Commands::check, {"check", "--fix", "--allow", "value", folder.path});
    QCOMPARE(run.status, int(Clean));
    QCOMPARE(folder.text(), text);
}

/// They may be on a disk that cannot be written.
void FixTest::filesWithoutMendsAreNotWritten()
{
    const Folder folder(longPresses(held("2")));
    QVERIFY(QFile::setPermissions(folder.path, QFile::ReadOwner));
    const QDateTime before = QFileInfo(folder.path).lastModified();
    const CommandRun run = folder.fix();
    QCOMPARE(run.status, int(Clean));
    QVERIFY(!run.out.contains("mended"));
    QCOMPARE(QFileInfo(folder.path).lastModified(), before);
}

void FixTest::permissionsAndLinksStay()
{
    const Folder folder(longPresses(held("1.5")), "rows.json");
    const QFile::Permissions permissions =
        QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup | QFile::ExeOther;
    QVERIFY(QFile::setPermissions(folder.path, permissions));
    const QString link = folder.folder.filePath("link.json");
    const QString longKeyList = folder.folder.filePath("longKeyList.json");
    QVERIFY(QFile::link("rows.json", link) && QFile::link(link, longKeyList));
    const CommandRun run(Commands::check, {"check", "--fix", folder.folder.path()});
    QCOMPARE(run.status, int(Clean));
    QCOMPARE(folder.text(), longPresses(held("2")));
    QVERIFY(QFileInfo(link).isSymLink() && QFileInfo(longKeyList).isSymLink());
    constexpr QFile::Permissions ofUser = QFile::ReadUser | QFile::WriteUser | QFile::ExeUser;
    QCOMPARE(QFileInfo(folder.path).permissions() & ~ofUser, permissions);
    QCOMPARE(QDir(folder.folder.path()).entryList(QDir::Files | QDir::Hidden).size(), 3);
}

void FixTest::aReadOnlyFileStays()
{
    const QByteArray text = longPresses(held("1.5"));
    const Folder folder(text);
    QVERIFY(QFile::setPermissions(folder.path, QFile::ReadOwner));
    const CommandRun run = folder.fix();
    QCOMPARE(run.status, int(Unusable));
    QCOMPARE(run.err, folder.path + " cannot be mended: it is read-only.\n");
    QVERIFY(!run.out.contains("mended"));
    QCOMPARE(folder.text(), text);
}

void FixTest::standardInputCannotBeMended()
{
    const CommandRun run(Commands::check, {"check", "--fix", "-"});
    QCOMPARE(run.status, int(Unusable));
    QCOMPARE(run.err, QString("Standard input cannot be mended: --fix needs files.\n"));
}

QTEST_GUILESS_MAIN(FixTest)
#include "FixTest.moc"
