// SPDX-License-Identifier: MIT
#pragma once

#include <QDBusMessage>
#include <QList>
#include <QThread>

#include <functional>

class PrivateBus;

/// A service on the private bus, with a separate connection and thread, so that it can answer while the test
/// waits for the answer. Its behaviour may use it from the thread of the service.
class BusPeer
{
public:
    /// Handles a call; runs in the thread of the service.
    using Behaviour = std::function<void(const BusPeer& self, const QDBusMessage& call)>;

    /// Never answers.
    static void hang(const BusPeer& self, const QDBusMessage& call);
    /// Answers with the arguments of the call.
    static void echo(const BusPeer& self, const QDBusMessage& call);

    /// Joins the bus as `name`, replacing an existing owner of that name.
    BusPeer(PrivateBus& bus, const QString& name, const Behaviour& behaviour = &BusPeer::hang);
    ~BusPeer();
    BusPeer(const BusPeer&) = delete;
    BusPeer& operator=(const BusPeer&) = delete;

    void reply(const QDBusMessage& call, const QVariantList& arguments) const;
    void refuse(const QDBusMessage& call, const QString& errorName, const QString& errorText) const;
    /// Emits the signal "notification" of the service's interface.
    void announce(const QVariantList& arguments) const;
    /// Calls a method of the object "/" of another service, in the interface of its name, without waiting.
    void call(const QString& service, const QString& method, const QVariantList& arguments) const;
    /// Returns when the bus has processed all previous messages of this peer.
    void synchronise() const;
    /// Leaves the bus.
    void vanish() const;

    /// The calls received so far.
    QList<QDBusMessage> calls() const;

private:
    class Object;

    const QString m_name;
    const QString m_connection;
    QThread m_thread;
    Object* m_object;
};
