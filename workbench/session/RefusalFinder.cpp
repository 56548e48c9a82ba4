// SPDX-License-Identifier: MIT
#include "workbench/session/RefusalFinder.h"

#include "keys/KeyRules.h"
#include "simulator/script/KeyValue.h"
#include "vocabulary/Vocabulary.h"

#include <QRegularExpression>

#include <algorithm>

namespace {

/// Longer than the daemon remembers released keys.
constexpr qint64 idleMs = KeyRules::singleKeyInterval.count() + 500;

const QString undefinedReceiverLine =
    QStringLiteral("KeyboardManager::onEvent WARN: Invalid event, receiver service is undefined!");
const QString undefinedReceiverReason =
    QStringLiteral("The receiver of the action is \"Undefined\", so no service receives it.");

/// The states of the refusal that `line` reports, if any.
std::optional<entry::Refusal> stateRefusal(const QString& line)
{
    static const QRegularExpression pattern(QStringLiteral(
        R"re(^KeyboardManager::onEvent WARN: Expected state is:  "(.*)" , but current state is:  "(.*)" !\?$)re"));
    const QRegularExpressionMatch match = pattern.match(line);
    if (!match.hasMatch()) {
        return std::nullopt;
    }
    return entry::Refusal{line, match.captured(1), match.captured(2), {}};
}

bool isFor(const KeyRow& row, const QString& state)
{
    return row.kind == KeyRow::Kind::Long ? KeyRules::longPressStates(row.validOnState).contains(state)
                                          : row.validOnState == state;
}

} // namespace

RefusalFinder::RefusalFinder(const QVector<KeyRow>& rows) : m_rows(rows) {}

void RefusalFinder::noteKey(int keyboard, const QString& key, int value)
{
    forgetOldKeys();
    if (value == KeyValue::pressed) {
        m_down.insert({keyboard, key});
        m_pressed.insert(key);
        m_repeated.remove(key);
    } else if (value == KeyValue::released) {
        m_down.remove({keyboard, key});
        m_released.insert(key);
        m_sinceRelease.start();
    } else {
        m_repeated.insert(key);
    }
}

void RefusalFinder::noteSimulated(const QStringList& keys)
{
    forgetOldKeys();
    for (QSet<QString>* changed : {&m_pressed, &m_released, &m_repeated}) {
        changed->unite({keys.begin(), keys.end()});
    }
}

std::optional<entry::Refusal> RefusalFinder::find(const QString& logLine) const
{
    if (logLine == undefinedReceiverLine) {
        const KeyRow* match =
            uniqueRow([](const KeyRow& row) { return row.receiver == vocabulary::undefined; });
        return entry::Refusal{undefinedReceiverReason, {}, {}, match ? match->action : QString()};
    }
    std::optional<entry::Refusal> refusal = stateRefusal(logLine);
    if (!refusal) {
        return std::nullopt;
    }
    const KeyRow* match = uniqueRow([&](const KeyRow& row) {
        return isFor(row, *refusal->expected) && row.receiver != vocabulary::undefined;
    });
    // The daemon tries a long press in each of its states, and one of them is current.
    if (match && isFor(*match, refusal->current)) {
        return std::nullopt;
    }
    refusal->action = match ? match->action : QString();
    return refusal;
}

void RefusalFinder::forgetOldKeys()
{
    if (m_down.isEmpty() && m_sinceRelease.isValid() && m_sinceRelease.hasExpired(idleMs)) {
        m_pressed.clear();
        m_released.clear();
        m_repeated.clear();
        m_sinceRelease.invalidate();
    }
}

bool RefusalFinder::matchesKeys(const KeyRow& row) const
{
    if (row.keys.isEmpty()) {
        return false;
    }
    switch (row.kind) {
    case KeyRow::Kind::Long:
        return m_repeated.contains(row.keys.first());
    case KeyRow::Kind::Modifier:
        return m_released.contains(row.keys.first()) && m_released.contains(row.keys.last());
    case KeyRow::Kind::Shortcut:
        return m_pressed.contains(row.keys.first()) && m_pressed.contains(row.keys.last());
    }
    return false;
}

template <typename Condition>
const KeyRow* RefusalFinder::uniqueRow(Condition isCandidate) const
{
    const auto isMatch = [&](const KeyRow& row) { return isCandidate(row) && matchesKeys(row); };
    const auto row = std::find_if(m_rows.begin(), m_rows.end(), isMatch);
    const bool isUnique = row != m_rows.end() && std::none_of(row + 1, m_rows.end(), isMatch);
    return isUnique ? &*row : nullptr;
}
