// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// The speech daemon's translation files, numbered as in the requests to it.
namespace SentenceFiles {

/// "EmbosserCore" for 0, and so on; empty for a number that no file has.
QString nameOf(int number);
/// Whether a file has this name.
bool isKnown(const QString& name);

} // namespace SentenceFiles
