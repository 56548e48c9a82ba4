// SPDX-License-Identifier: MIT
#pragma once

#include "benchmarks/OtherServices.h"
#include "benchmarks/ReadinessSocket.h"
#include "benchmarks/Watcher.h"
#include "simulator/device/BusDaemon.h"
#include "simulator/device/DaemonProcess.h"
#include "simulator/device/DeviceFolder.h"

#include <QString>

#include <chrono>
#include <memory>
#include <vector>

/// A program that announces keys, on a separate device in the state Print, where every release is announced
/// at once and nothing is spoken. All functions throw if the program misbehaves.
class MeasuredProgram
{
public:
    /// Creates the device; `name` identifies the figures of the program.
    MeasuredProgram(const QString& name, const QString& executable);
    ~MeasuredProgram();

    MeasuredProgram(const MeasuredProgram&) = delete;
    MeasuredProgram& operator=(const MeasuredProgram&) = delete;

    QString name() const { return m_name; }
    qint64 processId() const { return m_process.processId(); }
    OtherServices& services() { return *m_services; }

    /// Starts the program and returns the time until it declared itself ready.
    std::chrono::nanoseconds start();
    /// Starts the program before the services that it waits for are ready.
    void startEarly();
    /// Declares these services ready, one after the other, and returns the time from the last declaration
    /// until the program declared itself ready.
    std::chrono::nanoseconds declareServices();
    /// Starts the program under callgrind.
    void startCounting();
    void stop();
    /// Ends the program that was started under callgrind and returns its number of instructions.
    qint64 stopCounting();

    /// Starts a command that reads the same keys next to the running program, until its destruction.
    void watch(const QStringList& command);

    void press();
    void release();
    /// Presses and releases up to `maxKeys` keys, as far as the input device has room. Returns the number of
    /// keys.
    int tap(int maxKeys);
    /// Whether the program has read everything.
    bool hasReadAll() const;
    /// The input device; writable when it has room.
    int inputDevice() const { return m_input; }

private:
    void run(const QStringList& command);
    ReadinessSocket::Time awaitReadiness();
    ReadinessSocket::Time launchTime() const;
    /// The host's path of a file in /run of the device.
    QString hostPath(const char* path) const;

    QString m_name;
    QString m_executable;
    DeviceOptions m_options;
    DeviceFolder m_folder;
    BusDaemon m_bus;
    std::unique_ptr<ReadinessSocket> m_readiness;
    std::unique_ptr<OtherServices> m_services;
    DaemonProcess m_process;
    std::vector<std::unique_ptr<Watcher>> m_watchers;
    int m_input = -1;
    qint64 m_instructions = -1;
};

constexpr char launchOption[] = "--launch";

/// Records the time and executes `command`; returns only on failure. Runs inside the device, so that the time
/// of `start` excludes the creation of the device.
int launch(char* command[]);
