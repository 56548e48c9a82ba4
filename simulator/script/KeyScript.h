// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/script/Observation.h"

#include <ls/Identifiers.h>

#include <QByteArray>
#include <QMap>
#include <QString>
#include <QStringList>
#include <QVariantMap>
#include <QVector>

#include <chrono>

/// One row of a key list.
struct KeyRow
{
    enum class Kind { Long, Modifier, Shortcut };

    Kind kind = Kind::Long;
    QString action;
    QString receiver;
    QString validOnState;
    /// Only for `Kind::Long`.
    int seconds = 0;
    QStringList keys;
};

/// An input record without its time stamp.
struct RawRecord
{
    quint16 type = 0;
    quint16 code = 0;
    qint32 value = 0;
};

/// A change in the condition of a service that the daemon uses. The service stays declared ready throughout.
struct ServiceChange
{
    /// `Silent`: on the bus, but not responding. `Stopped`: not on the bus.
    enum class Condition { Running, Silent, Stopped };

    static const QString stateHandler;
    static const QString speechDaemon;

    /// One of the two above.
    QString service;
    Condition condition = Condition::Running;
};

/// What a script does to the device at one moment.
struct ScriptStep
{
    enum class Kind { Heading, Press, Release, Record, State, Service, Command, Console };

    /// Since the start of the script.
    std::chrono::milliseconds at{0};
    Kind kind = Kind::Heading;
    /// The keyboard, 0 or 1, of `Press`, `Release` and `Record`.
    int keyboard = 0;
    /// The heading, the key, the state or the console line.
    QString text;
    /// The map of a `Command`.
    QVariantMap command;
    /// The record of a `Record`.
    RawRecord record;
    /// The change of a `Service`.
    ServiceChange service{};
};

/// A fault in a script: its line, counted from 1 (0: the whole file), and a sentence.
struct ScriptFault
{
    int line = 0;
    QString text;
};

/// Actions of a person at the device and the observations expected; docs/key-scripts.md has the grammar.
struct KeyScript
{
    /// Whether the times come from a real clock and are therefore inexact.
    bool recorded = false;
    /// Whether only announcements were recorded. Other observations are then not compared.
    bool hasOnlyAnnouncements = false;
    QString model = QStringLiteral("Pellit");
    QString initialState = ls::StateId::Idle;
    /// The services that do not run when the daemon starts.
    QMap<QString, ServiceChange::Condition> services;
    /// The complete key lists; if empty, the installed lists apply.
    QVector<KeyRow> rows;
    /// In chronological order.
    QVector<ScriptStep> steps;
    /// The time after the last step and the waits that follow it.
    std::chrono::milliseconds end{0};
    Observations expectations;

    /// The time after the end of the script and its last expectation.
    std::chrono::milliseconds duration() const;
};

/// A parsed script, valid only without faults.
struct ParsedScript
{
    KeyScript script;
    QVector<ScriptFault> faults;
};
