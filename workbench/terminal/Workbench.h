// SPDX-License-Identifier: MIT
#pragma once

#include "workbench/session/Session.h"
#include "workbench/terminal/CommandLine.h"
#include "workbench/terminal/Prompt.h"
#include "workbench/terminal/TranscriptPrinter.h"
#include "workbench/web/BackgroundWork.h"
#include "workbench/web/WebServer.h"

#include <QObject>

#include <memory>

/// Plays a key script on a simulated device, prints a transcript and checks the expectations. On request,
/// then keeps the device for interactive use in browsers and at the terminal.
class Workbench : public QObject
{
    Q_OBJECT

public:
    enum Status { AsExpected = 0, NotAsExpected = 1, NotStarted = 2, WrongArguments = 3 };

    explicit Workbench(const CommandLine& line, QObject* parent = nullptr);

    /// Starts the device and plays `script`, if any.
    void start(const std::optional<KeyScript>& script);

    const Session& session() const { return m_session; }

Q_SIGNALS:
    void finished(int status);

private:
    void onAdded(const SessionEntry& entry);
    void onDevice(entry::Device::Status status);
    void printHints(entry::Device::Status status);
    void checkLists();
    void finish(Status status);
    void onReplay(const entry::Replay& replay);
    void onPlayed(Status status);
    void beginInteraction();
    void openPrompt();
    void onTyped(const QString& line);

    const CommandLine m_line;
    Session m_session;
    TranscriptPrinter m_printer;
    WebServer m_server;
    std::unique_ptr<Prompt> m_prompt;
    Status m_status = AsExpected;
    int m_checks = 0;            // that run
    std::optional<Status> m_end; // with which to finish after the checks
    bool m_isPlaying = false;
    bool m_wasReady = false;
    bool m_isInteractive = false;
    BackgroundWork m_work;
};
