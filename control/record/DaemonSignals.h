// SPDX-License-Identifier: MIT
#pragma once

#include "control/Bus.h"

#include <QDBusMessage>
#include <QObject>

namespace control {

/// What the daemon and the state handler broadcast. Sends the daemon nothing; asks the state handler for the
/// state.
class DaemonSignals : public QObject
{
    Q_OBJECT

public:
    explicit DaemonSignals(const Bus& bus, QObject* parent = nullptr);

    /// Subscribes and asks for the state, whose answer comes as `stateSeen`. Signals need a running event
    /// loop.
    BusFault begin();

Q_SIGNALS:
    void announced(const QVariantMap& notification);
    /// A state of `ls::StateId`.
    void stateSeen(const QString& state);
    /// The daemon has joined the bus, or left it.
    void daemonChanged(bool isThere);
    void busLost();

private Q_SLOTS:
    void onAnnouncement(const QDBusMessage& message);
    void onStateMessage(const QDBusMessage& message);
    void onDisconnected() { Q_EMIT busLost(); }

private:
    void askForState();
    void report(const QString& state);

    Bus m_bus;
    bool m_isStateKnown = false;
};

} // namespace control
