// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace checker {

/// `text` without characters that a terminal would act on: tabs become blanks; other control characters,
/// invisible ones, separators of lines and unpaired surrogates become "\u001b", or two of these outside of
/// the first plane.
QString printable(const QString& text);
/// The same for JSON with line breaks, in which the escapes have their own meaning.
QString printableJson(const QByteArray& json);

/// Whether standard output shows colours: it is a terminal, and the user has not set `NO_COLOR`.
bool hasColours();

} // namespace checker
