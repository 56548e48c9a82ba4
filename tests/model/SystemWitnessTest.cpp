// SPDX-License-Identifier: MIT
#include "model/RowProofs.h"
#include "model/Witness.h"
#include "simulator/script/KeyScriptText.h"
#include "tests/model/ListMaps.h"
#include "tests/whole/system/SystemTest.h"

using namespace model;

namespace {

Environment personWithTwoFingers(State state)
{
    Environment environment = Environment::person();
    environment.startStates = {state};
    return environment;
}

} // namespace

/// Plays witnesses of installed rows on the real daemon, which must do what the model expects.
class SystemWitnessTest : public SystemTest
{
    Q_OBJECT

private Q_SLOTS:
    void witnessPlaysAsExpected_data();
    void witnessPlaysAsExpected();
};

void SystemWitnessTest::witnessPlaysAsExpected_data()
{
    QTest::addColumn<int>("list");
    QTest::addColumn<int>("index");
    const KeyLists lists = ListMaps::installed();
    for (const List list : {List::LongPresses, List::Combinations, List::Shortcuts}) {
        for (const int index : {0, lists.rows(list).size() - 1}) {
            QTest::newRow(qPrintable(lists.row({list, index}).eAction())) << static_cast<int>(list) << index;
        }
    }
}

void SystemWitnessTest::witnessPlaysAsExpected()
{
    QFETCH(int, list);
    QFETCH(int, index);
    const KeyLists lists = ListMaps::installed();
    const KeyModel keyModel(lists);
    const RowId row{static_cast<List>(list), index};
    const State state = *Alphabet::stateOf(lists.statesOf(row).first());
    const RowVerdict verdict = RowProofs(lists, personWithTwoFingers(state)).of(row, state);
    QVERIFY(verdict.kind == RowVerdict::Kind::Announced);
    const Playback playback = Witness::play(keyModel, verdict.proof.environment, verdict.witness);
    const ParsedScript parsed = parseKeyScript(Witness::toScript(playback, lists));
    QVERIFY2(parsed.faults.isEmpty(), qPrintable(parsed.faults.value(0).text));
    options.state = parsed.script.initialState;
    QVERIFY(launch());
    QCOMPARE(play(parsed.script).join('\n'), QString());
    const QString announcement = QStringLiteral("announce %1 ").arg(lists.row(row).eAction());
    QVERIFY(actions().join('\n').contains(announcement));
}

QTEST_GUILESS_MAIN(SystemWitnessTest)
#include "SystemWitnessTest.moc"
