// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/script/KeyScript.h"

/// Rows of the key lists as the words of a script line:
/// long ACTION RECEIVER STATES SECONDS KEY, or modifier|shortcut ACTION RECEIVER STATE KEY...
namespace KeyRowWords {

struct Parsed
{
    KeyRow row;
    /// A sentence; empty when `row` is valid.
    QString fault;
};

Parsed parse(const QStringList& words);
/// The words that `parse` turns into `row`.
QStringList wordsOf(const KeyRow& row);

} // namespace KeyRowWords
