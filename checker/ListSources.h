// SPDX-License-Identifier: MIT
#pragma once

#include "checker/SourceFile.h"
#include "model/KeyLists.h"

#include <QMap>
#include <QStringList>

#include <array>

namespace checker {

/// The files of the three key lists.
struct ListSources
{
    /// Indexed by `model::List`; the text of a file that is not there is empty.
    std::array<SourceFile, 3> files;
    /// The lists whose files were read.
    QVector<model::List> found;
    /// Remarks for the user, such as which lists count as empty.
    QStringList notes;
    /// Why nothing could be read; empty on success.
    QString fault;

    /// Reads the key lists in a folder, or single files, which are recognised by their sections; "-" is
    /// standard input. Without `paths`, reads the current folder.
    static ListSources read(const QStringList& paths);

    /// Key lists that are in memory, by the names of their files.
    static ListSources of(const QMap<QString, QByteArray>& contents);

    const SourceFile& file(model::List list) const { return files[static_cast<size_t>(list)]; }
    /// The notes, and which of the files have no readable list, for commands that do not check them.
    QStringList remarks() const;
    /// The rows, as the daemon's loader returns them.
    model::KeyLists lists(bool isOrvane) const;
};

} // namespace checker
