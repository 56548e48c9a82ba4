// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringList>

namespace checker {

namespace Suggestion {

/// The name that resembles `word` most; empty if none does.
QString of(const QString& word, const QStringList& names);
/// The only name that `word` can mean, which differs from it in few letters; empty if there is none.
QString clear(const QString& word, const QStringList& names);
/// A question for the author: ": did you mean "Help"?"; empty if no name resembles `word`.
QString question(const QString& word, const QStringList& names);

} // namespace Suggestion

} // namespace checker
