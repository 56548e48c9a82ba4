// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// The texts of the sentences that the daemon asks for.
namespace Sentences {

/// The text of a sentence of the translation file number `file`; empty for one that is not known.
QString textOf(int file, int sentence);

} // namespace Sentences
