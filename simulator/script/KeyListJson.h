// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/script/KeyScript.h"

/// The three key-list files of a device: as rows, as JSON and in a folder.
namespace KeyListJson {

/// File name to content.
using Files = QMap<QString, QByteArray>;

struct Parsed
{
    /// Every row of the files that is an object.
    QVector<KeyRow> rows;
    /// A sentence for each file and each row that a script cannot represent.
    QStringList faults;
};

QStringList fileNames();

/// The files that hold these rows and no others.
Files filesOf(const QVector<KeyRow>& rows);
/// The files of the rows of `script`; none without rows.
Files filesOf(const KeyScript& script);
Parsed rowsOf(const Files& files);

/// The readable key lists in `folder`.
Files read(const QString& folder);
/// Whether both hold the same files with the same JSON.
bool areEqual(const Files& one, const Files& other);

} // namespace KeyListJson
