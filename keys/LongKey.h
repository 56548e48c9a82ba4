// SPDX-License-Identifier: MIT
#pragma once

#include "keys/KeyEntry.h"

#include <QList>
#include <QObject>
#include <QTimer>
#include <QVariantMap>

namespace ls {
class IReader;
}

/// Recognises a key that is held down for the time of its row in the long-press list. Driven by the router.
class LongKey : public QObject
{
    Q_OBJECT

public:
    /// Loads the long-press list through `reader`, which is not kept.
    LongKey(ls::IReader& reader, QObject* parent);

    /// The time of each key of the list in milliseconds; for the Help key, three times its time. Empty if the
    /// list is empty.
    QVariantMap timeouts() const;

    /// Handles an autorepeat of `key`: starts the timer with the time of its row, unless the timer is
    /// running.
    void start(const ls::EnumKey& key);
    /// Stops the timer and clears the key. Called on every press and release.
    void stop();

Q_SIGNALS:
    /// A key was held long enough. Emitted once for each valid state of the row.
    void longPress(ls::EnumKey action, ls::EnumKey receiver, ls::EnumKey validOnState,
                   QVariantMap parameters);

private:
    void load(ls::IReader& reader);
    void onExpired();

    QTimer m_timer;
    KeyEntry m_current;
    QList<KeyEntry> m_entries;
};
