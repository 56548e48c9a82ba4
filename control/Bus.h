// SPDX-License-Identifier: MIT
#pragma once

#include "control/Status.h"

#include <QDBusConnection>
#include <QDBusError>
#include <QDBusMessage>
#include <QString>
#include <QVariantMap>

#include <chrono>
#include <functional>
#include <optional>

namespace control {

/// Why something could not be done, and what to do about it.
struct BusFault
{
    Status status = Done;
    /// For a person, in one line; empty if nothing is wrong.
    QString text;

    bool isFault() const { return status != Done; }
};

/// The daemon with the names of `prefix`, such as "com.vantre", on the system bus. The first object connects
/// the process. No function waits longer for the bus itself than `BusSocket::timeout`.
class Bus
{
public:
    Bus(const QString& prefix, std::chrono::milliseconds timeout);

    /// Sends a command and waits for the response, which is empty if `fault` is set. Nested values are
    /// unpacked.
    QVariantMap send(const QVariantMap& command, BusFault& fault);

    /// Asks the state handler for the operating state without waiting. `take` gets the state from the event
    /// loop, unless `context` was deleted; an empty one and the reason in words if there is none.
    void askForState(QObject* context,
                     const std::function<void(const QString& state, const QString& fault)>& take);

    /// Whether there is no bus, or one that does not answer.
    BusFault connectionFault() const;
    /// Why no daemon owns the name. Names the daemons of other prefixes.
    BusFault absence() const;
    /// The bus name and interface of a service.
    QString nameOf(const QString& serviceId) const;

    /// Whether the name has an owner; nothing if the bus does not answer.
    std::optional<bool> isOwned(const QString& name) const;

    QDBusConnection& connection() { return m_bus; }

private:
    QDBusMessage ask(const QDBusMessage& message, std::chrono::milliseconds timeout) const;
    QDBusMessage askBus(const QString& method, const QVariantList& arguments) const;
    BusFault faultOf(const QDBusError& error) const;
    BusFault silence() const;
    BusFault lostBus() const;
    QStringList otherPrefixes() const;

    /// Why there was no bus at the start.
    QString m_fault;
    QDBusConnection m_bus;
    QString m_prefix;
    std::chrono::milliseconds m_timeout;
};

} // namespace control
