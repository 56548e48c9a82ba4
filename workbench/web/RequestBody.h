// SPDX-License-Identifier: MIT
#pragma once

#include "workbench/session/Session.h"
#include "workbench/web/HttpAnswer.h"

#include <QByteArray>
#include <QJsonObject>
#include <QString>

#include <optional>

/// The text of a body; no value if it is not UTF-8.
std::optional<QString> textOf(const QByteArray& body);

/// The object of a JSON body, without members if the body is empty. No value if the body is faulty; then
/// `fault` is set to a sentence about it.
std::optional<QJsonObject> objectOf(const QByteArray& body, QString* fault);

/// The changes that a JSON body asks for. No value if the body is faulty; then `fault` is set to a sentence
/// about it. An empty body asks for no change.
std::optional<Session::Changes> changesOf(const QByteArray& body, QString* fault);

/// The answer to a script with faults, which has at least one.
HttpAnswer refuse(const QVector<ScriptFault>& faults);
