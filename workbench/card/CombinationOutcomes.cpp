// SPDX-License-Identifier: MIT
#include "workbench/card/CardVocabulary.h"
#include "workbench/card/RowDelivery.h"

#include <ls/Identifiers.h>

#include <QHash>
#include <QSet>

#include <algorithm>

namespace {

/// A pair may need the keys of a longer row; limits the keys that are listed with such a pair.
constexpr int maxSharedKeys = 100;

bool isIdle(const QString& state)
{
    return state == ls::StateId::Idle;
}

QString number(int index)
{
    return QString::number(index + 1);
}

/// A sequence of keys that completes a row.
struct Path
{
    /// The first key of the row, or of an earlier pair that closes with that key.
    QString opener;
    QStringList keys;
    QStringList notes;
    /// Why the path fails; empty if it works.
    QString why;

    /// Directly after Help, Menu is not announced at once.
    void prependHelp()
    {
        keys.prepend(ls::KeyId::Help);
        notes.append(QStringLiteral("Without Help before it, Menu is announced at once."));
    }
};

Path blocked(const QString& why)
{
    return {{}, {}, {}, why};
}

/// Evaluates the combinations of a list. At each release, the recogniser iterates over the rows and stops at
/// a row of three or more keys that does not match, so the first two such rows determine which later rows can
/// match.
class CombinationList
{
public:
    explicit CombinationList(const QList<KeyEntry>& rows);

    RowOutcome outcomeOf(int index) const;

private:
    int nextLonger(int from) const;
    void findPaths();
    Path pathThrough(int pair) const;
    QString breaker(const QString& opener) const;
    const Path* pathFrom(const QString& opener) const;
    const Path* workingPath() const;
    Path pathTo(int index) const;
    Path pathAfterLonger(int index) const;
    Path withOpening(Path path) const;
    QString whyNotPressable(const QStringList& keys) const;

