// SPDX-License-Identifier: MIT
#pragma once

#include <QVariantMap>

/// A copy of `map` that a bus message can carry. Key-list files come back to callers as they were written,
/// but what the bus cannot carry (a null, a value nested deeper than a message may be) is replaced by an
/// empty string, so that the answer arrives.
QVariantMap toBusMap(const QVariantMap& map);
