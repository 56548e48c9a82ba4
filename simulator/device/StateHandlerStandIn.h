// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/device/BusConnection.h"

#include <QDBusContext>
#include <QObject>
#include <QVariantMap>

#include <chrono>
#include <memory>

/// The state-handler service: answers requests for the state and announces its changes.
///
/// A separate bus connection allows it to leave the bus while a request is pending.
class StateHandlerStandIn : public QObject, protected QDBusContext
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", KEYBOARD_HANDLER_BUS_PREFIX ".StateHandler")

public:
    enum class Behaviour { Answers, StaysSilent, Vanishes };

    explicit StateHandlerStandIn(QObject* parent = nullptr);

    /// Takes the service's name; false if the bus or the name is not available.
    bool appear(const QString& busAddress);
    void disappear();

    /// The reaction to requests for the state.
    void setBehaviour(Behaviour behaviour) { m_behaviour = behaviour; }
    /// The delay of each answer; 0 by default.
    void setDelay(std::chrono::milliseconds delay) { m_delay = delay; }

    /// Sets the state without announcing it.
    void setInitialState(const QString& state);
    /// Changes the state and announces it.
    void changeState(const QString& state);
    void announce(const QVariantMap& notification);

    /// The number of requests for the state.
    int requests() const { return m_requests; }

    Q_SCRIPTABLE QVariantMap process(const QVariantMap& command);

Q_SIGNALS:
    void asked(const QVariantMap& command);

private:
    std::unique_ptr<BusConnection> m_connection;
    Behaviour m_behaviour = Behaviour::Answers;
    std::chrono::milliseconds m_delay{0};
    QVariantMap m_answer;
    int m_requests = 0;
};
