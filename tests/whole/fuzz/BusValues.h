// SPDX-License-Identifier: MIT
#pragma once

#include "tests/whole/fuzz/Bytes.h"

#include <QStringList>
#include <QVariant>

/// Generates values of every type that a bus message can hold, with any nesting.
namespace BusValues {

/// Must be called once before generating values.
void prepare();

/// Always valid, with a depth that a message can hold.
QVariant value(Bytes& bytes);
/// A map whose keys are mostly from `keys` and whose string values are mostly from `words`.
QVariantMap map(Bytes& bytes, const QStringList& keys, const QStringList& words);

} // namespace BusValues
