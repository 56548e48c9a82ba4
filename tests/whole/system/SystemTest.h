// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/device/ObservationRecorder.h"
#include "simulator/device/SimulatedDevice.h"

#include <ls/Identifiers.h>
#include <ls/MessageKeys.h>

#include <QtTest>

#include <memory>

/// The base of tests that drive the real daemon: a fresh simulated device for each test function, whose
/// log is shown when the test fails. A report of a sanitizer in that log fails the test.
class SystemTest : public QObject
{
    Q_OBJECT

protected:
    /// Makes the device with `options` and starts its services, but not the daemon.
    bool prepare();
    /// Starts the daemon, preparing the device if that was not done, and waits until it is ready.
    bool launch();

    SimulatedDevice& device() { return *m_device; }

    void tap(const QString& key, int inputDevice = 0);
    QVariantMap command(const QString& name, const QVariantMap& arguments = {});

    /// What was announced, spoken, cancelled and answered, in this order of arrival; then the log.
    QStringList actions() const;
    QStringList log() const;
    /// The log with all that the daemon has logged before this call: a thread of the daemon writes it, so
    /// lines may arrive later than what was announced after them. Needs the bus.
    QStringList completeLog();
    /// Waits for one of these; false when the daemon ends without it.
    bool awaitAction(const QString& text);
    bool awaitLog(const QString& line);

    /// Plays the script's steps on the launched device; returns how the outcome differs from what the
    /// script expects.
    QStringList play(const KeyScript& script);

    /// Whether the daemon runs on: the next press of Menu is announced to the user menu. For states in
    /// which that happens at once: Idle, and none at all.
    bool nextKeyWorks();

    /// Set before `prepare` or `launch`.
    DeviceOptions options;

private Q_SLOTS:
    void cleanup();

private:
    int menuAnnouncements() const;
    QStringList sanitizerReports() const;
    void showEnd() const;

    std::unique_ptr<SimulatedDevice> m_device;
    std::unique_ptr<ObservationRecorder> m_recorder;
};
