// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace checker {

/// `text` without characters that a terminal would act on: tabs become blanks, other control characters, invisible
/// ones and unpaired surrogates become "\u001b".
QString printable(const QString& text);

/// Whether standard output shows colours: it is a terminal, and the user has not set `NO_COLOR`.
bool hasColours();

} // namespace checker
