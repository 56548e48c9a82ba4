// SPDX-License-Identifier: MIT
#include "card/CardSentences.h"
#include "simulator/script/KeyListJson.h"
#include "tests/card/CardDevice.h"
#include "tests/virtual/DeviceTest.h"
#include "tests/whole/random/RandomRows.h"

namespace {

constexpr int seeds = 200;
constexpr int chains = 100;
constexpr int inputs = 120;

QVector<KeyRow> numbered(QVector<KeyRow> rows)
{
    for (int i = 0; i < rows.size(); ++i) {
        rows[i].action = QStringLiteral("Action%1").arg(i + 1);
    }
    return rows;
}

/// Pairs and a longer row of only a few keys, so that closing keys often belong to the longer row.
QVector<KeyRow> chainedRows(Dice& dice)
{
    const QStringList keys{ls::KeyId::Help, ls::KeyId::Menu, ls::KeyId::Ok, ls::KeyId::Up, ls::KeyId::Feed};
    QVector<KeyRow> rows;
    for (const int length : {2, dice.pick({2, 3}), dice.pick({2, 3, 4}), 3, 2}) {
        KeyRow row{KeyRow::Kind::Modifier, {}, ls::ServiceId::UserMenu, ls::StateId::Idle, 0, {}};
        while (row.keys.size() < length) {
            row.keys.append(dice.pick(keys));
        }
        rows.append(row);
    }
    return numbered(rows);
}

/// Random lists in which each action identifies one row.
QVector<KeyRow> rolledRows(Dice& dice)
{
    return dice.oneIn(3) ? chainedRows(dice) : numbered(RandomRows::roll(dice));
}

KeyLists listsOf(const QVector<KeyRow>& rows)
{
    KeyScript script;
    script.rows = rows;
    return KeyListJson::filesOf(script);
}

template <typename Items>
QSet<QString> actionsOf(const Items& items)
{
    QSet<QString> actions;
    for (const auto& item : items) {
        actions.insert(item.action);
    }
    return actions;
}

/// The announcements that a card allows, without their times.
QSet<QString> outcomes(const KeyCardState& card)
{
    QSet<QString> texts;
    for (const KeyCardEntry& entry : card.entries) {
        for (const QString& receiver : entry.receivers) {
            texts.insert(entry.action + ' ' + receiver);
        }
    }
    return texts;
}

/// A random key of `rows` if the panel has it, otherwise any key.
QString someKey(const QVector<KeyRow>& rows, Dice& dice)
{
    const QStringList keys = dice.pick(rows).keys;
    const QString key = keys.isEmpty() ? QString() : dice.pick(keys);
    return CardDevice::isPanelKey(key) ? key : dice.pick(CardDevice::panelKeys());
}

} // namespace

/// Checks cards of random key lists: all their entries work, and nothing else is announced.
class KeyCardRandomTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void eachRowWorksOrHasAReason();
    void entriesOfRandomListsWork();
    void deadRowsOfChainsAreNeverAnnounced();
    void randomKeysAnnounceOnlyEntriesOfTheCard();

private:
    static void tapRow(const QVector<KeyRow>& rows, Dice& dice, VirtualDevice& panel);
    static void pressAnything(const QVector<KeyRow>& rows, Dice& dice, VirtualDevice& panel);
};

void KeyCardRandomTest::eachRowWorksOrHasAReason()
{
    for (int seed = 0; seed < seeds; ++seed) {
        Dice dice(static_cast<quint64>(seed));
        const QVector<KeyRow> rows = rolledRows(dice);
        const KeyCard card = KeyCard::from(listsOf(rows), "Pellit");
        QSet<QString> working;
        for (const KeyCardState& state : card.states) {
            working += actionsOf(state.entries);
        }
        const QSet<QString> explained = actionsOf(card.deadRows);
        for (const KeyRow& row : rows) {
            QVERIFY2(working.contains(row.action) != explained.contains(row.action), qPrintable(row.action));
        }
    }
}

