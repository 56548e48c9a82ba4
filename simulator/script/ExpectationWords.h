// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// What an `expect` line may name.
namespace ExpectationWords {

/// A sentence about what is wrong with the text of an observation; empty when it can come true.
QString check(const QString& text);
/// The observation's text with the blanks that do not count removed.
QString normalised(const QString& text);

} // namespace ExpectationWords
