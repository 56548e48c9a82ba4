// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/panel/Panel.h"
#include "simulator/script/Observation.h"
#include "simulator/script/ScriptTarget.h"
#include "tests/virtual/VirtualTimeDispatcher.h"

#include <QObject>
#include <QStringList>

#include <memory>

class KeyboardHandler;

/// The device around the daemon's unchanged classes in one process and on a virtual clock: key lists, model,
/// input devices and standard input are files of the test's private root; the state handler and the speech
/// daemon are fakes. Everything that the daemon does is recorded with its time.
class VirtualDevice : public QObject, public ScriptTarget
{
    Q_OBJECT

public:
    /// Installs the dispatcher and makes the application object; to be called first in `main`.
    static VirtualTimeDispatcher& clock();

    VirtualDevice();
    ~VirtualDevice() override;

    /// Set before `start`. Without key lists the shipped ones are used.
    void setModel(const QString& model);
    void setKeyList(const QString& fileName, const QByteArray& content);
    void removeKeyLists();
    void setRows(const QVector<KeyRow>& rows);

    /// Builds the daemon's objects, with the state handler in `state`; the script time starts.
    void start(const QString& state);

    void press(int device, const QString& key) override;
    void release(int device, const QString& key) override;
    void record(int device, const RawRecord& record) override;
    void setState(const QString& state) override;
    void setService(const ServiceChange& change) override;
    void sendCommand(const QVariantMap& command) override;
    void typeLine(const QString& line) override;

    /// The same on the first device.
    void press(const QString& key) { press(0, key); }
    void release(const QString& key) { release(0, key); }
    /// Pressed and released at once.
    void tap(const QString& key);
    void hold(const QString& key, std::chrono::milliseconds duration);
    void wait(std::chrono::milliseconds duration);
    /// Until the time since the start; no time passes if that is over.
    void waitUntil(std::chrono::milliseconds time);

    KeyboardHandler& handler() { return *m_handler; }
    Panel& panel() { return m_panel; }
    /// The response of a command, which is recorded as well.
    QVariantMap process(const QVariantMap& command);

    /// What was recorded since the start or the last call.
    Observations takeObservations();
    /// The texts of the same.
    using ScriptTarget::take;
    QStringList take();
    /// The texts without the log lines.
    QStringList takeActions();

private:
    void observe(const QString& text);

    QObject m_root; // stands for the application object as the parent of the daemon's objects
    Panel m_panel;
    KeyboardHandler* m_handler = nullptr;
    std::chrono::milliseconds m_startTime{0};
    Observations m_observations;
    int m_input = -1;
};
