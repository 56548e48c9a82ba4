// SPDX-License-Identifier: MIT
#include "simulator/device/StateHandlerStandIn.h"

#include <ls/BusNames.h>
#include <ls/Identifiers.h>
#include <ls/MessageKeys.h>

#include <QDBusMessage>
#include <QTimer>

namespace {

QVariantMap answerOf(const QString& state)
{
    return {{ls::resultIdKey, ls::ResultId::Success},
            {ls::errorIdKey, QStringLiteral("Undefined")},
            {ls::stateIdKey, state}};
}

} // namespace

StateHandlerStandIn::StateHandlerStandIn(QObject* parent)
    : QObject(parent), m_answer(answerOf(ls::StateId::Idle))
{}

bool StateHandlerStandIn::appear(const QString& busAddress)
{
    m_connection = std::make_unique<BusConnection>(busAddress);
    return m_connection->get().registerObject(ls::busPath, this,
                                              QDBusConnection::ExportScriptableInvokables) &&
           m_connection->get().registerService(ls::busName(ls::ServiceId::StateHandler));
}

void StateHandlerStandIn::disappear()
{
    m_connection.reset();
}

void StateHandlerStandIn::setInitialState(const QString& state)
{
    m_answer = answerOf(state);
}

void StateHandlerStandIn::changeState(const QString& state)
{
    m_answer = answerOf(state);
    announce({{ls::notificationIdKey, ls::StateHandlerNotifId::StateChange},
              {ls::actionIdKey, ls::StateHandlerNotifId::StateChange},
              {ls::senderIdKey, ls::ServiceId::StateHandler},
              {ls::stateIdKey, state}});
}

void StateHandlerStandIn::announce(const QVariantMap& notification)
{
    if (!m_connection) {
        return;
    }
    QDBusMessage message = QDBusMessage::createSignal(ls::busPath, ls::busName(ls::ServiceId::StateHandler),
                                                      QStringLiteral("notification"));
    message << notification;
    m_connection->get().send(message);
}

QVariantMap StateHandlerStandIn::process(const QVariantMap& command)
{
    ++m_requests;
    setDelayedReply(true);
    switch (m_behaviour) {
    case Behaviour::Answers:
        QTimer::singleShot(m_delay, this, [bus = connection(), reply = message().createReply(m_answer)] {
            bus.send(reply);
        });
        break;
    case Behaviour::StaysSilent:
        break;
    case Behaviour::Vanishes:
        // Deferred, because the connection is still delivering the call.
        QTimer::singleShot(0, this, &StateHandlerStandIn::disappear);
        break;
    }
    Q_EMIT asked(command);
    return {};
}
