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

/// Runs the daemon's unchanged classes in this process on a virtual clock. Key lists, model, input devices
/// and standard input are files in the test's private root; the state handler and the speech daemon are
/// fakes. All actions of the daemon are recorded with their times.
class VirtualDevice : public QObject, public ScriptTarget
{
    Q_OBJECT

public:
    /// Installs the dispatcher and creates the application object. Must be called first in `main`.
    static VirtualTimeDispatcher& clock();

    VirtualDevice();
    ~VirtualDevice() override;

    /// Call these before `start`. The default key lists are the shipped ones.
    void setModel(const QString& model);
    void setKeyList(const QString& fileName, const QByteArray& content);
    void removeKeyLists();
    void setRows(const QVector<KeyRow>& rows);

    /// Creates the daemon's objects, with the state handler in `state`, and starts the script time.
    void start(const QString& state);

    void press(int keyboard, const QString& key) override;
    void release(int keyboard, const QString& key) override;
    void record(int keyboard, const RawRecord& record) override;
    void setState(const QString& state) override;
    void setService(const ServiceChange& change) override;
    void sendCommand(const QVariantMap& command) override;
    void typeLine(const QString& line) override;

    /// On the first keyboard.
    void press(const QString& key) { press(0, key); }
    void release(const QString& key) { release(0, key); }
    /// Presses and releases immediately.
    void tap(const QString& key);
    void hold(const QString& key, std::chrono::milliseconds duration);
    void wait(std::chrono::milliseconds duration);
    /// Waits until `time` since the start, unless it has passed.
    void waitUntil(std::chrono::milliseconds time);

    KeyboardHandler& handler() { return *m_handler; }
    Panel& panel() { return m_panel; }
    /// Returns and records the response to a command.
    QVariantMap process(const QVariantMap& command);

    /// The observations since the start or the last call.
    Observations takeObservations();
    /// Likewise, only the texts.
    QStringList take();
    /// Likewise, only the texts, without log lines.
    QStringList takeActions();

private:
    void observe(const QString& text);

    QObject m_root; // the parent of the daemon's objects, in place of the application object
    Panel m_panel;
    KeyboardHandler* m_handler = nullptr;
    std::chrono::milliseconds m_startTime{0};
    Observations m_observations;
    int m_input = -1;
};
