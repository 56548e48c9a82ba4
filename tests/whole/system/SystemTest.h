// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/device/ObservationRecorder.h"
#include "simulator/device/SimulatedDevice.h"

#include <ls/Identifiers.h>
#include <ls/MessageKeys.h>

#include <QtTest>

#include <memory>

/// The base class of tests with the real daemon: a new simulated device for each test function, whose log is
/// printed if the test fails. A sanitizer report in the log fails the test.
class SystemTest : public QObject
{
    Q_OBJECT

protected:
    /// Creates the device with `options` and starts its services, but not the daemon.
    bool prepare();
    /// Starts the daemon, after `prepare` if necessary, and waits until it is ready.
    bool launch();

    /// Starts the daemon by a shell script, which must end with `exec "$0"`. Must be called before `prepare`
    /// or `launch`.
    void startThroughShell(const QString& script);

    SimulatedDevice& device() { return *m_device; }

    void tap(const QString& key, int keyboard = 0);
    QVariantMap command(const QString& name, const QVariantMap& arguments = {});

    /// The announcements, speech, cancellations and answers in order of arrival, then the log.
    QStringList actions() const;
    QStringList log() const;
    /// Waits for all lines that the daemon has logged before this call. Needed because a thread of the daemon
    /// writes the log, which may lag behind announcements. Requires the bus.
    QStringList completeLog();
    /// Waits for one of these; false if the daemon ends first.
    bool awaitAction(const QString& text);
    bool awaitLog(const QString& line);

    /// Plays the script on the launched device; returns the differences from its expectations.
    QStringList play(const KeyScript& script);

    /// Whether the next press of Menu is announced to the user menu. Only in Idle and in the undefined state.
    bool nextKeyWorks();

    /// Must be set before `prepare` or `launch`.
    DeviceOptions options;

private Q_SLOTS:
    void cleanup();

private:
    /// The difference between the script and what was observed until now.
    QStringList differenceTo(const KeyScript& script) const;
    int menuAnnouncements() const;
    QStringList sanitizerReports() const;
    void showEnd() const;

    std::unique_ptr<SimulatedDevice> m_device;
    std::unique_ptr<ObservationRecorder> m_recorder;
};
