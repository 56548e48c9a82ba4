// SPDX-License-Identifier: MIT
#include "workbench/session/RefusalFinder.h"

#include "model/DaemonInputs.h"
#include "simulator/script/KeyListJson.h"

#include <ls/MessageKeys.h>

#include <QtTest>

#include <linux/input-event-codes.h>

namespace {

namespace DaemonInputs = model::DaemonInputs;
using std::chrono::milliseconds;

const QVector<KeyRow> rows{
    {KeyRow::Kind::Long, "Eject", "PrintManager", "Idle|PrintOff", 1, {"Feed"}},
    {KeyRow::Kind::Modifier, "Status", "PrintManager", "PrintOff", 0, {"Help", "Feed"}},
    {KeyRow::Kind::Shortcut, "Load", "PrintManager", "PrintOff", 0, {"Feed", "Ok"}},
    {KeyRow::Kind::Shortcut, "Volume", "UserMenu", "Print", 0, {"Function", "Up"}},
    {KeyRow::Kind::Shortcut, "Void", "Undefined", "PrintOff", 0, {"Help", "Up"}}};

const QString undefinedLine =
    QStringLiteral("KeyboardManager::onEvent WARN: Invalid event, receiver service is undefined!");

QString lineFor(const QString& expected, const QString& current)
{
    return QStringLiteral(
               "KeyboardManager::onEvent WARN: Expected state is:  \"%1\" , but current state is:  "
               "\"%2\" !?")
        .arg(expected, current);
}

/// Passes keys and waits to a finder.
class Follower
{
public:
    explicit Follower(const QString& state)
        : finder(model::KeyLists::read(KeyListJson::filesOf(rows), false), state)
    {}

    /// "Feed+" is a press, "Feed*" a repetition, "Feed-" a release, a number a wait in milliseconds.
    void move(const QString& words)
    {
        for (const QString& word : words.split(' ', Qt::SkipEmptyParts)) {
            bool isNumber = false;
            const int wait = word.toInt(&isNumber);
            now += milliseconds(wait);
            if (!isNumber) {
                const int value = QStringLiteral("-+*").indexOf(word.right(1));
                const auto code = static_cast<quint16>(ls::KeyId::meta.value(word.chopped(1)));
                finder.take(now, DaemonInputs::ofRecord(EV_KEY, code, value, 0));
            }
        }
    }
    /// The action of the refusal in `line`, "not refused" or "unknown".
    QString actionOf(const QString& line)
    {
        const auto refusal = finder.find(now, line);
        if (!refusal) {
            return QStringLiteral("not refused");
        }
        return refusal->action.isEmpty() ? QStringLiteral("unknown") : refusal->action;
    }

    RefusalFinder finder;
    milliseconds now{0};
};

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
    void severalActionsAreIdentifiedInTheirOrder();
    void simulatedKeysAreConsidered_data();
    void simulatedKeysAreConsidered();
    void keysTypedAtTheConsoleAreConsidered_data();
    void keysTypedAtTheConsoleAreConsidered();
    void changesOfStateAreConsidered();
    void theStateOfTheLogIsRight();
    void aLongPressAnnouncedInAnotherStateIsNotRefused();
};

void RefusalFinderTest::otherLinesAreNotRefusals_data()
{
    QTest::addColumn<QString>("line");
    QTest::newRow("empty") << QString();
    QTest::newRow("another") << "KeyboardManager::onEvent WARN: Expected state is: none";
    QTest::newRow("words before") << "x" + lineFor("PrintOff", "Idle");
    QTest::newRow("words after") << lineFor("PrintOff", "Idle") + "x";
    QTest::newRow("words after the receiver") << undefinedLine + "x";
}

void RefusalFinderTest::otherLinesAreNotRefusals()
{
    QFETCH(QString, line);
    QCOMPARE(Follower("Idle").actionOf(line), QStringLiteral("not refused"));
}

