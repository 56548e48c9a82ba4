// SPDX-License-Identifier: MIT
#pragma once

#include "workbench/session/Session.h"

#include <QByteArray>
#include <QString>

#include <optional>

/// The text of a body; no value if it is not UTF-8.
std::optional<QString> textOf(const QByteArray& body);

/// The changes that a JSON body asks for. No value if the body is faulty; then `fault` is set to a sentence
/// about it. An empty body asks for no change.
std::optional<Session::Changes> changesOf(const QByteArray& body, QString* fault);
