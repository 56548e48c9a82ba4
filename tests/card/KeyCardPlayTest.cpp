// SPDX-License-Identifier: MIT
#include "card/CardStatements.h"
#include "tests/card/CardKeyLists.h"
#include "tests/virtual/DeviceTest.h"
#include "vocabulary/Vocabulary.h"

#include <algorithm>

namespace {

constexpr int maxHoldMs = 60000; // a minute of virtual time

} // namespace

/// Compares the card with the daemon: all actions of the card are announced, and no others.
class KeyCardPlayTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void entriesWorkAsDescribed_data();
    void entriesWorkAsDescribed();
    void statementsLeadToTheAction_data() { lists(); }
    void statementsLeadToTheAction();
    void installedListsAnnounceNothingElse_data() { models(); }
    void installedListsAnnounceNothingElse();
    void deadRowsAreNeverAnnounced_data() { lists(); }
    void deadRowsAreNeverAnnounced();
    void namesAreSpokenAsDescribed_data() { models(); }
    void namesAreSpokenAsDescribed();

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

void KeyCardPlayTest::entriesWorkAsDescribed_data()
{
    lists();
}

void KeyCardPlayTest::entriesWorkAsDescribed()
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

void KeyCardPlayTest::statementsLeadToTheAction()
{
    QFETCH(KeyLists, lists);
    const KeyCard card = KeyCard::from(lists, "Pellit");
    for (const KeyCardState& state : card.states) {
        for (const KeyCardEntry& entry : state.entries) {
            if (entry.holdMs > maxHoldMs) {
                continue;
            }
            CardDevice device(lists, card.model, state.state);
            QCOMPARE(device.execute(CardStatements::of(entry)), QStringList());
            for (const QString& receiver : entry.receivers) {
                const QString outcome = entry.action + ' ' + receiver;
                const auto isOutcome = [&](const QString& text) { return text.section(' ', 1) == outcome; };
                const QStringList heard = device.heard();
                QVERIFY2(std::any_of(heard.begin(), heard.end(), isOutcome),
                         qPrintable(CardStatements::of(entry).join('\n') + '\n' + heard.join('\n')));
            }
        }
    }
}

void KeyCardPlayTest::installedListsAnnounceNothingElse()
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
    QCOMPARE(card.deadRows.size(), 0);
    // Single keys (all but Unknown) and the factory reset in five states, eleven states of long presses, six
    // combinations, five shortcuts.
    const int singleKeys = ls::KeyId::meta.size() - 1;
    QCOMPARE(played, 5 * (singleKeys + 1) + 11 + 6 + 5);
}

void KeyCardPlayTest::deadRowsAreNeverAnnounced()
{
    QFETCH(KeyLists, lists);
    const KeyCard card = KeyCard::from(lists, "Pellit");
    const QStringList states = ls::StateId::meta.keys() + QStringList(vocabulary::undefined);
    for (const KeyCardDeadRow& row : card.deadRows) {
        for (const QString& state : states) {
            CardDevice device(lists, card.model, state);
            device.tryRow(row);
            const QString heard = device.heard().join('\n') + '\n';
            QVERIFY2(!heard.contains(' ' + row.action + ' '), qPrintable(heard + row.why));
        }
    }
}

void KeyCardPlayTest::namesAreSpokenAsDescribed()
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
