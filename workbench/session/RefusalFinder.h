// SPDX-License-Identifier: MIT
#pragma once

#include "model/Playback.h"
#include "workbench/session/SessionEntry.h"

#include <chrono>
#include <optional>

/// Finds refused actions in the daemon's log, which does not name them. The model of the keys follows the
/// inputs of the daemon and names the rows that are refused.
class RefusalFinder
{
public:
    using milliseconds = std::chrono::milliseconds;

    /// The daemon starts in `state`, at the time 0.
    RefusalFinder(const model::KeyLists& lists, const QString& state);
    Q_DISABLE_COPY(RefusalFinder)

    /// Passes what the daemon receives at the time `at`, which must not decrease.
    void take(milliseconds at, const QVector<model::Input>& inputs);

    /// The refusal that a log line reports at `at`, if any. A long press logs a line for each of its states
    /// except the current one; if it was announced, these lines are not refusals.
    std::optional<entry::Refusal> find(milliseconds at, const QString& logLine);

private:
    /// A row whose refusals are still to be logged.
    struct Refused
    {
        model::RowId row;
        quint32 lines = 0;
        bool isAnnounced = false;
    };

    void note(const QVector<model::Effect>& effects);
    std::optional<Refused> next(const entry::Refusal& refusal);

    model::KeyModel m_model;
    model::Playback m_playback;
    QVector<Refused> m_refused; // in the order of their log lines
};
