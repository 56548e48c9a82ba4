// SPDX-License-Identifier: MIT
#include "device/StateHandler.h"

#include "vocabulary/Vocabulary.h"

#include <ls/DBusService.h>
#include <ls/DBusServiceStore.h>
#include <ls/Identifiers.h>
#include <ls/MessageKeys.h>

StateHandler::StateHandler(QObject* parent) : QObject(parent)
{
    auto* store = ls::DBusServiceStore::instance();
    store->registerService(ls::ServiceId::StateHandler);
    connect(store->getService(ls::ServiceId::StateHandler), &ls::DBusService::notification, this,
            &StateHandler::onNotification);
}

const ls::EnumKey StateHandler::getState() const
{
    const ls::Command request{{ls::commandIdKey, ls::StateHandlerCmdId::GetState},
                              {ls::senderIdKey, ls::ServiceId::KeyboardHandler}};
    auto* service = ls::DBusServiceStore::instance()->getService(ls::ServiceId::StateHandler);
    const QVariantMap reply = service->process(request);

    // Deliberate: the result is not evaluated; a reply that reports a failure may carry a state.
    if (!reply.contains(ls::resultIdKey) || !reply.contains(ls::errorIdKey)) {
        LOG_ERROR() << "invalid result!";
        return vocabulary::undefined;
    }
    if (!reply.contains(ls::stateIdKey)) {
        LOG_ERROR() << ls::stateIdKey << "not found!";
        return vocabulary::undefined;
    }
    const QString state = reply.value(ls::stateIdKey).toString();
    if (!vocabulary::isMember(ls::StateId::meta, state)) {
        LOG_ERROR() << "invalid state" << state;
        return vocabulary::undefined;
    }
    return state;
}

void StateHandler::onNotification(const QVariantMap& notification)
{
    // Deliberate: the action and the sender must be present, but may have any value.
    if (!notification.contains(ls::notificationIdKey) || !notification.contains(ls::actionIdKey) ||
        !notification.contains(ls::senderIdKey)) {
        LOG_ERROR() << "Invalid notification!";
        return;
    }
    if (notification.value(ls::notificationIdKey).toString() != ls::StateHandlerNotifId::StateChange) {
        return;
    }
    const QString state = notification.value(ls::stateIdKey).toString();
    if (!vocabulary::isMember(ls::StateId::meta, state)) {
        LOG_ERROR() << "Invalid state received!";
        return;
    }
    Q_EMIT stateChange(state);
}
