// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/script/KeyScript.h"

#include <QStringList>
#include <QVariantMap>

#include <chrono>
#include <optional>
#include <variant>

/// What can happen in a session, one type for each kind.
namespace entry {

/// The simulated device starts, is ready for keys, or has ended.
struct Device
{
    enum class Status { Starting, Ready, Ended };

    Status status = Status::Starting;
    QString model;
    QString state;
    /// Why the device has ended, as a sentence; empty while it has not.
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
    /// As key scripts expect it.
    QString observation;
};

struct Speech
{
    QString sentence;
    /// As key scripts expect it.
    QString observation;
};

struct SpeechCancelled
{};

struct Answer
{
    QVariantMap response;
    /// As key scripts expect it.
    QString observation;
};

/// The daemon recognised an action and did not announce it.
struct Refusal
{
    /// The daemon's own words, or a sentence where those say too little.
    QString reason;
    /// The state that the action is for; it may be empty. None where the action was refused in any state.
    std::optional<QString> expected;
    /// The state that the device was in; empty where the action was refused in any state.
    QString current;
    /// Empty when several rows of the key lists can be meant.
    QString action;
};

/// A recording begins, or ends because it is full.
struct Recording
{
    bool isFull = false;
    /// Whether the recording before this one can be read.
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

/// Something that happened in a session, and when.
struct SessionEntry
{
    /// Counts up over the whole session.
    qint64 id = 0;
    /// Since the device was started.
    std::chrono::milliseconds at{0};
    SessionEvent event;
};

/// Makes one visitor of several functions, one for each kind of event.
template <typename... Function>
struct Overloaded : Function...
{
    using Function::operator()...;
};
template <typename... Function>
Overloaded(Function...) -> Overloaded<Function...>;
