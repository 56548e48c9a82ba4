// SPDX-License-Identifier: MIT
#pragma once

#include "model/KeyModel.h"

/// Explains why rows are never announced.
namespace NeverReasons {

/// A sentence or several about a row that is proved never to be announced.
QString of(const model::KeyModel& keyModel, model::RowId row);

/// For each state that the row names, a sentence why it is not announced there although its keys complete it;
/// empty if it may be announced. Without duplicates.
QStringList byState(const model::KeyLists& lists, model::RowId row);

} // namespace NeverReasons
