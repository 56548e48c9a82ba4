// SPDX-License-Identifier: MIT
#include "model/Effect.h"
#include "tests/model/ListMaps.h"
#include "tests/model/StepComparison.h"
#include "tests/virtual/DeviceTest.h"
#include "tests/whole/random/RandomRows.h"

#include <QFile>

#include <algorithm>

/// The number of the active fault in the model of this program; 0 for none.
int plantedFault = 0;

namespace {

constexpr int maxRandomLists = 200;
constexpr int pairsOfWalk = 2000;
const QString comment = QStringLiteral("#");

QStringList faults()
{
    QFile file(QStringLiteral(FAULTS));
    QStringList lines;
    if (file.open(QIODevice::ReadOnly)) {
        const QStringList all = QString::fromUtf8(file.readAll()).split('\n', Qt::SkipEmptyParts);
        for (const QString& line : all) {
            if (!line.startsWith(comment)) {
                lines.append(line.simplified());
            }
        }
    }
    return lines;
}

/// The first difference between the model and the daemon for the lists of key scripts and for random lists;
/// empty if there is none.
QString firstDifference()
{
    static const auto scripts = ListMaps::ofScripts(GOLDEN_SCRIPTS);
    for (const model::KeyLists& lists : scripts) {
        const QString difference = StepComparison::walk(lists, pairsOfWalk, 1).difference;
        if (!difference.isEmpty()) {
            return difference;
        }
    }
    for (int seed = 1; seed <= maxRandomLists; ++seed) {
        Dice dice(static_cast<quint64>(seed));
        const model::KeyLists lists = ListMaps::ofRows(RandomRows::roll(dice), seed % 2 == 0);
        const QString difference =
            StepComparison::walk(lists, pairsOfWalk, static_cast<quint64>(seed)).difference;
        if (!difference.isEmpty()) {
            return difference;
        }
    }
    return {};
}

} // namespace

/// Checks that the comparison with the daemon detects a fault in each rule of the model.
class PlantedFaultsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { plantedFault = 0; }
    void everyRuleHasAFault();
    void modelWithoutFaultHasNoDifference();
    void faultIsDetected_data();
    void faultIsDetected();
};

void PlantedFaultsTest::everyRuleHasAFault()
{
    const QStringList lines = faults();
    for (int i = 0; i < model::ruleCount; ++i) {
        const QString rule = model::Rules::nameOf(static_cast<model::Rule>(i));
        const bool hasFault = std::any_of(lines.begin(), lines.end(), [&rule](const QString& line) {
            return line.startsWith(rule + QLatin1Char(' '));
        });
        QVERIFY2(hasFault, qPrintable(rule));
    }
}

void PlantedFaultsTest::modelWithoutFaultHasNoDifference()
{
    for (quint64 seed = 1; seed <= 20; ++seed) {
        Dice dice(seed);
        const model::KeyLists lists = ListMaps::ofRows(RandomRows::roll(dice));
        QCOMPARE(StepComparison::walk(lists, pairsOfWalk, seed).difference, QString());
    }
}

void PlantedFaultsTest::faultIsDetected_data()
{
    QTest::addColumn<int>("number");
    const QStringList lines = faults();
    for (int i = 0; i < lines.size(); ++i) {
        QTest::newRow(qPrintable(lines.at(i))) << i + 1;
    }
}

void PlantedFaultsTest::faultIsDetected()
{
    QFETCH(int, number);
    plantedFault = number;
    QVERIFY(!firstDifference().isEmpty());
}

VIRTUAL_TIME_TEST_MAIN(PlantedFaultsTest)
#include "PlantedFaultsTest.moc"
