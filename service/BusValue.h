// SPDX-License-Identifier: MIT
#pragma once

#include <QVariantMap>

/// A copy of `map` that a bus message can carry: a null, or a value nested too deeply for a message, becomes
/// an empty string. Commands return key-list files as written, which may contain such values.
QVariantMap toBusMap(const QVariantMap& map);
