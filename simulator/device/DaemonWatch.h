// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/device/BusConnection.h"

#include <QDBusError>
#include <QDBusMessage>
#include <QObject>
#include <QTimer>

/// Asks the daemon twice a second whether its main thread still takes calls.
///
/// The question is Introspect at the daemon's own object, which the daemon answers on its main thread. It
/// changes nothing there; a command would change the sender of the next announcement. At any other path the
/// bus thread of the daemon would answer, however busy the main thread is.
class DaemonWatch : public QObject
{
    Q_OBJECT

public:
    /// Begins to ask at once, on a separate connection to the bus at `address`.
    explicit DaemonWatch(const QString& address, QObject* parent = nullptr);

    /// False from two seconds after a question that got no answer, until an answer comes.
    bool isAnswering() const { return m_isAnswering; }

Q_SIGNALS:
    void changed(bool isAnswering);

private Q_SLOTS:
    void onAnswer();
    void onError(const QDBusError& error);

private:
    void tick();
    void ask();
    void setAnswering(bool isAnswering);

    BusConnection m_bus;
    QTimer m_timer;
    bool m_isAsked = false;
    bool m_isAnswering = true;
    int m_unansweredTicks = 0;
};
