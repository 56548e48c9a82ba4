// SPDX-License-Identifier: MIT
#include "checker/Gesture.h"

#include "checker/Times.h"
#include "keys/KeyRules.h"

#include <algorithm>

using std::chrono::milliseconds;

namespace checker {

using model::Key;
using model::List;
using model::RowId;
using model::Alphabet::isIdentified;
using model::Alphabet::keyOf;

namespace {

constexpr milliseconds movement{100};
/// A list may have a row of thousands of keys.
constexpr int maxPlayedKeys = 50;

/// How long the key of a long press is down when the action is announced.
milliseconds holdTime(const KeyEntry& row)
{
    return Autorepeat::delay + milliseconds(qMax(0, row.timeout()));
}

/// The keys that the recogniser of the list looks at.
QVector<Key> keysOf(const KeyEntry& row, List list)
{
    QStringList names = row.keys();
    if (list == List::LongPresses) {
        names = QStringList(row.firstKey());
    } else if (list == List::Shortcuts) {
        names = QStringList{row.firstKey(), row.lastKey()};
    }
    QVector<Key> keys;
    for (const QString& name : qAsConst(names)) {
        keys.append(keyOf(name).value_or(Key::None));
    }
    return keys;
}

void hold(model::Playback& playback, Key key, milliseconds time)
{
    playback.press(key);
    playback.wait(time);
    playback.release(key);
    playback.wait(movement);
}

void together(model::Playback& playback, Key held, Key key)
{
    playback.press(held);
    playback.wait(movement);
    hold(playback, key, movement);
    playback.release(held);
}

} // namespace

bool Gesture::isPossible(const KeyEntry& row)
{
    const QStringList& names = row.keys();
    return !names.isEmpty() && names.size() <= maxPlayedKeys &&
           std::all_of(names.begin(), names.end(), [](const QString& name) {
               const auto key = keyOf(name);
               return key && *key != Key::None && isIdentified(*key);
           });
}

model::Playback Gesture::play(const model::KeyModel& keyModel, RowId id, model::State state)
{
    const KeyEntry& row = keyModel.lists().row(id);
    const QVector<Key> keys = keysOf(row, id.list);
    model::Playback playback(keyModel, state);
    if (id.list == List::LongPresses) {
        hold(playback, keys.first(), holdTime(row) + movement);
    } else if (id.list == List::Shortcuts) {
        together(playback, keys.first(), keys.last());
    } else {
        for (const Key key : keys) {
            hold(playback, key, movement);
        }
    }
    playback.wait(KeyRules::singleKeyInterval);
    return playback;
}

QString Gesture::toText(const model::KeyLists& lists, RowId id)
{
    const KeyEntry& row = lists.row(id);
    switch (id.list) {
    case List::LongPresses:
        return QStringLiteral("holding %1 for %2").arg(row.firstKey(), Times::duration(holdTime(row)));
    case List::Combinations:
        return QStringLiteral("tapping ") + row.keys().join(QStringLiteral(", then "));
    case List::Shortcuts:
        break;
    }
    return QStringLiteral("holding %1 and pressing %2").arg(row.firstKey(), row.lastKey());
}

} // namespace checker
