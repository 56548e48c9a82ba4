// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// The texts of the sentences that the daemon speaks.
namespace Sentences {

/// The text of `sentence` in the translation file number `file`; empty if unknown.
QString textOf(int file, int sentence);

} // namespace Sentences
