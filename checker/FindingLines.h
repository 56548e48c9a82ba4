// SPDX-License-Identifier: MIT
#pragma once

#include "checker/Finding.h"
#include "checker/ListSources.h"

namespace checker {

/// Findings as compilers print them, for editors and screen readers: without excerpts, one sentence a line.
namespace FindingLines {

/// A line with place, level, message and id, then a line for each related place with a remark, then the help:
/// "modifierKeyList.json:6:19: error: no keys announce "NextPage" [hidden]".
QString of(const Finding& finding, const ListSources& sources);

} // namespace FindingLines

} // namespace checker
