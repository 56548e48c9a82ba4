// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/device/BusConnection.h"

#include <QDBusError>
#include <QDBusMessage>
#include <QObject>
#include <QTimer>

/// Checks twice a second that the daemon's main thread still accepts calls.
///
/// The check is an Introspect call to the daemon's object, which is handled on the main thread and has no
/// side effects; a command would change the sender of the next announcement. Calls to other paths are handled
/// on the daemon's bus thread.
class DaemonWatch : public QObject
{
    Q_OBJECT

public:
    /// Starts checking immediately, on a separate connection to the bus at `address`.
    explicit DaemonWatch(const QString& address, QObject* parent = nullptr);

    /// False if a check has been unanswered for two seconds, until the next answer.
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
