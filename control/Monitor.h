// SPDX-License-Identifier: MIT
#pragma once

#include "control/Bus.h"

#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QDateTime>
#include <QJsonObject>
#include <QObject>
#include <QTextCodec>

#include <functional>

namespace control {

/// Something that the monitor shows.
struct MonitorEvent
{
    QDateTime at = QDateTime::currentDateTime();
    /// "announcement", "state", "service" or "bus".
    QString kind;
    /// For people; names in it may be hostile.
    QString words;
    /// For programs.
    QJsonObject members;
};

/// The lines of `monitor`.
class MonitorLines
{
public:
    MonitorLines(bool hasJson, const QTextCodec& charset) : m_hasJson(hasJson), m_charset(charset) {}

    QByteArray of(const MonitorEvent& event) const;
    /// Says that lines are missing.
    QByteArray loss(int count) const;

private:
    bool m_hasJson = false;
    const QTextCodec& m_charset;
};

/// Watches the announcements of the daemon, the operating state, and the services that make them. It sends
/// the daemon nothing; it asks the state handler for the state.
class Monitor : public QObject
{
    Q_OBJECT

public:
    using Report = std::function<void(const MonitorEvent& event)>;

    /// Announcements to other services than `receivers` are left out, unless it is empty.
    Monitor(const Bus& bus, const QStringList& receivers, Report report);

    /// Subscribes. After that, events are reported from the event loop.
    BusFault begin();

Q_SIGNALS:
    /// Whatever their receivers.
    void announced(const QVariantMap& notification);
    /// Empty if the state handler gives no answer.
    void stateSeen(const QString& state);
    void daemonCame();
    /// There will be no more events.
    void busLost();

private Q_SLOTS:
    void onAnnouncement(const QDBusMessage& message);
    void onStateMessage(const QDBusMessage& message);
    void onBusLost();

private:
    void onOwnerChanged(const QString& name, const QString& owner);
    void askForState();
    void reportState(const QString& current, const QString& fault);

    Bus m_bus;
    QString m_stateHandler;
    QStringList m_receivers;
    Report m_report;
    /// How many were announced.
    int m_stateChanges = 0;
    QDBusServiceWatcher m_watcher;
};

} // namespace control
