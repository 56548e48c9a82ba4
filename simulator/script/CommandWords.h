// SPDX-License-Identifier: MIT
#pragma once

#include <QStringList>
#include <QVariantMap>

/// Commands to the keyboard service as the words of a script line: NAME [as SERVICE] [ARGUMENT...].
namespace CommandWords {

struct Parsed
{
    QVariantMap command;
    /// A sentence; empty when `command` is valid.
    QString fault;
};

Parsed parse(const QStringList& words);
/// The words that `parse` turns into `command`.
QStringList wordsOf(const QVariantMap& command);

} // namespace CommandWords
