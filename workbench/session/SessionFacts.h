// SPDX-License-Identifier: MIT
#pragma once

#include "workbench/session/SessionEntry.h"

#include <QPair>
#include <QQueue>
#include <QSet>
#include <QVector>

/// The number of a keyboard and a key that is down.
using HeldKey = QPair<int, QString>;

/// The current state of the device, derived from the events of a session.
class SessionFacts
{
public:
    /// Processes the next event of the session.
    void note(const SessionEvent& event);

    /// Whether the daemon runs a keyboard test: from the answer to StartTestMode to the announcement that
    /// ends it.
    bool isTesting() const { return m_isTesting; }
    /// By keyboard, then by name.
    QVector<HeldKey> heldKeys() const;

private:
    void noteKey(const entry::Key& key);
    void noteAnswer(const entry::Answer& answer);

    QSet<HeldKey> m_held;
    /// For each unanswered command, whether it starts a keyboard test.
    QQueue<bool> m_unanswered;
    bool m_isTesting = false;
};
