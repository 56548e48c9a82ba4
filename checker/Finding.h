// SPDX-License-Identifier: MIT
#pragma once

#include "checker/Mend.h"
#include "checker/SourceFile.h"
#include "model/Explorer.h"
#include "model/KeyLists.h"

#include <QString>
#include <QStringList>
#include <QVector>

#include <optional>

namespace checker {

enum class Level { Note, Warning, Error };

/// A part of a key list with a remark about it.
struct Place
{
    model::List list = model::List::LongPresses;
    Range range;
    /// May be empty.
    QString remark;
};

/// What a search has decided about a finding.
struct ProofNote
{
    /// The embosser model for which it holds; empty if it holds for all.
    QString embosser;
    model::Proof proof;
};

/// One fault or oddity of the key lists.
struct Finding
{
    /// Stable; `explain` describes it.
    QString id;
    Level level = Level::Warning;
    /// One sentence without a full stop.
    QString message;
    /// The row that it is about; the index is -1 if it is about the file.
    model::RowId row{model::List::LongPresses, -1};
    /// The place that the message is about.
    Place place;
    /// Other places that explain it.
    QVector<Place> related;
    std::optional<ProofNote> proof;
    /// What the author can do; may be empty.
    QString help;
    /// The change that `help` describes, if there is one that is safe.
    std::optional<Mend> mend;
    /// A key script that shows the finding; may be empty.
    QString witness;
};

} // namespace checker
