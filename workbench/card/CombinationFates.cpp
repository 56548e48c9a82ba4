// SPDX-License-Identifier: MIT
#include "workbench/card/CardVocabulary.h"
#include "workbench/card/RowDelivery.h"

#include <ls/Identifiers.h>

#include <QHash>
#include <QSet>

#include <algorithm>

namespace {

/// A pair may come with the keys of another row; so many are shown with each such pair at most.
constexpr int maxSharedKeys = 100;

bool isIdle(const QString& state)
{
    return state == ls::StateId::Idle;
}

QString number(int index)
{
    return QString::number(index + 1);
}

/// A way to complete the first row of three or more keys.
struct Way
{
    /// The first key of the row, or of a pair before it that closes with that key: the key goes on to the
    /// row.
    QString opener;
    QStringList keys;
    QStringList notes;
    /// Why it fails; empty when it does not.
    QString why;

    /// Right after Help, Menu waits instead of being announced at once.
    void prependHelp()
    {
        keys.prepend(ls::KeyId::Help);
        notes.append(QStringLiteral("Without Help before it, Menu is announced at once."));
    }
};

/// A way that fails.
Way blocked(const QString& why)
{
    return {{}, {}, {}, why};
}

/// Judges the combinations of a list. At each release the recogniser walks along the rows and stops at a row
/// of three or more keys that does not match, so that the first two such rows decide about the rows behind
/// them.
class CombinationList
{
public:
    explicit CombinationList(const QList<KeyEntry>& rows);

    RowFate fateOf(int index) const;

private:
    int nextLonger(int from) const;
    void findWays();
    Way wayThrough(int pair) const;
    QString breaker(const QString& opener) const;
    const Way* wayOf(const QString& opener) const;
    const Way* workingWay() const;
    Way wayTo(int index) const;
    Way behindLonger(int index) const;
    Way openable(Way way) const;
    QString unpressable(const QStringList& keys) const;

