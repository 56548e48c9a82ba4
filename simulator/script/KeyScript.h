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

/// The fields of an input record that a device chooses itself.
struct RawRecord
{
    quint16 type = 0;
    quint16 code = 0;
    qint32 value = 0;
};

/// The fault of a service that the daemon uses. Each service is declared ready, even if it fails.
struct ServiceChange
{
    /// On the bus and at work; on the bus, but without doing anything; not on the bus.
    enum class Condition { Runs, IsSilent, IsStopped };

    static const QString stateHandler;
    static const QString speechDaemon;

    /// One of the two above.
    QString service;
    Condition condition = Condition::Runs;
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
    /// What a `Service` changes.
    ServiceChange service{};
};

/// A fault of a script: the line that it is in, counted from 1 (0: the whole file), and a sentence.
struct ScriptFault
{
    int line = 0;
    QString text;
};

/// What a person does at the device and what is expected of it; docs/key-scripts.md has the grammar.
struct KeyScript
{
    /// Whether the times were taken from a real clock, and so are no exact ones.
    bool recorded = false;
    QString model = QStringLiteral("Pellit");
    QString initialState = ls::StateId::Idle;
    /// The services that do not run when the daemon starts.
    QMap<QString, ServiceChange::Condition> services;
    /// The whole key lists; with none the installed lists count.
    QVector<KeyRow> rows;
    /// In the order of time.
    QVector<ScriptStep> steps;
    /// When the steps and the waits behind them are over.
    std::chrono::milliseconds end{0};
    Observations expectations;

    /// When the script is over and the last expectation is due.
    std::chrono::milliseconds duration() const;
};

/// A parsed script; it is usable when there are no faults.
struct ParsedScript
{
    KeyScript script;
    QVector<ScriptFault> faults;
};
