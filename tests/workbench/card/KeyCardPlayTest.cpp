// SPDX-License-Identifier: MIT
#include "tests/virtual/DeviceTest.h"
#include "tests/workbench/card/CardKeyLists.h"
#include "workbench/card/CardVocabulary.h"

/// The card and the daemon agree: what a card announces comes, and what it leaves out does not.
class KeyCardPlayTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void entriesComeAsTheCardSays_data();
    void entriesComeAsTheCardSays();
    void nothingElseComesOfTheInstalledLists_data() { models(); }
    void nothingElseComesOfTheInstalledLists();
    void rowsThatNeverWorkStaySilent_data() { lists(); }
    void rowsThatNeverWorkStaySilent();
    void namesAreSpokenAsTheCardSays_data() { models(); }
    void namesAreSpokenAsTheCardSays();

private:
    void lists();
    void models();
};

void KeyCardPlayTest::lists()
{
    QTest::addColumn<KeyLists>("lists");
    const QMap<QString, KeyLists> all = CardKeyLists::all();
    for (auto it = all.cbegin(); it != all.cend(); ++it) {
        QTest::newRow(qPrintable(it.key())) << it.value();
    }
}

void KeyCardPlayTest::models()
{
    QTest::addColumn<QString>("model");
    QTest::newRow("Pellit") << "Pellit";
    QTest::newRow("Orvane") << "Orvane";
}

void KeyCardPlayTest::entriesComeAsTheCardSays_data()
{
    lists();
}

void KeyCardPlayTest::entriesComeAsTheCardSays()
{
    QFETCH(KeyLists, lists);
    const KeyCard card = KeyCard::from(lists, "Pellit");
    for (const KeyCardState& state : card.states) {
        for (const KeyCardEntry& entry : state.entries) {
            CardDevice device(lists, card.model, state.state);
            device.play(entry);
            QCOMPARE(device.heardAbout(entry).join('\n'), CardDevice::expected(entry, state).join('\n'));
        }
    }
}

void KeyCardPlayTest::nothingElseComesOfTheInstalledLists()
{
    QFETCH(QString, model);
    const KeyLists lists = CardKeyLists::installed();
    const KeyCard card = KeyCard::from(lists, model);
    int played = 0;
    for (const KeyCardState& state : card.states) {
        for (const KeyCardEntry& entry : state.entries) {
            CardDevice device(lists, model, state.state);
            device.play(entry);
            QCOMPARE(device.heard(), CardDevice::expected(entry, state));
            ++played;
        }
    }
    QCOMPARE(card.never.size(), 0);
    // Single keys and the factory reset in five states, ten states of long presses, six combinations, five
    // shortcuts.
    QCOMPARE(played, 5 * (15 + 1) + 11 + 6 + 5);
}

void KeyCardPlayTest::rowsThatNeverWorkStaySilent()
{
    QFETCH(KeyLists, lists);
    const KeyCard card = KeyCard::from(lists, "Pellit");
    for (const KeyCardNever& row : card.never) {
        for (const QString& state : CardVocabulary::states()) {
            CardDevice device(lists, card.model, state);
            device.tryOut(row);
            const QString heard = device.heard().join('\n') + '\n';
            QVERIFY2(!heard.contains(' ' + row.action + ' '), qPrintable(heard + row.why));
        }
    }
}

void KeyCardPlayTest::namesAreSpokenAsTheCardSays()
{
    QFETCH(QString, model);
    const KeyCard card = KeyCard::from({}, model);
    for (const KeyCardState& state : card.states) {
        for (const KeyCardEntry& entry : state.entries) {
            CardDevice device({}, model, state.state);
            device.panel().take();
            device.play(entry);
            const QString done = device.panel().takeActions().join('\n');
            const bool isZero =
                entry.consequences.contains(KeyCardConsequence::SpokenAsZeroAnnouncedAfterWait);
            QCOMPARE(done.contains("speak EmbosserCore"),
                     isZero || entry.consequences.contains(KeyCardConsequence::SpokenAnnouncedAfterWait));
            QCOMPARE(done.contains(
                         QRegularExpression("speak EmbosserCore 0$", QRegularExpression::MultilineOption)),
                     isZero);
        }
    }
}

VIRTUAL_TIME_TEST_MAIN(KeyCardPlayTest)
#include "KeyCardPlayTest.moc"
