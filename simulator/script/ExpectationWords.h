// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// The observations that an `expect` line may name.
namespace ExpectationWords {

/// A sentence about the fault of an observation's text; empty when the daemon can produce it.
QString check(const QString& text);
/// The observation's text, without insignificant blanks and with the number of a named sentence.
QString normalised(const QString& text);
/// The observation's text with the name of its sentence, if the sentence has one.
QString named(const QString& text);

} // namespace ExpectationWords
