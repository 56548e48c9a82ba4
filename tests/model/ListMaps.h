// SPDX-License-Identifier: MIT
#pragma once

#include "model/KeyLists.h"
#include "simulator/script/KeyScript.h"

#include <QVariantMap>

/// Key lists for tests of the model, loaded by the daemon's loader.
namespace ListMaps {

/// The lists in a map with the sections of all three files.
model::KeyLists listsOf(const QVariantMap& sections, bool isOrvane);
/// Such a map of `lists`.
QVariantMap mapOf(const model::KeyLists& lists);
/// The names and contents of the three key-list files of `lists`.
QMap<QString, QByteArray> filesOf(const model::KeyLists& lists);

model::KeyLists ofRows(const QVector<KeyRow>& rows, bool isOrvane = false);
/// The installed lists.
model::KeyLists installed(bool isOrvane = false);

/// The lists of the key scripts in `folder` that have rows, by the names of the scripts.
QMap<QString, model::KeyLists> ofScripts(const QString& folder);

} // namespace ListMaps
