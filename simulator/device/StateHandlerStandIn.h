// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/device/BusConnection.h"

#include <QDBusContext>
#include <QObject>
#include <QVariantMap>

#include <chrono>
#include <memory>

/// The state-handler service: answers the question for the state and announces its changes.
///
/// It has a bus connection of its own, so that it can leave the bus while a question is open.
class StateHandlerStandIn : public QObject, protected QDBusContext
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", KEYBOARD_HANDLER_BUS_PREFIX ".StateHandler")

public:
    enum class Behaviour { Answers, KeepsSilent, Vanishes };

    explicit StateHandlerStandIn(QObject* parent = nullptr);

    /// Takes the service's name; false when the bus or the name cannot be had.
    bool appear(const QString& busAddress);
    void disappear();

    /// What is done when the state is asked for.
    void setBehaviour(Behaviour behaviour) { m_behaviour = behaviour; }
    /// How long an answer takes; 0 at first.
    void setDelay(std::chrono::milliseconds delay) { m_delay = delay; }
    /// Answers with `answer` instead of the state.
    void setAnswer(const QVariantMap& answer);

    /// The state to answer with, without announcing it.
    void setInitialState(const QString& state);
    /// Changes the state and announces it.
    void changeState(const QString& state);
    /// Announces any map at all.
    void announce(const QVariantMap& notification);
    /// Announces something that need not be a map.
    void announceArguments(const QVariantList& arguments);

    /// How often the state was asked for.
    int questions() const { return m_questions; }

    Q_SCRIPTABLE QVariantMap process(const QVariantMap& command);

Q_SIGNALS:
    void asked(const QVariantMap& command);

private:
    std::unique_ptr<BusConnection> m_connection;
    Behaviour m_behaviour = Behaviour::Answers;
    std::chrono::milliseconds m_delay{0};
    QVariantMap m_answer;
    int m_questions = 0;
};
