// SPDX-License-Identifier: MIT
#pragma once

#include "benchmarks/OtherServices.h"
#include "benchmarks/ReadinessSocket.h"
#include "simulator/device/BusDaemon.h"
#include "simulator/device/DaemonProcess.h"
#include "simulator/device/DeviceFolder.h"

#include <QString>

#include <chrono>
#include <memory>

/// A program that announces keys, on a device of its own that is printing: there every release is announced
/// at once, and nothing is spoken. Everything throws when the program does not do what it should.
class MeasuredProgram
{
public:
    /// Makes the device; `name` is what the figures of the program are called.
    MeasuredProgram(const QString& name, const QString& executable);
    ~MeasuredProgram();

    MeasuredProgram(const MeasuredProgram&) = delete;
    MeasuredProgram& operator=(const MeasuredProgram&) = delete;

    QString name() const { return m_name; }
    qint64 processId() const { return m_process.processId(); }
    OtherServices& services() { return *m_services; }

    /// Starts the program and returns how long it took from there until it declared itself ready.
    std::chrono::nanoseconds start();
    /// Starts the program where the services that it waits for are not ready.
    void startEarly();
    /// Declares these services ready, one after the other, and returns how long it took from the last
    /// declaration until the program declared itself ready.
    std::chrono::nanoseconds declareServices();
    /// Starts the program under callgrind.
    void startCounting();
    /// Ends the program.
    void stop();
    /// Ends the program that was started under callgrind; the number of instructions of its life.
    qint64 stopCounting();

    void press();
    void release();
    /// Writes as many keys, pressed and released, as the input device takes now; returns how many.
    int tap(int mostKeys);
    /// Whether the program has read everything.
    bool hasReadAll() const;
    /// The input device; writable when it takes more.
    int inputDevice() const { return m_input; }

private:
    void run(const QStringList& command);
    ReadinessSocket::Time awaitReadiness();
    ReadinessSocket::Time launchTime() const;
    /// Where a file in /run of the device lies.
    QString ofDevice(const char* path) const;

    QString m_name;
    QString m_executable;
    DeviceOptions m_options;
    DeviceFolder m_folder;
    BusDaemon m_bus;
    std::unique_ptr<ReadinessSocket> m_readiness;
    std::unique_ptr<OtherServices> m_services;
    DaemonProcess m_process;
    int m_input = -1;
    qint64 m_instructions = -1;
};

constexpr char launchOption[] = "--launch";

/// Notes the time and becomes the program `command`; returns only when that fails. What `start` runs inside
/// of the device, so that the time which the device takes is not the program's.
int launch(char* command[]);
