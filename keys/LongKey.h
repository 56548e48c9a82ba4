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

    /// The time in milliseconds for each key of the list; the time of the Help key is given three times as
    /// long as it is. Empty when the list is.
    QVariantMap timeouts() const;

    /// Takes an autorepeat of `key`: starts the time of its row unless a time is running already.
    void start(const ls::EnumKey& key);
    /// Forgets the key; called on every press and release.
    void stop();

Q_SIGNALS:
    /// The key was held long enough; emitted once for each valid state of the row.
    void longPress(ls::EnumKey action, ls::EnumKey receiver, ls::EnumKey validOnState,
                   QVariantMap parameters);

private:
    void load(ls::IReader& reader);
    void onExpired();

    QTimer m_timer;
    KeyEntry m_current;
    QList<KeyEntry> m_entries;
};