void RefusalFinderTest::theStatesAreTakenFromTheLog()
{
    const QString line = lineFor("PrintOff", "Update");
    const std::optional<entry::Refusal> refusal = Follower("Update").finder.find(milliseconds(0), line);
    QVERIFY(refusal);
    QCOMPARE(refusal->reason, line);
    QCOMPARE(refusal->expected.value(), QStringLiteral("PrintOff"));
    QCOMPARE(refusal->current, QStringLiteral("Update"));
    QCOMPARE(refusal->action, QString());
}

void RefusalFinderTest::theActionIsIdentifiedByItsKeys_data()
{
    QTest::addColumn<QString>("state");
    QTest::addColumn<QString>("keys");
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("action");
    const auto add = [](const char* name, const QString& state, const QString& keys, const QString& expected,
                        const QString& action) {
        QTest::newRow(name) << state << keys << lineFor(expected, state) << action;
    };
    add("a long press", "Update", "Feed+ 250 Feed* 1000", "PrintOff", "Eject");
    add("its other state", "Update", "Feed+ 250 Feed* 1000", "Idle", "Eject");
    add("a press that is too short", "Update", "Feed+ 250 Feed* 999", "PrintOff", "unknown");
    add("a press without repetition", "Update", "Feed+ 2000", "PrintOff", "unknown");
    add("pressed again", "Update", "Feed+ 250 Feed* Feed- Feed+ 1000", "PrintOff", "unknown");
    add("a combination", "Idle", "Help+ Help- Feed+ Feed-", "PrintOff", "Status");
    add("an incomplete combination", "Idle", "Help+ Help- Feed+", "PrintOff", "unknown");
    add("a combination that takes too long", "Idle", "Help+ Help- 1500 Feed+ Feed-", "PrintOff", "unknown");
    add("a shortcut", "Idle", "Feed+ Ok+", "PrintOff", "Load");
    add("a shortcut after a repetition", "Idle", "Feed+ Feed* Ok+", "PrintOff", "Load");
    add("of another state", "Idle", "Function+ Up+", "PrintOff", "unknown");
    add("of its state", "Idle", "Function+ Up+", "Print", "Volume");
    add("not the undefined receiver", "Idle", "Help+ Up+", "PrintOff", "unknown");
    QTest::newRow("an undefined receiver") << "Idle"
                                           << "Help+ Up+" << undefinedLine << "Void";
}

void RefusalFinderTest::theActionIsIdentifiedByItsKeys()
{
    QFETCH(QString, state);
    QFETCH(QString, keys);
    QFETCH(QString, line);
    Follower follower(state);
    follower.move(keys);
    QTEST(follower.actionOf(line), "action");
}

void RefusalFinderTest::severalActionsAreIdentifiedInTheirOrder()
{
    Follower follower("Idle");
    follower.move("Help+ Help- Feed+ Feed- Feed+ Ok+ Ok- Feed- Help+ Up+");
    QCOMPARE(follower.actionOf(lineFor("PrintOff", "Idle")), QStringLiteral("Status"));
    QCOMPARE(follower.actionOf(lineFor("PrintOff", "Idle")), QStringLiteral("Load"));
    QCOMPARE(follower.actionOf(undefinedLine), QStringLiteral("Void"));
    QCOMPARE(follower.actionOf(lineFor("PrintOff", "Idle")), QStringLiteral("unknown"));
}

