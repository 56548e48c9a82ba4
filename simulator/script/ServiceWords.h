// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/script/KeyScript.h"

#include <QStringList>

/// Changes of services as the words of a script line: SERVICE stop|silent|start.
namespace ServiceWords {

struct Parsed
{
    ServiceChange change;
    /// A sentence; empty when `change` is valid.
    QString fault;
};

Parsed parse(const QStringList& words);
/// The words that `parse` turns into `change`.
QStringList wordsOf(const ServiceChange& change);

} // namespace ServiceWords
