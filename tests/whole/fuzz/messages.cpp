// SPDX-License-Identifier: MIT
// Commands: messages of any content to the object on the bus.
#include "service/KeyboardHandler.h"
#include "service/KeyboardHandlerAdaptor.h"
#include "tests/whole/fuzz/BusValues.h"
#include "tests/whole/fuzz/FuzzedDaemon.h"
#include "tests/whole/fuzz/LocalBus.h"
#include "tests/whole/fuzz/Log.h"
#include "tests/whole/fuzz/Target.h"

#include <ls/BusNames.h>
#include <ls/Identifiers.h>
#include <ls/MessageKeys.h>
#include <vantre/DBusArgumentUnpack.h>

namespace {

const QStringList messageKeys{ls::commandIdKey, ls::subCommandIdKey, ls::senderIdKey,  ls::actionIdKey,
                              ls::keyKey,       ls::keysListKey,     ls::receiverIdKey};

class Messages : public Target
{
public:
    Messages();
    void run(Bytes& bytes) override;

private:
    void send(Bytes& bytes);
    QString anyMethod(Bytes& bytes) const;
    QVariantMap command(Bytes& bytes) const;
    QStringList keysList(Bytes& bytes) const;

    FuzzedDaemon m_daemon;
    LocalBus m_bus;
    const QString m_interface = ls::busName(ls::ServiceId::KeyboardHandler);
    const QStringList m_commands = ls::KeyboardHandlerCmdId::meta.keys();
    const QStringList m_senders = ls::ServiceId::meta.keys();
    const QStringList m_actions = ls::KeyActionId::meta.keys();
    const QStringList m_keys = ls::KeyId::meta.keys();
    const QStringList m_words = m_commands + m_senders + m_actions + m_keys + QStringList{QString()};
};

Messages::Messages()
{
    BusValues::prepare();
    m_daemon.setRichKeyLists();
    m_daemon.start();
    auto* adaptor = new KeyboardHandlerAdaptor(&m_daemon.handler());
    // Announcements are not sent, because the bus could not keep up with thousands a second.
    adaptor->blockSignals(true);
}

void Messages::run(Bytes& bytes)
{
    while (!bytes.isEmpty()) {
        send(bytes);
    }
    m_daemon.requireThatItWorks();
}

void Messages::send(Bytes& bytes)
{
    constexpr int oneIn = 8;
    const bool isOdd = bytes.below(oneIn) == 0;
    const QString method = isOdd ? anyMethod(bytes) : QStringLiteral("process");
    const QVariantList arguments{isOdd ? BusValues::value(bytes) : QVariant(command(bytes))};
    const QDBusMessage reply = LocalBus::call(m_interface, method, arguments);
    m_daemon.settle();
    if (reply.type() != QDBusMessage::ReplyMessage) {
        Log::require(isOdd, "each command is answered");
        return;
    }
    const QVariantMap response = libvantre::dbusArgumentUnpack(reply.arguments().value(0)).toMap();
    Log::require(response.contains(ls::resultIdKey) && response.contains(ls::errorIdKey),
                 "each answer has a result and an error");
}

QString Messages::anyMethod(Bytes& bytes) const
{
    return bytes.below(2) == 0 ? QStringLiteral("process")
                               : QStringLiteral("m%1").arg(bytes.number<quint16>());
}

/// Half of the commands are complete, but any field may be replaced by any value.
QVariantMap Messages::command(Bytes& bytes) const
{
    QVariantMap map;
    if (bytes.below(2) == 0) {
        map = {{ls::commandIdKey, bytes.pick(m_commands)},
               {ls::senderIdKey, bytes.pick(m_senders)},
               {ls::actionIdKey, bytes.pick(m_actions)},
               {ls::keyKey, bytes.pick(m_keys)},
               {ls::keysListKey, keysList(bytes)}};
    }
    const QVariantMap others = BusValues::map(bytes, messageKeys, m_words);
    for (auto it = others.cbegin(); it != others.cend(); ++it) {
        map.insert(it.key(), it.value());
    }
    return map;
}

QStringList Messages::keysList(Bytes& bytes) const
{
    constexpr int countLimit = 8;
    QStringList keys;
    for (int i = bytes.below(countLimit); i > 0; --i) {
        keys.append(bytes.pick(m_keys));
    }
    return keys;
}

} // namespace

std::unique_ptr<Target> Target::make()
{
    return std::make_unique<Messages>();
}
