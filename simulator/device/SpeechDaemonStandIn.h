// SPDX-License-Identifier: MIT
#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QVariantMap>

/// A silent speech daemon that reports its requests.
class SpeechDaemonStandIn : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", KEYBOARD_HANDLER_BUS_PREFIX ".SpeechDaemon")

public:
    explicit SpeechDaemonStandIn(const QDBusConnection& bus, QObject* parent = nullptr);

    /// Takes the service's name; false if it is not available.
    bool appear();
    void disappear();

    /// Whether requests are ignored.
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