void RefusalFinderTest::simulatedKeysAreConsidered_data()
{
    namespace Id = ls::KeyboardHandlerCmdId;
    QTest::addColumn<QVector<QVariantMap>>("commands");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<QString>("action");
    const auto list = [](const QString& id, const QStringList& keys) {
        return QVector<QVariantMap>{
            {{ls::commandIdKey, id}, {ls::senderIdKey, ls::ServiceId::ServiceTool}, {ls::keysListKey, keys}}};
    };
    const auto press = [](const QString& key) {
        return QVariantMap{{ls::commandIdKey, Id::SimulateKey},
                           {ls::senderIdKey, ls::ServiceId::ServiceTool},
                           {ls::actionIdKey, ls::KeyActionId::Pressed},
                           {ls::keyKey, key}};
    };
    QTest::newRow("combination") << list(Id::SimulateModifier, {"Help", "Feed"}) << "PrintOff"
                                 << "Status";
    QTest::newRow("shortcut") << list(Id::SimulateShortcut, {"Function", "Up"}) << "Print"
                              << "Volume";
    QTest::newRow("with an unknown key") << list(Id::SimulateShortcut, {"Function", "Up", "Bell"}) << "Print"
                                         << "unknown";
    QTest::newRow("keys") << QVector<QVariantMap>{press("Function"), press("Up")} << "Print"
                          << "Volume";
    QVariantMap strange = list(Id::SimulateShortcut, {"Function", "Up"}).first();
    strange.insert(ls::senderIdKey, "Stranger");
    QTest::newRow("from an unknown sender") << QVector<QVariantMap>{strange} << "Print"
                                            << "unknown";
}

void RefusalFinderTest::simulatedKeysAreConsidered()
{
    QFETCH(QVector<QVariantMap>, commands);
    QFETCH(QString, expected);
    Follower follower("Idle");
    for (const QVariantMap& command : commands) {
        follower.finder.take(follower.now, DaemonInputs::ofCommand(command));
    }
    QTEST(follower.actionOf(lineFor(expected, "Idle")), "action");
}

void RefusalFinderTest::keysTypedAtTheConsoleAreConsidered_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("action");
    QTest::newRow("a key") << "C 7 1 103"
                           << "Volume";
    QTest::newRow("another word and blanks") << "cmd  7 1 103 "
                                             << "Volume";
    QTest::newRow("another command") << "C 4 1 103"
                                     << "unknown";
    QTest::newRow("a name") << "C 7 1 Up"
                            << "unknown";
    QTest::newRow("a blank before it") << " C 7 1 103"
                                       << "unknown";
    QTest::newRow("an unknown key") << "C 7 1 9"
                                    << "unknown";
}

void RefusalFinderTest::keysTypedAtTheConsoleAreConsidered()
{
    QFETCH(QString, line);
    Follower follower("Idle");
    follower.move("Function+");
    follower.finder.take(follower.now, DaemonInputs::ofConsoleLine(line));
    QTEST(follower.actionOf(lineFor("Print", "Idle")), "action");
}

void RefusalFinderTest::changesOfStateAreConsidered()
{
    Follower follower("Startup");
    follower.move("Feed+ Ok+ Ok- Feed-");
    QCOMPARE(follower.actionOf(lineFor("PrintOff", "Startup")), QStringLiteral("unknown"));
    follower.finder.take(follower.now, DaemonInputs::ofState("Idle"));
    follower.move("Feed+ Ok+");
    QCOMPARE(follower.actionOf(lineFor("PrintOff", "Idle")), QStringLiteral("Load"));
}

void RefusalFinderTest::theStateOfTheLogIsRight()
{
    Follower follower("PrintOff"); // but the daemon is in Idle
    follower.move("Feed+ Ok+ Ok- Feed- 2000");
    QCOMPARE(follower.actionOf(lineFor("PrintOff", "Idle")), QStringLiteral("unknown"));
    follower.move("Feed+ Ok+");
    QCOMPARE(follower.actionOf(lineFor("PrintOff", "Idle")), QStringLiteral("Load"));
}

void RefusalFinderTest::aLongPressAnnouncedInAnotherStateIsNotRefused()
{
    // The daemon announces Eject in Idle and logs a refusal for PrintOff.
    Follower follower("Idle");
    follower.move("Feed+ 250 Feed* 1000");
    QCOMPARE(follower.actionOf(lineFor("PrintOff", "Idle")), QStringLiteral("not refused"));
    follower.finder.take(follower.now, DaemonInputs::ofState("Update"));
    follower.move("Feed- Feed+ 250 Feed* 1000");
    QCOMPARE(follower.actionOf(lineFor("PrintOff", "Update")), QStringLiteral("Eject"));
}

QTEST_GUILESS_MAIN(RefusalFinderTest)
#include "RefusalFinderTest.moc"
