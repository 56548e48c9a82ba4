// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace ls {

/// An identifier of a family (key, service, state, ...), carried as its text; compared exactly.
using EnumKey = QString;

} // namespace ls
