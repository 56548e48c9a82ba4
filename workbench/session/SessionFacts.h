// SPDX-License-Identifier: MIT
#pragma once

#include "workbench/session/SessionEntry.h"

#include <QPair>
#include <QQueue>
#include <QSet>
#include <QVector>

/// The number of a keyboard, and a key that is down there.
using HeldKey = QPair<int, QString>;

/// What the events of a session say about the device now, however long ago they came.
class SessionFacts
{
public:
    /// Takes in `event`, the next one of the session.
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
    /// For each command without an answer yet, whether it starts a keyboard test.
    QQueue<bool> m_open;
    bool m_isTesting = false;
};
