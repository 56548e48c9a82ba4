// SPDX-License-Identifier: MIT
#include "tests/model/StepComparison.h"
#include "tests/model/ListMaps.h"
#include "tests/support/Seeds.h"
#include "tests/virtual/DeviceTest.h"
#include "tests/whole/random/RandomRows.h"

namespace {

constexpr int randomLists = 60;
constexpr int pairsOfWalk = 5000;
constexpr const char* allVariable = "MODEL_ALL";
constexpr const char* seedsVariable = "MODEL_SEEDS";

} // namespace

/// Compares steps of the model with the same steps of the daemon's classes. MODEL_ALL=1 compares all pairs of
/// a situation and an input instead of a random walk, and MODEL_SEEDS=FIRST:COUNT selects the random lists.
class StepComparisonTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void modelStepsAsTheDaemonDoes_data();
    void modelStepsAsTheDaemonDoes();
    void cleanupTestCase();

private:
    void addLists(const QString& name, const model::KeyLists& lists);

    QVector<model::KeyLists> m_lists;
    quint64 m_pairs = 0;
    quint64 m_situations = 0;
};

void StepComparisonTest::modelStepsAsTheDaemonDoes_data()
{
    QTest::addColumn<int>("index");
    addLists("installed lists", ListMaps::installed());
    addLists("installed lists of the Orvane", ListMaps::installed(true));
    addLists("no rows", {});
    const auto scripts = ListMaps::ofScripts(GOLDEN_SCRIPTS);
    for (auto it = scripts.begin(); it != scripts.end(); ++it) {
        addLists(it.key(), it.value());
    }
    const Seeds seeds = chosenSeeds(seedsVariable, {1, randomLists}).value_or(Seeds{0, 0});
    for (int i = 0; i < seeds.count; ++i) {
        Dice dice(seeds.first + static_cast<quint64>(i));
        const bool isOrvane = dice.oneIn(2);
        addLists(QStringLiteral("random lists %1").arg(seeds.first + static_cast<quint64>(i)),
                 ListMaps::ofRows(RandomRows::roll(dice), isOrvane));
    }
}

void StepComparisonTest::modelStepsAsTheDaemonDoes()
{
    QFETCH(int, index);
    const bool isWhole = qEnvironmentVariableIsSet(allVariable);
    const model::KeyLists& lists = m_lists.at(index);
    const auto result = isWhole ? StepComparison::all(lists) : StepComparison::walk(lists, pairsOfWalk, 1);
    QCOMPARE(result.difference, QString());
    QVERIFY(result.pairs > 0);
    m_pairs += result.pairs;
    m_situations += result.situations;
}

void StepComparisonTest::cleanupTestCase()
{
    qInfo("%llu pairs, of %llu situations", m_pairs, m_situations);
}

void StepComparisonTest::addLists(const QString& name, const model::KeyLists& lists)
{
    QTest::newRow(qPrintable(name)) << m_lists.size();
    m_lists.append(lists);
}

VIRTUAL_TIME_TEST_MAIN(StepComparisonTest)
#include "StepComparisonTest.moc"
