// SPDX-License-Identifier: MIT
#pragma once

#include "tests/whole/fuzz/Bytes.h"

#include <QStringList>
#include <QVariant>

/// Values of every type that a bus message can hold, nested as the bytes say.
namespace BusValues {

/// Makes what the values need for the whole process; to be called once, before the first.
void prepare();

/// Never invalid, and of a depth that a message can hold.
QVariant value(Bytes& bytes);
/// A map whose keys are mostly of `keys`, and whose values that are texts are mostly of `words`.
QVariantMap map(Bytes& bytes, const QStringList& keys, const QStringList& words);

} // namespace BusValues
