// SPDX-License-Identifier: MIT
#pragma once

#include "checker/ListSources.h"

#include <functional>

namespace checker {

/// The place of a row for the user.
using PlaceOf = std::function<QString(model::RowId)>;

namespace PlacesOf {

/// The file and the line of each row: "modifierKeyList.json:4".
PlaceOf rowsIn(const ListSources& sources);
/// The number of each row among those of its kind in a key script: "modifier row 2 of night.keys".
PlaceOf rowsInScript(const QString& path);

} // namespace PlacesOf

} // namespace checker
