// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/script/KeyScript.h"

#include <QStringList>
#include <QVariantMap>

#include <chrono>
#include <optional>
#include <variant>

/// The events of a session.
namespace entry {

/// The simulated device starts, is ready for keys, or has ended.
struct Device
{
    enum class Status { Starting, Ready, Ended };

    Status status = Status::Starting;
    QString model;
    QString state;
    /// Why the device has ended, as a sentence; empty otherwise.
    QString reason;
};

struct Heading
{
    QString text;
};

/// A keyboard wrote a key; `value` is 0 released, 1 pressed, 2 repeated.
struct Key
{
    int keyboard = 0;
    QString key;
    int value = 0;
};

/// A keyboard wrote a record that is not a key.
struct Record
{
    int keyboard = 0;
    RawRecord record;
};

struct State
{
    QString state;
};

struct Service
{
    ServiceChange change;
};

struct Command
{
    QVariantMap command;
};

struct ConsoleLine
{
    QString text;
};

struct LogLine
{
    QString text;
};

/// The daemon wrote a line to its standard output.
struct OutputLine
{
    QString text;
};

struct Announcement
{
    QString action;
    QString receiver;
    QString sender;
    QStringList keys;
    /// As in key scripts.
    QString observation;
};

struct Speech
{
    QString sentence;
    /// As in key scripts.
    QString observation;
};

struct SpeechCancelled
{};

struct Answer
{
    QVariantMap response;
    /// As in key scripts.
    QString observation;
};

/// The daemon recognised an action and did not announce it.
struct Refusal
{
    /// The daemon's message, or a sentence that explains it.
    QString reason;
    /// The state of the action's row, possibly empty; not set if the action is refused in every state.
    std::optional<QString> expected;
    /// The state of the device; empty if the action is refused in every state.
    QString current;
    /// Empty if it is not known.
    QString action;
};

/// A recording begins, or ends because it is full.
struct Recording
{
    bool isFull = false;
    /// Whether the recording before this one is available.
    bool hasFormer = false;
};

struct Replay
{
    enum class Status { Playing, Finished, Stopped };

    Status status = Status::Playing;
    int expectations = 0;
    QStringList differences;
};

/// The daemon's keyboard test begins or ends.
struct KeyboardTest
{
    bool isRunning = false;
};

/// The daemon stops answering calls, or answers them again.
struct Daemon
{
    bool isAnswering = true;
};

} // namespace entry

using SessionEvent =
    std::variant<entry::Device, entry::Heading, entry::Key, entry::Record, entry::State, entry::Service,
                 entry::Command, entry::ConsoleLine, entry::LogLine, entry::OutputLine, entry::Announcement,
                 entry::Speech, entry::SpeechCancelled, entry::Answer, entry::Refusal, entry::Recording,
                 entry::Replay, entry::KeyboardTest, entry::Daemon>;

/// An event of a session with its time.
struct SessionEntry
{
    /// Increases throughout the session.
    qint64 id = 0;
    /// Since the device was started.
    std::chrono::milliseconds at{0};
    SessionEvent event;
};

/// A visitor that combines several functions.
template <typename... Function>
struct Overloaded : Function...
{
    using Function::operator()...;
};
template <typename... Function>
Overloaded(Function...) -> Overloaded<Function...>;
