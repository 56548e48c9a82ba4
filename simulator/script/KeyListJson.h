// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/script/KeyScript.h"

/// The three key-list files of a device: as rows, as JSON and in a folder.
namespace KeyListJson {

/// File name to content.
using Files = QMap<QString, QByteArray>;

struct Parsed
{
    /// Every row of the files, as far as it can be told.
    QVector<KeyRow> rows;
    /// A sentence for each file and each row that a script's rows cannot stand for.
    QStringList faults;
};

QStringList fileNames();

/// The files that have just these rows.
Files filesOf(const QVector<KeyRow>& rows);
/// The files of the rows of `script`; none without rows.
Files filesOf(const KeyScript& script);
Parsed rowsOf(const Files& files);

/// The key lists in `folder`; those that cannot be read are left out.
Files read(const QString& folder);
/// Whether both have the same files with the same JSON in them.
bool areEqual(const Files& one, const Files& other);

} // namespace KeyListJson
