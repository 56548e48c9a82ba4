// SPDX-License-Identifier: MIT
#include "simulator/script/KeyScriptText.h"
#include "tests/support/Seeds.h"
#include "tests/virtual/DeviceTest.h"
#include "tests/whole/random/Dice.h"
#include "tests/whole/random/Player.h"
#include "tests/whole/random/RandomScript.h"
#include "tests/whole/random/Trial.h"

#include <QRegularExpression>

#include <cstdio>

namespace {

constexpr quint64 firstSeed = 1;
constexpr int seedCount = 1000;
/// Limits the time of a row on slow machines.
constexpr int seedsInRow = 1000;
constexpr const char* seedsVariable = "KEY_SCRIPT_SEEDS";

} // namespace

/// Plays random key scripts on the virtual clock and checks the invariants. KEY_SCRIPT_SEEDS=FIRST:COUNT sets
/// other seeds.
class RandomScriptsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void seedDeterminesTheScript();
    void seedDeterminesTheChoicesWithAnyLibrary();
    void scriptsDifferFromSeedToSeed();
    void scriptsReachEverything_data();
    void scriptsReachEverything();
    void invariantsHoldInEveryScript_data();
    void invariantsHoldInEveryScript();
};

void RandomScriptsTest::seedDeterminesTheScript()
{
    QCOMPARE(writeKeyScript(RandomScript::roll(firstSeed)), writeKeyScript(RandomScript::roll(firstSeed)));
}

void RandomScriptsTest::seedDeterminesTheChoicesWithAnyLibrary()
{
    Dice dice(firstSeed);
    QVector<int> choices;
    for (int i = 0; i < 5; ++i) {
        choices.append(dice.below(1000));
    }
    QCOMPARE(choices, (QVector<int>{528, 462, 930, 246, 384}));
}

void RandomScriptsTest::scriptsDifferFromSeedToSeed()
{
    QSet<QString> texts;
    for (quint64 seed = 0; seed < 100; ++seed) {
        texts.insert(writeKeyScript(RandomScript::roll(seed)));
    }
    QCOMPARE(texts.size(), 100);
}

void RandomScriptsTest::scriptsReachEverything_data()
{
    QTest::addColumn<QString>("pattern");
    QTest::newRow("lone key") << "announce SingleKey .*";
    QTest::newRow("long press") << "announce Action\\d+ \\w+ \\w+ \\w+";
    QTest::newRow("combination or shortcut") << "announce Action\\d+ \\w+ \\w+ \\w+ \\w+";
    QTest::newRow("factory reset") << "announce FactoryReset .*";
    QTest::newRow("sender of a command") << "announce \\w+ \\w+ ServiceTool .*";
    QTest::newRow("no sender") << "announce \\w+ \\w+ - .*";
    QTest::newRow("refusal in Startup") << "speak EmbosserError 69";
    QTest::newRow("key without name") << "speak EmbosserCore 0";
    QTest::newRow("Function of the Orvane model") << "speak EmbosserCore 30";
    QTest::newRow("dropped because of the state") << "log KeyboardManager::onEvent WARN: Expected.*";
    QTest::newRow("dropped because of the receiver") << "log KeyboardManager::onEvent WARN: Invalid.*";
    QTest::newRow("keys in the keyboard test") << "answer errorId=Undefined resultId=[1-9]";
    QTest::newRow("failed command") << "answer errorId=InvalidValue .*";
    QTest::newRow("console response") << "log QMap\\(.*";
}

void RandomScriptsTest::scriptsReachEverything()
{
    QFETCH(QString, pattern);
    const QRegularExpression expression(QRegularExpression::anchoredPattern(pattern));
    const auto matches = [&expression](const PlayEvent& event) {
        return expression.match(event.text).hasMatch();
    };
    bool isReached = false;
    for (quint64 seed = firstSeed; seed < firstSeed + seedCount && !isReached; ++seed) {
        const Play play = Player::play(RandomScript::roll(seed));
        isReached = std::any_of(play.events.cbegin(), play.events.cend(), matches);
    }
    QVERIFY(isReached);
}

void RandomScriptsTest::invariantsHoldInEveryScript_data()
{
    QTest::addColumn<quint64>("first");
    QTest::addColumn<int>("count");
    const Seeds seeds = chosenSeeds(seedsVariable, {firstSeed, seedCount}).value_or(Seeds{0, 0});
    if (seeds.count == 0) {
        QTest::newRow("no seeds") << seeds.first << seeds.count;
    }
    for (int done = 0; done < seeds.count; done += seedsInRow) {
        const quint64 first = seeds.first + static_cast<quint64>(done);
        QTest::addRow("seeds from %llu on", first) << first << qMin(seedsInRow, seeds.count - done);
    }
}

void RandomScriptsTest::invariantsHoldInEveryScript()
{
    QFETCH(quint64, first);
    QFETCH(int, count);
    QVERIFY2(count > 0, "write it as KEY_SCRIPT_SEEDS=FIRST:COUNT");
    for (quint64 seed = first; seed < first + static_cast<quint64>(count); ++seed) {
        const KeyScript script = RandomScript::roll(seed);
        const Trial::Result result = Trial::run(script, seed);
        if (result.violated != 0) {
            // Printed, because the report is too long for a failure message.
            std::fprintf(stderr, "%s\n", qPrintable(Trial::report(script, seed, result)));
        }
        QVERIFY2(result.violated == 0, qPrintable(QStringLiteral("seed %1: %2").arg(seed).arg(result.text)));
    }
}

VIRTUAL_TIME_TEST_MAIN(RandomScriptsTest)
#include "RandomScriptsTest.moc"
