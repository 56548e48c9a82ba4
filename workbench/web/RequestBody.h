// SPDX-License-Identifier: MIT
#pragma once

#include "workbench/session/Session.h"

#include <QByteArray>
#include <QString>

#include <optional>

/// The text of a body; none when it is not UTF-8.
std::optional<QString> textOf(const QByteArray& body);

/// The changes that a JSON body asks for, none when it is faulty, and `fault` becomes a sentence about it. An
/// empty body asks for no change.
std::optional<Session::Changes> changesOf(const QByteArray& body, QString* fault);
