// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/script/KeyScript.h"

#include <ls/Identifiers.h>

#include <QByteArray>
#include <QMap>
#include <QString>
#include <QStringList>

#include <array>

/// The parts of a simulated device. The default is a device without faults.
struct DeviceOptions
{
    enum class StandardInput { Pipe, Null, Closed };
    enum class NamePolicy { Project, DenyOwnership };

    /// The daemon's executable and its arguments.
    QString daemon = QStringLiteral(KEYBOARD_HANDLER_DAEMON);
    QStringList daemonArguments;
    /// Further arguments of bubblewrap, which makes the daemon's view of the file system.
    QStringList viewArguments;
    /// Rules for the daemon's logging categories, in the format of QT_LOGGING_RULES.
    QString loggingRules;
    StandardInput standardInput = StandardInput::Pipe;

    /// The folder whose *.json files are the device's key lists; empty for none.
    QString keyListFolder = QStringLiteral(KEYBOARD_HANDLER_DATA_FOLDER);
    /// File name to content; these files replace or supplement those of the folder.
    QMap<QString, QByteArray> keyLists;
    /// "Orvane" or "Pellit"; empty for a device without configuration.
    QString model = QStringLiteral("Pellit");
    /// Which of the two keyboards exist.
    std::array<bool, 2> keyboards{true, true};

    bool bus = true;
    NamePolicy namePolicy = NamePolicy::Project;
    bool stateHandler = true;
    QString state = ls::StateId::Idle;
    bool speechDaemon = true;
    /// The conditions of services that are not running from the start.
    QMap<QString, ServiceChange::Condition> services;
    /// Whether the state handler and the speech daemon are declared ready before the daemon starts.
    bool dependenciesReady = true;
};