    const QList<KeyEntry>& m_rows;
    int m_firstLonger; // the number of rows if all are pairs
    int m_secondLonger;
    bool m_helpOpens = false;
    QHash<QString, int> m_breakers; // the first pair of an opener that breaks the first longer row
    QVector<Path> m_paths;          // the paths that complete that row
};

CombinationList::CombinationList(const QList<KeyEntry>& rows)
    : m_rows(rows), m_firstLonger(nextLonger(0)), m_secondLonger(nextLonger(m_firstLonger + 1))
{
    for (const KeyEntry& row : rows) {
        m_helpOpens = m_helpOpens || row.firstKey() == ls::KeyId::Help;
    }
    if (m_firstLonger < rows.size()) {
        findPaths();
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

/// A pair that is completed on the path clears the sequence of the longer row after it, which then adds the
/// key. So the closing key can break the sequence or start it.
void CombinationList::findPaths()
{
    const KeyEntry& longer = m_rows.at(m_firstLonger);
    const QStringList laterKeys = longer.keys().mid(1);
    const QSet<QString> later(laterKeys.cbegin(), laterKeys.cend());
    for (int i = m_firstLonger - 1; i >= 0; --i) {
        if (m_rows.at(i).isValid() && later.contains(m_rows.at(i).lastKey())) {
            m_breakers.insert(m_rows.at(i).firstKey(), i);
        }
    }
    m_paths.append(withOpening({longer.firstKey(), longer.keys(), {}, breaker(longer.firstKey())}));
    for (int i = 0; i < m_firstLonger; ++i) {
        const KeyEntry& pair = m_rows.at(i);
        if (pair.isValid() && pair.lastKey() == longer.firstKey() &&
            CardVocabulary::isPanelKey(pair.firstKey()) && !pathFrom(pair.firstKey())) {
            m_paths.append(pathThrough(i));
        }
    }
}

/// The path through `pair`, which closes with the first key of the longer row.
Path CombinationList::pathThrough(int pair) const
{
    const KeyEntry& row = m_rows.at(pair);
    Path path{row.firstKey(),
              m_rows.at(m_firstLonger).keys(),
              {QStringLiteral("Row %1 is complete with %2 and begins the sequence.")
                   .arg(number(pair), row.lastKey())},
              breaker(row.firstKey())};
    // Keys between those of the pair do not affect it.
    if (path.keys.first() == ls::KeyId::Menu && path.opener != ls::KeyId::Help) {
        path.prependHelp();
    }
    path.keys.prepend(path.opener);
    return withOpening(path);
}

/// Why the sequence of the longer row breaks; empty if it does not.
QString CombinationList::breaker(const QString& opener) const
{
    const int pair = m_breakers.value(opener, -1);
    return pair == -1 ? QString()
                      : QStringLiteral("Row %1 is complete with %2 and breaks the sequence.")
                            .arg(number(pair), m_rows.at(pair).lastKey());
}

/// Null if no path starts with `opener`.
const Path* CombinationList::pathFrom(const QString& opener) const
{
    const auto path = std::find_if(m_paths.cbegin(), m_paths.cend(),
                                   [&opener](const Path& other) { return other.opener == opener; });
    return path == m_paths.cend() ? nullptr : &*path;
}

/// Null if the first longer row never matches.
const Path* CombinationList::workingPath() const
{
    const auto path =
        std::find_if(m_paths.cbegin(), m_paths.cend(), [](const Path& other) { return other.why.isEmpty(); });
    return path == m_paths.cend() ? nullptr : &*path;
}

RowOutcome CombinationList::outcomeOf(int index) const
{
    const KeyEntry& row = m_rows.at(index);
    if (!row.isValid()) {
        return RowDelivery::never(RowDelivery::missingKeys({}));
    }
    const Path path = pathTo(index);
    if (!path.why.isEmpty()) {
        return RowDelivery::never(path.why);
    }
    RowOutcome outcome = RowDelivery::of(row, path.keys, {row.validOnState()}, isIdle);
    if (outcome.why.isEmpty()) {
        outcome.notes += path.notes;
    }
    return outcome;
}

Path CombinationList::pathTo(int index) const
{
    if (index > m_firstLonger) {
        return pathAfterLonger(index);
    }
    if (index == m_firstLonger) {
        const Path* working = workingPath();
        return working ? *working : m_paths.first();
    }
    const KeyEntry& row = m_rows.at(index);
    return withOpening({row.firstKey(), {row.firstKey(), row.lastKey()}, {}, {}});
}

Path CombinationList::pathAfterLonger(int index) const
{
    const KeyEntry& row = m_rows.at(index);
    const KeyEntry& longer = m_rows.at(m_firstLonger);
    const QString longerNumber = number(m_firstLonger);
    if (row.isSequence()) {
        return blocked(
            QStringLiteral("Only the first row of three or more keys can match, and that is row %1.")
                .arg(longerNumber));
    }
    const Path* path = row.lastKey() == longer.lastKey() ? pathFrom(row.firstKey()) : nullptr;
    if (index > m_secondLonger || !path) {
        return blocked(QStringLiteral("Row %1 has three or more keys and hides the rows after it.")
                           .arg(index > m_secondLonger ? number(m_secondLonger) : longerNumber));
    }
    // The pair matches together with the longer row if its first key is open.
    if (!workingPath()) {
        return blocked(QStringLiteral("The pair could match only with row %1, which never matches: %2")
                           .arg(longerNumber, m_paths.first().why));
    }
    if (!path->why.isEmpty()) {
        return blocked(
            QStringLiteral("The pair could match only with row %1, which does not match after %2: %3")
                .arg(longerNumber, path->opener, path->why));
    }
    return longer.keyCount() <= maxSharedKeys
               ? *path
               : blocked(
                     QStringLiteral("The pair matches with row %1, which has too many keys to list again.")
                         .arg(longerNumber));
}

/// Menu can open a row after Help, unless Help itself opens one.
Path CombinationList::withOpening(Path path) const
{
    if (path.opener == ls::KeyId::Menu && !m_helpOpens) {
        path.prependHelp();
    }
    path.why = path.why.isEmpty() ? whyNotPressable(path.keys) : path.why;
    return path;
}

/// In Idle, Menu is announced at once and all keys are forgotten, unless it directly follows Help.
QString CombinationList::whyNotPressable(const QStringList& keys) const
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

QVector<RowOutcome> RowOutcomes::ofCombinations(const QList<KeyEntry>& rows)
{
    const CombinationList list(rows);
    QVector<RowOutcome> outcomes;
    for (int i = 0; i < rows.size(); ++i) {
        outcomes.append(list.outcomeOf(i));
    }
    return outcomes;
}
