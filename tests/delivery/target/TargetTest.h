// SPDX-License-Identifier: MIT
#pragma once

#include "tests/delivery/target/TargetDevice.h"
#include "tests/delivery/target/Unit.h"

#include <ls/Identifiers.h>
#include <ls/MessageKeys.h>

#include <QtTest>

#include <memory>

/// The base of tests on the booted target system. They run as root, one after the other on the same system.
class TargetTest : public QObject
{
    Q_OBJECT

protected:
    TargetDevice& device() { return *m_device; }
    /// Gets hold of the device anew, for its bus is another one.
    bool reconnect();

    /// Starts the daemon anew with these key lists (none: the installed ones) in this state, and waits until
    /// it is ready. Nothing of the start is observed.
    bool restartDaemon(const QMap<QString, QByteArray>& keyLists = {},
                       const QString& state = ls::StateId::Idle,
                       const QString& model = QStringLiteral("Pellit"));

    /// Plays a script's steps; returns how what was announced, spoken, answered and logged differs from what
    /// the script expects.
    QStringList play(const KeyScript& script);
    /// As `play`, for the lines of a script without header.
    QStringList playSteps(const QString& lines);

    /// The journal's lines since the last start or script, after waiting for one that contains `part`.
    QStringList logWith(const QString& part);
    /// Whether the daemon serves: the next press of Menu is announced to the user menu. In Idle only.
    bool nextKeyWorks(int inputDevice = 0);
    /// Waits until nothing is about to happen to the daemon, then verifies that both devices work. In Idle
    /// only.
    void verifyServing();

private Q_SLOTS:
    void initTestCase();
    /// What the function before may have left behind.
    void init();
    void cleanup();

private:
    std::unique_ptr<TargetDevice> m_device;
};
