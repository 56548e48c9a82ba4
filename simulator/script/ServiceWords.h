// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/script/KeyScript.h"

#include <QStringList>

/// The fault of a service that the daemon uses, as the words of a script line: SERVICE stop|silent|start.
namespace ServiceWords {

struct Parsed
{
    ServiceChange change;
    /// A sentence; empty when `change` is good.
    QString fault;
};

Parsed parse(const QStringList& words);
/// The words that `parse` makes `change` of.
QStringList wordsOf(const ServiceChange& change);

} // namespace ServiceWords
