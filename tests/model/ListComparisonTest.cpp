// SPDX-License-Identifier: MIT
#include "model/ListComparison.h"
#include "tests/model/ListMaps.h"
#include "tests/support/Seeds.h"
#include "tests/whole/random/RandomRows.h"

#include <QtTest>

using namespace model;

namespace {

constexpr int seedCount = 20;
constexpr const char* seedsVariable = "MODEL_SEEDS";

Environment person()
{
    Environment environment;
    environment.kind = Environment::Kind::Person;
    environment.devices = 1;
    return environment;
}

bool isNoticed(const Output& output)
{
    return output.kind != Output::Kind::Log;
}

KeyRow row(KeyRow::Kind kind, const QString& action, const QStringList& keys, const QString& state, int seconds = 0)
{
    return {kind, action, QStringLiteral("UserMenu"), state, seconds, keys};
}

QStringList textsOf(const QVector<Output>& outputs)
{
    QStringList texts;
    for (const Output& output : outputs) {
        texts.append(output.toText({}));
    }
    return texts;
}

} // namespace

/// The differences of two lists.
class ListComparisonTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void listsDoNotDifferFromThemselves();
    void differences_data();
    void differences();
    void differencesAreMirrored();
};

void ListComparisonTest::listsDoNotDifferFromThemselves()
{
    const KeyLists lists = ListMaps::installed();
    ListComparison comparison(lists, lists, isNoticed);
    QVERIFY(comparison.find(person()).isEmpty());
    QVERIFY(comparison.proof().isComplete);
}

void ListComparisonTest::differences_data()
{
    QTest::addColumn<QVector<KeyRow>>("oldRows");
    QTest::addColumn<QVector<KeyRow>>("newRows");
    QTest::addColumn<QStringList>("oldOutputs");
    QTest::addColumn<QStringList>("newOutputs");

    using Kind = KeyRow::Kind;
    const QVector<KeyRow> help{row(Kind::Long, "A", {"Help"}, "Print", 1)};
    QTest::newRow("another action") << help << QVector<KeyRow>{row(Kind::Long, "B", {"Help"}, "Print", 1)}
                                    << QStringList("announce A UserMenu - Help")
                                    << QStringList("announce B UserMenu - Help");
    QTest::newRow("another time") << help << QVector<KeyRow>{row(Kind::Long, "A", {"Help"}, "Print", 2)}
                                  << QStringList("announce A UserMenu - Help") << QStringList();
    QTest::newRow("a row more") << help
                                << help + QVector<KeyRow>{row(Kind::Shortcut, "B", {"Up", "Down"}, "Print")}
                                << QStringList() << QStringList("announce B UserMenu - Up Down");
}

void ListComparisonTest::differences()
{
    QFETCH(QVector<KeyRow>, oldRows);
    QFETCH(QVector<KeyRow>, newRows);
    QFETCH(QStringList, oldOutputs);
    QFETCH(QStringList, newOutputs);

    ListComparison comparison(ListMaps::ofRows(oldRows), ListMaps::ofRows(newRows), isNoticed);
    const QVector<Difference> differences = comparison.find(person());
    QVERIFY(comparison.proof().isComplete);
    QVERIFY(!differences.isEmpty());
    bool isFound = false;
    for (const Difference& difference : differences) {
        isFound = isFound || (textsOf(difference.oldOutputs) == oldOutputs && textsOf(difference.newOutputs) == newOutputs);
    }
    QVERIFY(isFound);
}

/// What one direction finds, the other finds as well.
void ListComparisonTest::differencesAreMirrored()
{
    const Seeds seeds = chosenSeeds(seedsVariable, {1, seedCount}).value_or(Seeds{0, 0});
    QVERIFY2(seeds.count > 0, "write it as MODEL_SEEDS=FIRST:COUNT");
    int found = 0;
    for (quint64 seed = seeds.first; seed < seeds.first + static_cast<quint64>(seeds.count); ++seed) {
        Dice dice(seed);
        const KeyLists a = ListMaps::ofRows(RandomRows::roll(dice));
        const KeyLists b = ListMaps::ofRows(RandomRows::roll(dice));
        const auto kindsOf = [](const QVector<Difference>& differences, bool isMirrored) {
            QSet<QStringList> kinds;
            for (const Difference& difference : differences) {
                const QStringList one = textsOf(isMirrored ? difference.newOutputs : difference.oldOutputs);
                const QStringList other = textsOf(isMirrored ? difference.oldOutputs : difference.newOutputs);
                kinds.insert(QStringList(Alphabet::nameOf(difference.state)) + one + QStringList(QString()) + other);
            }
            return kinds;
        };
        const auto there = kindsOf(ListComparison(a, b, isNoticed).find(person()), false);
        const auto back = kindsOf(ListComparison(b, a, isNoticed).find(person()), true);
        QVERIFY2(there == back, qPrintable(QStringLiteral("seed %1").arg(seed)));
        found += there.size();
    }
    QVERIFY(found > 0);
}

QTEST_GUILESS_MAIN(ListComparisonTest)
#include "ListComparisonTest.moc"
