// SPDX-License-Identifier: MIT
// Key lists: the bytes are the content of all three lists. The daemon starts with them, and their rows are
// tried.
#include "keys/KeyListFile.h"
#include "keys/LongKey.h"
#include "keys/ModifierKey.h"
#include "keys/ShortcutKey.h"
#include "service/BusValue.h"
#include "service/KeyboardHandler.h"
#include "tests/fakes/FakeStateHandler.h"
#include "tests/virtual/MapReader.h"
#include "tests/whole/fuzz/FuzzedDaemon.h"
#include "tests/whole/fuzz/JsonLeaks.h"
#include "tests/whole/fuzz/LocalBus.h"
#include "tests/whole/fuzz/Log.h"
#include "tests/whole/fuzz/Target.h"
#include "vocabulary/Vocabulary.h"

#include <ls/Identifiers.h>
#include <ls/JFile.h>
#include <ls/MessageKeys.h>

#include <algorithm>

using std::chrono::milliseconds;

namespace {

using Rows = QList<KeyEntry>;

constexpr int maxTriedRows = 12;
constexpr int pairSize = 2;

/// The actions of the rows with the same first and last key as `row`, in their order.
QStringList actionsOfSameEnds(const Rows& rows, const KeyEntry& row)
{
    QStringList actions;
    for (const KeyEntry& other : rows) {
        if (other.firstKey() == row.firstKey() && other.lastKey() == row.lastKey()) {
            actions.append(other.eAction());
        }
    }
    return actions;
}

/// "Unknown" means no key: a row that starts with it is never opened.
bool isOpenable(const KeyEntry& row)
{
    return row.firstKey() != ls::KeyId::Unknown;
}

/// Whether the keys of `row` complete one of `pairs`.
bool completesPair(const KeyEntry& row, const Rows& pairs)
{
    return std::any_of(pairs.cbegin(), pairs.cend(), [&row](const KeyEntry& pair) {
        return pair.firstKey() == row.firstKey() && row.keys().mid(1).contains(pair.lastKey());
    });
}

class KeyLists : public Target
{
public:
    bool accepts(Bytes bytes) override;
    void run(Bytes& bytes) override;

private:
    void readContent();
    Rows rowsOf(EnumDetail::RowKeyList section) const;
    void tryShortcuts();
    void tryCombinations();
    void tryLongPresses();
    void tryLongPress(const KeyEntry& row);
    void requireThatAnnouncementsTravel();
    void requireAnswer(const QString& command);

