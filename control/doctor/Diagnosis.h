// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QVector>

namespace control {

/// The result of one check.
struct Diagnosis
{
    /// `Unknown`: this user, or this system, does not allow the check.
    enum class Level { Ok, Unknown, Warning, Failure };

    /// Stable; one word. A check may have several results.
    QString check;
    Level level = Level::Ok;
    /// A sentence or several; may contain texts of the files and of the bus.
    QString cause;
    /// What to do; empty if there is nothing to do.
    QString remedy;
    /// The document that says more, such as `log-lines.md#keys`; may be empty.
    QString document;

    /// "ok", "unknown", "warning" or "failure".
    static QString nameOf(Level level);
};

using Diagnoses = QVector<Diagnosis>;

} // namespace control
