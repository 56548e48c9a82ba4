// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

/// The value of a key's input record.
namespace KeyValue {

constexpr qint32 released = 0;
constexpr qint32 pressed = 1;
constexpr qint32 repeated = 2;

} // namespace KeyValue
