// SPDX-License-Identifier: MIT
#pragma once

#include "control/Bus.h"
#include "control/Verb.h"

#include <QCommandLineOption>

#include <chrono>
#include <optional>

namespace control {

/// The options that more than one verb has.
namespace Options {

QCommandLineOption help();
QCommandLineOption json();
/// The prefix of the bus names; its default is that of the build.
QCommandLineOption prefix();
/// How long to wait for an answer.
QCommandLineOption timeout();

bool hasJson(const Call& call);
/// Nothing, after a complaint, if the value cannot be used.
std::optional<QString> prefixOf(const Call& call);
std::optional<std::chrono::milliseconds> timeoutOf(const Call& call);

} // namespace Options

} // namespace control