    const QList<KeyEntry>& m_rows;
    int m_firstLonger; // the number of rows when there is none
    int m_secondLonger;
    bool m_helpOpens = false;
    QHash<QString, int> m_breakers; // the first pair of an opener that breaks the first longer row
    QVector<Way> m_ways;            // to complete that row
};

CombinationList::CombinationList(const QList<KeyEntry>& rows)
    : m_rows(rows), m_firstLonger(nextLonger(0)), m_secondLonger(nextLonger(m_firstLonger + 1))
{
    for (const KeyEntry& row : rows) {
        m_helpOpens = m_helpOpens || row.firstKey() == ls::KeyId::Help;
    }
    if (m_firstLonger < rows.size()) {
        findWays();
    }
}

int CombinationList::nextLonger(int from) const
{
    int index = from;
    while (index < m_rows.size() && !m_rows.at(index).isSequence()) {
        ++index;
    }
    return index;
}

/// A pair that is complete on the way empties the sequence of the longer row behind it, which then takes the
/// key. So the closing key can break the sequence or begin it.
void CombinationList::findWays()
{
    const KeyEntry& longer = m_rows.at(m_firstLonger);
    const QStringList laterKeys = longer.keys().mid(1);
    const QSet<QString> later(laterKeys.cbegin(), laterKeys.cend());
    for (int i = m_firstLonger - 1; i >= 0; --i) {
        if (m_rows.at(i).isValid() && later.contains(m_rows.at(i).lastKey())) {
            m_breakers.insert(m_rows.at(i).firstKey(), i);
        }
    }
    m_ways.append(openable({longer.firstKey(), longer.keys(), {}, breaker(longer.firstKey())}));
    for (int i = 0; i < m_firstLonger; ++i) {
        const KeyEntry& pair = m_rows.at(i);
        if (pair.isValid() && pair.lastKey() == longer.firstKey() &&
            CardVocabulary::isPanelKey(pair.firstKey()) && !wayOf(pair.firstKey())) {
            m_ways.append(wayThrough(i));
        }
    }
}

/// The way through `pair`, which closes with the first key of the longer row.
Way CombinationList::wayThrough(int pair) const
{
    const KeyEntry& row = m_rows.at(pair);
    Way way{row.firstKey(),
            m_rows.at(m_firstLonger).keys(),
            {QStringLiteral("Row %1 is complete with %2 and begins the sequence.")
                 .arg(number(pair), row.lastKey())},
            breaker(row.firstKey())};
    // A key between those of the pair does not matter to it.
    if (way.keys.first() == ls::KeyId::Menu && way.opener != ls::KeyId::Help) {
        way.prependHelp();
    }
    way.keys.prepend(way.opener);
    return openable(way);
}

/// Empty when no pair breaks the sequence of the longer row.
QString CombinationList::breaker(const QString& opener) const
{
    const int pair = m_breakers.value(opener, -1);
    return pair == -1 ? QString()
                      : QStringLiteral("Row %1 is complete with %2 and breaks the sequence.")
                            .arg(number(pair), m_rows.at(pair).lastKey());
}

/// Null when the opener begins none.
const Way* CombinationList::wayOf(const QString& opener) const
{
    const auto way = std::find_if(m_ways.cbegin(), m_ways.cend(),
                                  [&opener](const Way& other) { return other.opener == opener; });
    return way == m_ways.cend() ? nullptr : &*way;
}

/// Null when the first longer row never matches.
const Way* CombinationList::workingWay() const
{
    const auto way =
        std::find_if(m_ways.cbegin(), m_ways.cend(), [](const Way& other) { return other.why.isEmpty(); });
    return way == m_ways.cend() ? nullptr : &*way;
}

RowFate CombinationList::fateOf(int index) const
{
    const KeyEntry& row = m_rows.at(index);
    if (!row.isValid()) {
        return RowDelivery::never(RowDelivery::missingKeys({}));
    }
    const Way way = wayTo(index);
    if (!way.why.isEmpty()) {
        return RowDelivery::never(way.why);
    }
    RowFate fate = RowDelivery::of(row, way.keys, {row.validOnState()}, isIdle);
    if (fate.why.isEmpty()) {
        fate.notes += way.notes;
    }
    return fate;
}

Way CombinationList::wayTo(int index) const
{
    if (index > m_firstLonger) {
        return behindLonger(index);
    }
    if (index == m_firstLonger) {
        const Way* working = workingWay();
        return working ? *working : m_ways.first();
    }
    const KeyEntry& row = m_rows.at(index);
    return openable({row.firstKey(), {row.firstKey(), row.lastKey()}, {}, {}});
}

Way CombinationList::behindLonger(int index) const
{
    const KeyEntry& row = m_rows.at(index);
    const KeyEntry& longer = m_rows.at(m_firstLonger);
    const QString longerNumber = number(m_firstLonger);
    if (row.isSequence()) {
        return blocked(
            QStringLiteral("Only the first row of three or more keys can match, and that is row %1.")
                .arg(longerNumber));
    }
    const Way* way = row.lastKey() == longer.lastKey() ? wayOf(row.firstKey()) : nullptr;
    if (index > m_secondLonger || !way) {
        return blocked(QStringLiteral("Row %1 has three or more keys and hides the rows behind it.")
                           .arg(index > m_secondLonger ? number(m_secondLonger) : longerNumber));
    }
    // The pair is complete together with the longer row, if its first key is open then.
    if (!workingWay()) {
        return blocked(QStringLiteral("It could come only with row %1, which never matches: %2")
                           .arg(longerNumber, m_ways.first().why));
    }
    if (!way->why.isEmpty()) {
        return blocked(QStringLiteral("It could come only with row %1, which does not match after %2: %3")
                           .arg(longerNumber, way->opener, way->why));
    }
    return longer.keyCount() <= maxSharedKeys
               ? *way
               : blocked(QStringLiteral("It comes with row %1, which has too many keys to show them again.")
                             .arg(longerNumber));
}

/// A Help that opens no row itself makes Menu wait, so that Menu can open one.
Way CombinationList::openable(Way way) const
{
    if (way.opener == ls::KeyId::Menu && !m_helpOpens) {
        way.prependHelp();
    }
    way.why = way.why.isEmpty() ? unpressable(way.keys) : way.why;
    return way;
}

/// Menu is announced at once in Idle, and with that all keys are forgotten, unless it is released after Help.
QString CombinationList::unpressable(const QStringList& keys) const
{
    const QString missing = RowDelivery::missingKeys(keys);
    if (!missing.isEmpty()) {
        return missing;
    }
    for (int i = 0; i < keys.size() - 1; ++i) {
        if (keys.at(i) == ls::KeyId::Menu && keys.value(i - 1) != ls::KeyId::Help) {
            return QStringLiteral("Menu is announced at its release, and all keys before it are forgotten.");
        }
    }
    return {};
}

} // namespace

QVector<RowFate> RowFates::ofCombinations(const QList<KeyEntry>& rows)
{
    const CombinationList list(rows);
    QVector<RowFate> fates;
    for (int i = 0; i < rows.size(); ++i) {
        fates.append(list.fateOf(i));
    }
    return fates;
}
