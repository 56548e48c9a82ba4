// SPDX-License-Identifier: MIT
#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QVariantMap>

/// The speech daemon: says nothing aloud, but reports what it is asked for.
class SpeechDaemonStandIn : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", KEYBOARD_HANDLER_BUS_PREFIX ".SpeechDaemon")

public:
    explicit SpeechDaemonStandIn(const QDBusConnection& bus, QObject* parent = nullptr);

    /// Takes the service's name; false when it cannot be had.
    bool appear();
    void disappear();

    /// Whether it takes no notice of what it is asked for.
    void setSilent(bool silent) { m_isSilent = silent; }

    Q_SCRIPTABLE Q_NOREPLY void speakFromId(const QVariantMap& request);
    Q_SCRIPTABLE Q_NOREPLY void cancelAll();

Q_SIGNALS:
    void spoken(const QVariantMap& request);
    void cancelled();

private:
    QDBusConnection m_bus;
    bool m_isSilent = false;
};
