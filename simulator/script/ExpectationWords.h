// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// What an `expect` line may name.
namespace ExpectationWords {

/// A sentence about what is wrong with the text of an observation; empty when it can come true.
QString check(const QString& text);
/// The observation's text, without the blanks that do not count and with the number of a named sentence.
QString normalised(const QString& text);
/// An observation's text with the name of its sentence, if that has one.
QString named(const QString& text);

} // namespace ExpectationWords
