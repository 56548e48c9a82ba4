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

/// The daemon with the names of `prefix`, such as "com.vantre", on the system bus. The first use of the bus
/// connects the process.
class Bus
{
public:
    Bus(const QString& prefix, std::chrono::milliseconds timeout) : m_prefix(prefix), m_timeout(timeout) {}

    /// Sends a command and waits for the response, which is empty if `fault` is set. Nested values are
    /// unpacked.
    QVariantMap send(const QVariantMap& command, BusFault& fault);

    /// Asks the state handler for the operating state without waiting. `take` gets the response from the
    /// event loop, an empty one if none comes, unless `context` was deleted.
    void askForState(QObject* context, const std::function<void(const QVariantMap& response)>& take);

    /// Whether there is a connection.
    BusFault connectionFault() const;
    /// Why no daemon owns the name. Names the daemons of other prefixes.
    BusFault absence() const;
    /// The bus name and interface of a service.
    QString nameOf(const QString& serviceId) const;

    /// Whether the name has an owner; nothing if the bus does not answer.
    std::optional<bool> isOwned(const QString& name) const;

    QDBusConnection& connection() { return m_bus; }

private:
    QDBusMessage ask(const QDBusMessage& message) const;
    QDBusMessage askBus(const QString& method, const QVariantList& arguments) const;
    BusFault faultOf(const QDBusError& error) const;
    BusFault silence() const;
    QStringList otherPrefixes() const;

    QDBusConnection m_bus = QDBusConnection::systemBus();
    QString m_prefix;
    std::chrono::milliseconds m_timeout;
};

} // namespace control
