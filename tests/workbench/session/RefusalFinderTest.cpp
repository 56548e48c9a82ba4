// SPDX-License-Identifier: MIT
#include "workbench/session/RefusalFinder.h"

#include <QtTest>

namespace {

const QVector<KeyRow> rows{
    {KeyRow::Kind::Long, "Eject", "PrintManager", "Idle|PrintOff", 1, {"Feed"}},
    {KeyRow::Kind::Modifier, "Status", "PrintManager", "PrintOff", 0, {"Help", "Feed"}},
    {KeyRow::Kind::Modifier, "Test", "PrintManager", "Error", 0, {"One", "Up", "Ten"}},
    {KeyRow::Kind::Shortcut, "Load", "PrintManager", "PrintOff", 0, {"Feed", "Ok"}},
    {KeyRow::Kind::Shortcut, "Volume", "UserMenu", "Print", 0, {"Function", "Up"}},
    {KeyRow::Kind::Shortcut, "Void", "Undefined", "PrintOff", 0, {"Help", "Up"}}};

const QString offLine = QStringLiteral(
    "KeyboardManager::onEvent WARN: Expected state is:  \"PrintOff\" , but current state is:  \"Update\" !?");
const QString undefinedLine =
    QStringLiteral("KeyboardManager::onEvent WARN: Invalid event, receiver service is undefined!");

QString withState(const QString& state)
{
    return QString(offLine).replace(QStringLiteral("PrintOff"), state);
}

} // namespace

class RefusalFinderTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void otherLinesAreNotRefusals_data();
    void otherLinesAreNotRefusals();
    void theStatesAreTakenFromTheLog();
    void theActionIsIdentifiedByItsKeys_data();
    void theActionIsIdentifiedByItsKeys();
    void keysBeforeAnIdlePeriodAreIgnored();
    void simulatedKeysAreConsidered();
    void aLongPressAnnouncedInAnotherStateIsNotRefused();

private:
    /// "Feed+" is a press, "Feed*" a repetition, "Feed-" a release.
    static void move(RefusalFinder& finder, const QString& keys);
};

void RefusalFinderTest::move(RefusalFinder& finder, const QString& keys)
{
    const QStringList words = keys.split(' ', Qt::SkipEmptyParts);
    for (const QString& word : words) {
        finder.noteKey(0, word.chopped(1), QStringLiteral("-+*").indexOf(word.right(1)));
    }
}

void RefusalFinderTest::otherLinesAreNotRefusals_data()
{
    QTest::addColumn<QString>("line");
    QTest::newRow("empty") << QString();
    QTest::newRow("another") << "KeyboardManager::onEvent WARN: Expected state is: none";
    QTest::newRow("words before") << "x" + offLine;
    QTest::newRow("words after") << offLine + "x";
    QTest::newRow("words after the receiver") << undefinedLine + "x";
}

void RefusalFinderTest::otherLinesAreNotRefusals()
{
    QFETCH(QString, line);
    QVERIFY(!RefusalFinder(rows).find(line));
}

void RefusalFinderTest::theStatesAreTakenFromTheLog()
{
    const std::optional<entry::Refusal> refusal = RefusalFinder(rows).find(offLine);
    QVERIFY(refusal);
    QCOMPARE(refusal->reason, offLine);
    QCOMPARE(refusal->expected.value(), QStringLiteral("PrintOff"));
    QCOMPARE(refusal->current, QStringLiteral("Update"));
    QCOMPARE(refusal->action, QString());
}

void RefusalFinderTest::theActionIsIdentifiedByItsKeys_data()
{
    QTest::addColumn<QString>("keys");
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("action");
    QTest::newRow("a long press") << "Feed+ Feed*" << offLine << "Eject";
    QTest::newRow("a long press of joined states") << "Feed+ Feed*" << withState("Idle") << "Eject";
    QTest::newRow("a press that is too short") << "Feed+" << offLine << "";
    QTest::newRow("pressed again") << "Feed+ Feed* Feed- Feed+" << offLine << "";
    QTest::newRow("a combination") << "Help+ Help- Feed+ Feed-" << offLine << "Status";
    QTest::newRow("an incomplete combination") << "Help+ Help- Feed+" << offLine << "";
    QTest::newRow("a shortcut") << "Feed+ Ok+" << offLine << "Load";
    QTest::newRow("several candidates") << "Feed+ Feed* Ok+" << offLine << "";
    QTest::newRow("of another state") << "Function+ Up+" << offLine << "";
    QTest::newRow("of its state") << "Function+ Up+" << withState("Print") << "Volume";
    QTest::newRow("an undefined receiver") << "Help+ Up+" << undefinedLine << "Void";
    QTest::newRow("not the undefined receiver") << "Help+ Up+" << offLine << "";
}

void RefusalFinderTest::theActionIsIdentifiedByItsKeys()
{
    QFETCH(QString, keys);
    QFETCH(QString, line);
    RefusalFinder finder(rows);
    move(finder, keys);
    QVERIFY(finder.find(line));
    QTEST(finder.find(line)->action, "action");
}

void RefusalFinderTest::keysBeforeAnIdlePeriodAreIgnored()
{
    RefusalFinder finder(rows);
    move(finder, "Feed+ Feed* Feed-");
    QTest::qWait(2050);
    move(finder, "Feed+ Ok+");
    QCOMPARE(finder.find(offLine)->action, QStringLiteral("Load"));
}

void RefusalFinderTest::simulatedKeysAreConsidered()
{
    RefusalFinder finder(rows);
    finder.noteSimulated({"Function", "Up"});
    QCOMPARE(finder.find(withState("Print"))->action, QStringLiteral("Volume"));
}

void RefusalFinderTest::aLongPressAnnouncedInAnotherStateIsNotRefused()
{
    // The daemon announces Eject in Idle and logs a refusal for PrintOff.
    RefusalFinder finder({rows.first()});
    move(finder, QStringLiteral("Feed+ Feed*"));
    QVERIFY(!finder.find(QString(offLine).replace("\"Update\"", "\"Idle\"")));
    const std::optional<entry::Refusal> refused = finder.find(offLine);
    QVERIFY(refused);
    QCOMPARE(refused->action, QStringLiteral("Eject"));
}

QTEST_GUILESS_MAIN(RefusalFinderTest)
#include "RefusalFinderTest.moc"