void KeyCardRandomTest::entriesOfRandomListsWork()
{
    int played = 0;
    for (int seed = 0; seed < seeds; ++seed) {
        Dice dice(static_cast<quint64>(seed));
        const KeyLists lists = listsOf(rolledRows(dice));
        const KeyCard card = KeyCard::from(lists, "Pellit");
        for (const KeyCardState& state : card.states) {
            for (const KeyCardEntry& entry : state.entries) {
                if (entry.kind == KeyCardKind::Single || entry.kind == KeyCardKind::Hold) {
                    continue;
                }
                CardDevice device(lists, card.model, state.state);
                device.play(entry);
                QVERIFY2(device.heardAbout(entry) == CardDevice::expected(entry, state),
                         qPrintable(QStringLiteral("seed %1, %2: %3")
                                        .arg(seed)
                                        .arg(state.state, CardSentences::how(entry))));
                ++played;
            }
        }
    }
    QVERIFY(played > 2 * seeds);
}

void KeyCardRandomTest::deadRowsOfChainsAreNeverAnnounced()
{
    int tried = 0;
    for (int seed = 0; seed < chains; ++seed) {
        Dice dice(static_cast<quint64>(seed));
        const KeyLists lists = listsOf(chainedRows(dice));
        for (const KeyCardDeadRow& row : KeyCard::from(lists, "Pellit").deadRows) {
            CardDevice device(lists, "Pellit", ls::StateId::Idle);
            device.tryRow(row);
            const QString heard = device.heard().join('\n') + '\n';
            QVERIFY2(
                !heard.contains(' ' + row.action + ' '),
                qPrintable(QStringLiteral("seed %1: ").arg(seed) + CardSentences::describe(row) + row.why));
            ++tried;
        }
    }
    QVERIFY(tried > chains);
}

/// Taps the keys of a row, sometimes after Help, which delays Menu, or after a key that may open another row.
void KeyCardRandomTest::tapRow(const QVector<KeyRow>& rows, Dice& dice, VirtualDevice& panel)
{
    QStringList keys = dice.pick(rows).keys;
    if (dice.oneIn(3)) {
        keys.prepend(ls::KeyId::Help);
    }
    if (dice.oneIn(3)) {
        keys.prepend(someKey(rows, dice));
    }
    if (keys.size() == 1) {
        keys += keys;
    }
    for (const QString& key : keys) {
        if (CardDevice::isPanelKey(key)) {
            panel.hold(key, 20ms);
        }
    }
}

void KeyCardRandomTest::pressAnything(const QVector<KeyRow>& rows, Dice& dice, VirtualDevice& panel)
{
    const QString key = someKey(rows, dice);
    const int device = dice.below(2);
    switch (dice.below(5)) {
    case 0:
        tapRow(rows, dice, panel);
        break;
    case 1:
        panel.press(device, key);
        break;
    case 2:
        panel.release(device, key);
        break;
    case 3:
        panel.hold(key, dice.pick({20ms, 300ms, 1300ms, 2300ms, 3300ms}));
        break;
    default:
        panel.wait(dice.pick({20ms, 249ms, 250ms, 1250ms, 1499ms, 1500ms, 2250ms, 5000ms}));
    }
}

void KeyCardRandomTest::randomKeysAnnounceOnlyEntriesOfTheCard()
{
    int heard = 0;
    for (int seed = 0; seed < seeds; ++seed) {
        Dice dice(static_cast<quint64>(seed));
        const QVector<KeyRow> rows = rolledRows(dice);
        const KeyCard card = KeyCard::from(listsOf(rows), "Orvane");
        const KeyCardState& state = dice.oneIn(2) ? card.states.at(1) : dice.pick(card.states);
        CardDevice device(listsOf(rows), card.model, state.state);
        for (int i = 0; i < inputs; ++i) {
            pressAnything(rows, dice, device.panel());
        }
        const QSet<QString> allowed = outcomes(state);
        for (const QString& text : device.heard()) {
            QVERIFY2(allowed.contains(text.section(' ', 1)),
                     qPrintable(QStringLiteral("seed %1, %2: %3").arg(seed).arg(state.state, text)));
            heard += text.contains("Action") ? 1 : 0;
        }
    }
    QVERIFY(heard > seeds); // not only single keys were announced
}

VIRTUAL_TIME_TEST_MAIN(KeyCardRandomTest)
#include "KeyCardRandomTest.moc"
