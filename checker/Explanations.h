// SPDX-License-Identifier: MIT
#pragma once

#include "checker/Check.h"
#include "checker/Finding.h"
#include "checker/ListSources.h"

#include <QByteArray>
#include <QString>
#include <QVector>

#include <array>
#include <optional>

namespace checker {

/// Key lists that show a finding, or how to avoid it.
struct Example
{
    /// The contents of the files, indexed by `model::List`. A file without content is missing.
    std::array<QByteArray, 3> files;
    /// With which `check` gives the finding.
    CheckOptions options;
    /// The number of blanks to append to each file, which would be too many to print.
    int blanks = 0;

    /// What `check` reads, with the blanks.
    ListSources sources() const;
    /// The options as arguments of `check`; empty if all have their default values.
    QStringList arguments() const;
};

/// The description of all findings with one id.
struct Explanation
{
    QString id;
    /// The most severe level of such a finding.
    Level level = Level::Warning;
    /// One line without a full stop.
    QString title;
    /// Paragraphs without line breaks, separated by empty lines.
    QString text;
    /// Lists with this finding and no other. Not set if no list can show it.
    std::optional<Example> bad;
    /// Corrected lists, without findings. Set if `bad` is set.
    std::optional<Example> good;
};

namespace Explanations {

/// All explanations: faults of the text, of names and values, of the keys, and remarks.
const QVector<Explanation>& all();
/// The explanation of an id; null if no finding has it.
const Explanation* find(const QString& id);
/// A sentence if no finding has the id, with an id that resembles it; otherwise empty.
QString checkId(const QString& id);

} // namespace Explanations

} // namespace checker
