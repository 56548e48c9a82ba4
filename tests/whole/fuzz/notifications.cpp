// SPDX-License-Identifier: MIT
// The state handler: notifications and answers to the request for the state, of any content.
#include "device/StateHandler.h"
#include "service/KeyboardHandler.h"
#include "tests/whole/fuzz/BusValues.h"
#include "tests/whole/fuzz/FuzzedDaemon.h"
#include "tests/whole/fuzz/LocalBus.h"
#include "tests/whole/fuzz/Log.h"
#include "tests/whole/fuzz/Target.h"
#include "vocabulary/Vocabulary.h"

#include <ls/BusNames.h>
#include <ls/DBusService.h>
#include <ls/DBusServiceStore.h>
#include <ls/Identifiers.h>
#include <ls/MessageKeys.h>

#include <QDBusConnection>

namespace {

const QStringList messageKeys{ls::notificationIdKey, ls::actionIdKey, ls::senderIdKey,
                              ls::stateIdKey,        ls::resultIdKey, ls::errorIdKey};

/// A state handler on the bus with any answer.
class AnsweringStateHandler : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", KEYBOARD_HANDLER_BUS_PREFIX ".StateHandler")

public:
    AnsweringStateHandler();

    QVariantList answer;

public Q_SLOTS:
    void process(const QDBusMessage& question);
};

AnsweringStateHandler::AnsweringStateHandler()
{
    QDBusConnection bus = QDBusConnection::systemBus();
    bus.registerObject(ls::busPath, this, QDBusConnection::ExportAllSlots);
    bus.registerService(ls::busName(ls::ServiceId::StateHandler));
}

void AnsweringStateHandler::process(const QDBusMessage& question)
{
    question.setDelayedReply(true);
    QDBusConnection::systemBus().send(question.createReply(answer));
}

class Notifications : public Target
{
public:
    Notifications();
    void run(Bytes& bytes) override;

private:
    void step(Bytes& bytes);
    QVariantList arguments(Bytes& bytes) const;
    void announce(const QVariantList& arguments);
    void answer(const QVariantList& arguments);

    FuzzedDaemon m_daemon;
    LocalBus m_bus;
    AnsweringStateHandler m_peer;
    QStringList m_states; // announced in this step
    const QStringList m_words = ls::StateId::meta.keys() + ls::ServiceId::meta.keys() +
                                QStringList{ls::StateHandlerNotifId::StateChange, ls::ResultId::Success,
                                            ls::ResultId::Failure, QStringLiteral("Undefined")};
};

Notifications::Notifications()
{
    BusValues::prepare();
    m_daemon.start();
    auto* stateHandler = m_daemon.handler().findChild<StateHandler*>();
    QObject::connect(stateHandler, &StateHandler::stateChange,
                     [this](const ls::EnumKey& state) { m_states.append(state); });
}

void Notifications::run(Bytes& bytes)
{
    while (!bytes.isEmpty()) {
        step(bytes);
    }
    m_daemon.requireThatItWorks();
}

void Notifications::step(Bytes& bytes)
{
    constexpr int oneIn = 4;
    const bool isAnswer = bytes.below(oneIn) == 0;
    const QVariantList sent = arguments(bytes);
    if (isAnswer) {
        answer(sent);
    } else {
        announce(sent);
    }
}

/// Half of the maps are complete notifications and answers, but any field may be replaced by any value.
QVariantList Notifications::arguments(Bytes& bytes) const
{
    constexpr int oneIn = 16;
    if (bytes.below(oneIn) == 0) {
        return bytes.below(2) == 0 ? QVariantList() : QVariantList{BusValues::value(bytes)};
    }
    QVariantMap map;
    if (bytes.below(2) == 0) {
        map = {{ls::notificationIdKey, ls::StateHandlerNotifId::StateChange},
               {ls::actionIdKey, ls::StateHandlerNotifId::StateChange},
               {ls::senderIdKey, ls::ServiceId::StateHandler},
               {ls::stateIdKey, bytes.pick(m_words)},
               {ls::resultIdKey, ls::ResultId::Success},
               {ls::errorIdKey, vocabulary::undefined}};
    }
    const QVariantMap others = BusValues::map(bytes, messageKeys, m_words);
    for (auto it = others.cbegin(); it != others.cend(); ++it) {
        map.insert(it.key(), it.value());
    }
    return {map};
}

void Notifications::announce(const QVariantList& arguments)
{
    const std::optional<QDBusMessage> message = m_bus.carry(arguments);
    if (!message) {
        return;
    }
    m_states.clear();
    auto* service = ls::DBusServiceStore::instance()->getService(ls::ServiceId::StateHandler);
    QMetaObject::invokeMethod(service, "onMessage", Q_ARG(QDBusMessage, *message));
    m_daemon.settle();
    Log::require(m_states.size() <= 1, "a notification changes the state once");
    Log::require(m_states.isEmpty() || ls::StateId::meta.contains(m_states.constFirst()),
                 "only states are announced");
}

void Notifications::answer(const QVariantList& arguments)
{
    m_peer.answer = arguments;
    const ls::EnumKey state = m_daemon.handler().findChild<StateHandler*>()->getState();
    m_peer.answer.clear();
    Log::require(state == vocabulary::undefined || ls::StateId::meta.contains(state),
                 "the state is one, or undefined");
}

} // namespace

std::unique_ptr<Target> Target::make()
{
    return std::make_unique<Notifications>();
}

#include "notifications.moc"
