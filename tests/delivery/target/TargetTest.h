// SPDX-License-Identifier: MIT
#pragma once

#include "tests/delivery/target/TargetDevice.h"
#include "tests/delivery/target/Unit.h"

#include <ls/Identifiers.h>
#include <ls/MessageKeys.h>

#include <QtTest>

#include <memory>

/// The base class of tests on the booted target system. They run as root, one after the other on the same
/// system.
class TargetTest : public QObject
{
    Q_OBJECT

protected:
    TargetDevice& device() { return *m_device; }
    /// Reconnects to the device, because its bus has been restarted.
    bool reconnect();

    /// Restarts the daemon with these key lists (by default the installed ones) in this state, and waits
    /// until it is ready. Discards observations of the start.
    bool restartDaemon(const QMap<QString, QByteArray>& keyLists = {},
                       const QString& state = ls::StateId::Idle,
                       const QString& model = QStringLiteral("Pellit"));

    /// Plays a script; returns the differences between its expectations and the observations.
    QStringList play(const KeyScript& script);
    /// Likewise, for the lines of a script without header.
    QStringList playSteps(const QString& lines);

    /// Waits for a line that contains `part`; returns the journal's lines since the last start or script.
    QStringList logWith(const QString& part);
    /// Whether the next press of Menu is announced to the user menu. Only in Idle.
    bool nextKeyWorks(int inputDevice = 0);
    /// Waits until no job of the unit is pending, then verifies that both devices work. Only in Idle.
    void verifyServing();

private Q_SLOTS:
    void initTestCase();
    /// Plugs in devices that the previous function may have unplugged.
    void init();
    void cleanup();

private:
    std::unique_ptr<TargetDevice> m_device;
};
