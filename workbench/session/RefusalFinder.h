// SPDX-License-Identifier: MIT
#pragma once

#include "workbench/session/SessionEntry.h"

#include <QElapsedTimer>
#include <QPair>
#include <QSet>

#include <optional>

/// Finds refused actions in the daemon's log and their rows.
///
/// The log does not name the action. A row matches by its state and by keys that have changed since the panel
/// was last idle.
class RefusalFinder
{
public:
    explicit RefusalFinder(const QVector<KeyRow>& rows);

    /// Records a key of the device; `value` is 0 released, 1 pressed, 2 repeated.
    void noteKey(int keyboard, const QString& key, int value);
    /// Records keys that a command or the console may have simulated.
    void noteSimulated(const QStringList& keys);

    /// The refusal that a log line reports, if any. A long press logs a line for each of its states except
    /// the current one; if it was announced, these lines are not refusals.
    std::optional<entry::Refusal> find(const QString& logLine) const;

private:
    void forgetOldKeys();
    bool matchesKeys(const KeyRow& row) const;
    template <typename Condition>
    const KeyRow* uniqueRow(Condition isCandidate) const;

    QVector<KeyRow> m_rows;
    QSet<QPair<int, QString>> m_down;
    QSet<QString> m_pressed;
    QSet<QString> m_released;
    QSet<QString> m_repeated;
    QElapsedTimer m_sinceRelease;
};
