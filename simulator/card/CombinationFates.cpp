// SPDX-License-Identifier: MIT
#include "simulator/card/RowDelivery.h"

#include <ls/Identifiers.h>

#include <QSet>

namespace {

constexpr int pairSize = 2;
/// A pair may come with the keys of another row; so many are shown with each such pair at most.
constexpr int mostSharedKeys = 100;

bool isIdle(const QString& state)
{
    return state == ls::StateId::Idle;
}

bool isLonger(const KeyEntry& row)
{
    return row.keyCount() > pairSize;
}

bool haveSameEnds(const KeyEntry& one, const KeyEntry& other)
{
    return one.firstKey() == other.firstKey() && one.lastKey() == other.lastKey();
}

QString number(int index)
{
    return QString::number(index + 1);
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
    QString whyUnmatched(int index) const;
    QString breaker() const;
    QString behindLonger(int index) const;
    QString unpressable(const QStringList& keys) const;
    QStringList keysFor(int index) const;

    const QList<KeyEntry>& m_rows;
    int m_firstLonger; // the number of rows when there is none
    int m_secondLonger;
    bool m_helpOpens = false;
    QString m_whyLonger; // why the first longer row never matches; empty when it can
};

CombinationList::CombinationList(const QList<KeyEntry>& rows)
    : m_rows(rows), m_firstLonger(nextLonger(0)), m_secondLonger(nextLonger(m_firstLonger + 1))
{
    for (const KeyEntry& row : rows) {
        m_helpOpens = m_helpOpens || row.firstKey() == ls::KeyId::Help;
    }
    if (m_firstLonger < rows.size()) {
        m_whyLonger = whyUnmatched(m_firstLonger);
    }
}

int CombinationList::nextLonger(int from) const
{
    int index = from;
    while (index < m_rows.size() && !isLonger(m_rows.at(index))) {
        ++index;
    }
    return index;
}

RowFate CombinationList::fateOf(int index) const
{
    const KeyEntry& row = m_rows.at(index);
    if (!row.isValid()) {
        return RowDelivery::never(RowDelivery::missingKeys({}));
    }
    const QString why = whyUnmatched(index);
    if (!why.isEmpty()) {
        return RowDelivery::never(why);
    }
    const QStringList keys = keysFor(index);
    RowFate fate = RowDelivery::of(row, keys, {row.validOnState()}, isIdle);
    if (fate.why.isEmpty() && keys.first() != row.firstKey()) {
        fate.notes.append(QStringLiteral("Without Help before it, Menu is announced at once."));
    }
    return fate;
}

/// Why no keys complete the row; empty when some do.
QString CombinationList::whyUnmatched(int index) const
{
    if (index > m_firstLonger) {
        return behindLonger(index);
    }
    const QString broken = index == m_firstLonger ? breaker() : QString();
    return broken.isEmpty() ? unpressable(keysFor(index)) : broken;
}

/// A pair that is complete on the way empties the sequence of the longer row behind it.
QString CombinationList::breaker() const
{
    const KeyEntry& longer = m_rows.at(m_firstLonger);
    const QStringList laterKeys = longer.keys().mid(1);
    const QSet<QString> later(laterKeys.cbegin(), laterKeys.cend());
    for (int i = 0; i < m_firstLonger; ++i) {
        const KeyEntry& row = m_rows.at(i);
        if (row.isValid() && row.firstKey() == longer.firstKey() && later.contains(row.lastKey())) {
            return QStringLiteral("Row %1 is complete with %2 and breaks the sequence.")
                .arg(number(i), row.lastKey());
        }
    }
    return {};
}

QString CombinationList::behindLonger(int index) const
{
    const KeyEntry& longer = m_rows.at(m_firstLonger);
    const QString longerNumber = number(m_firstLonger);
    if (isLonger(m_rows.at(index))) {
        return QStringLiteral("Only the first row of three or more keys can match, and that is row %1.")
            .arg(longerNumber);
    }
    if (index > m_secondLonger || !haveSameEnds(m_rows.at(index), longer)) {
        return QStringLiteral("Row %1 has three or more keys and hides the rows behind it.")
            .arg(index > m_secondLonger ? number(m_secondLonger) : longerNumber);
    }
    // A pair with the ends of the longer row is complete together with that.
    if (!m_whyLonger.isEmpty()) {
        return QStringLiteral("It could come only with row %1, which never matches: %2")
            .arg(longerNumber, m_whyLonger);
    }
    return longer.keyCount() <= mostSharedKeys
               ? QString()
               : QStringLiteral("It comes with row %1, which has too many keys to show them again.")
                     .arg(longerNumber);
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

QStringList CombinationList::keysFor(int index) const
{
    const KeyEntry& row = m_rows.at(qMin(index, m_firstLonger));
    QStringList keys = isLonger(row) ? row.keys() : QStringList{row.firstKey(), row.lastKey()};
    // A Help that opens no row itself makes Menu wait, so that Menu can open one.
    if (keys.first() == ls::KeyId::Menu && !m_helpOpens) {
        keys.prepend(ls::KeyId::Help);
    }
    return keys;
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