    FuzzedDaemon m_daemon;
    LocalBus m_bus;
    QVariantMap m_content; // of the file
};

/// The leak occurs once in the daemon, but would hide other leaks here.
bool KeyLists::accepts(Bytes bytes)
{
    return !JsonLeaks::occurIn(bytes.rest());
}

void KeyLists::run(Bytes& bytes)
{
    m_daemon.setKeyLists(bytes.rest());
    m_daemon.start();
    FakeStateHandler::takeRequests();
    m_daemon.setState(ls::StateId::Idle);
    readContent();
    tryShortcuts();
    tryCombinations();
    tryLongPresses();
    requireThatAnnouncementsTravel();
    requireAnswer(ls::KeyboardHandlerCmdId::GetModifierKeyList);
    requireAnswer(ls::KeyboardHandlerCmdId::GetShortcutKeyList);
    requireAnswer(ls::KeyboardHandlerCmdId::GetLongKeysTimeout);
    m_daemon.requireThatItWorks();
    m_daemon.stop();
}

void KeyLists::readContent()
{
    m_content.clear();
    ls::JFile().read(vocabulary::dataDirectory + QLatin1Char('/') + vocabulary::longKeyListFile, m_content);
}

/// The daemon's rows of `section` that have keys.
Rows KeyLists::rowsOf(EnumDetail::RowKeyList section) const
{
    MapReader reader(m_content);
    Rows rows = KeyListFile::load(reader, vocabulary::longKeyListFile, section, Q_FUNC_INFO).rows;
    rows.erase(std::remove_if(rows.begin(), rows.end(), [](const KeyEntry& row) { return !row.isValid(); }),
               rows.end());
    return rows;
}

void KeyLists::tryShortcuts()
{
    auto* shortcuts = m_daemon.handler().findChild<ShortcutKey*>();
    QStringList actions;
    const auto connection = QObject::connect(shortcuts, &ShortcutKey::doubleShortcut,
                                             [&](const ls::EnumKey& action) { actions.append(action); });
    const Rows rows = rowsOf(EnumDetail::RowKeyList::ShortcutKeys);
    for (const KeyEntry& row : rows.mid(0, maxTriedRows)) {
        actions.clear();
        shortcuts->reset();
        shortcuts->process(row.firstKey());
        shortcuts->process(row.lastKey());
        Log::require(!isOpenable(row) || actions == actionsOfSameEnds(rows, row).mid(0, 1),
                     "the first of several shortcuts for a pair is announced");
    }
    QObject::disconnect(connection);
}

void KeyLists::tryCombinations()
{
    auto* combinations = m_daemon.handler().findChild<ModifierKey*>();
    QStringList actions;
    const auto connection = QObject::connect(combinations, &ModifierKey::doubleModifier,
                                             [&](const ls::EnumKey& action) { actions.append(action); });
    const auto typed = [&](const QStringList& keys) {
        actions.clear();
        combinations->reset();
        std::for_each(keys.cbegin(), keys.cend(), [&](const QString& key) { combinations->process(key); });
        return actions;
    };
    const Rows rows = rowsOf(EnumDetail::RowKeyList::ModifierKeys);
    const auto longer = std::find_if(rows.cbegin(), rows.cend(),
                                     [](const KeyEntry& row) { return row.keyCount() > pairSize; });
    const Rows pairs = rows.mid(0, static_cast<int>(std::distance(rows.cbegin(), longer)));
    for (const KeyEntry& pair : pairs.mid(0, maxTriedRows)) {
        Log::require(!isOpenable(pair) ||
                         typed({pair.firstKey(), pair.lastKey()}) == actionsOfSameEnds(pairs, pair),
                     "combinations of one pair come each, unless a longer row hides them");
    }
    if (longer != rows.cend() && isOpenable(*longer) && !completesPair(*longer, pairs)) {
        Log::require(typed(longer->keys()).value(0) == longer->eAction(),
                     "the first longer row is announced when its keys are typed");
    }
    QObject::disconnect(connection);
}

void KeyLists::tryLongPresses()
{
    const Rows rows = rowsOf(EnumDetail::RowKeyList::LongKeys);
    QMap<QString, KeyEntry> lastRows;
    for (const KeyEntry& row : rows) {
        lastRows.insert(row.firstKey(), row);
    }
    for (const KeyEntry& row : lastRows.values().mid(0, maxTriedRows)) {
        tryLongPress(row);
    }
}

void KeyLists::tryLongPress(const KeyEntry& row)
{
    auto* longPresses = m_daemon.handler().findChild<LongKey*>();
    int count = 0;
    const auto connection = QObject::connect(longPresses, &LongKey::longPress, [&] { ++count; });
    const milliseconds time(qMax(0, row.timeout()));
    longPresses->stop();
    longPresses->start(row.firstKey());
    m_daemon.wait(time - milliseconds(time > milliseconds(0) ? 1 : 0));
    Log::require(count == 0 || time == milliseconds(0), "a long press is not announced before its time");
    m_daemon.wait(milliseconds(1));
    Log::require(count == row.validOnState().count(QLatin1Char('|')) + 1,
                 "a long press comes for each of its states");
    longPresses->stop();
    QObject::disconnect(connection);
}

void KeyLists::requireThatAnnouncementsTravel()
{
    const QVector<QVariantMap> announcements = m_daemon.takeAnnouncements();
    for (const QVariantMap& announcement : announcements.mid(0, maxTriedRows)) {
        Log::require(m_bus.carry({announcement}).has_value(), "an announcement can be sent");
    }
}

void KeyLists::requireAnswer(const QString& command)
{
    const QVariantMap response =
        m_daemon.process({{ls::commandIdKey, command}, {ls::senderIdKey, ls::ServiceId::KeyboardHandler}});
    Log::require(m_bus.carry({toBusMap(response)}).has_value(), "the answer can be sent");
}

} // namespace

std::unique_ptr<Target> Target::make()
{
    return std::make_unique<KeyLists>();
}
