// SPDX-License-Identifier: MIT
#pragma once

#include "workbench/session/SessionEntry.h"

#include <QElapsedTimer>
#include <QPair>
#include <QSet>

#include <optional>

/// Finds refused actions in the daemon's log, and the rows that they are of.
///
/// The log does not name the action. It is found by what its row asks for: the state, and keys that were
/// moved since the panel was last left alone.
class RefusalFinder
{
public:
    explicit RefusalFinder(const QVector<KeyRow>& rows);

    /// The device reported a key: with 0 released, 1 pressed, 2 repeated.
    void noteKey(int keyboard, const QString& key, int value);
    /// A command or the console may have simulated these keys.
    void noteSimulated(const QStringList& keys);

    /// The refusal that a line of the log tells of. None when the action was announced all the same: a long
    /// press leaves a line for each of its states but the current one.
    std::optional<entry::Refusal> find(const QString& logLine) const;

private:
    void forgetBeforeRest();
    bool canBeMeant(const KeyRow& row) const;
    template <typename Condition>
    const KeyRow* onlyRow(Condition isCandidate) const;

    QVector<KeyRow> m_rows;
    QSet<QPair<int, QString>> m_down;
    QSet<QString> m_pressed;
    QSet<QString> m_released;
    QSet<QString> m_repeated;
    QElapsedTimer m_sinceRelease;
};
