// SPDX-License-Identifier: MIT
#pragma once

#include <QVariant>

namespace libvantre {

/// Turns a value as it came from the bus into plain variants, at any depth: bus arguments, bus variants,
/// object paths, signatures and nested containers. Arrays and structures become variant lists (arrays of
/// strings `QStringList`, of bytes `QByteArray`), dictionaries variant maps keyed by the text of their
/// keys. A file descriptor becomes an invalid variant. Any other value is returned unchanged.
QVariant dbusArgumentUnpack(const QVariant& value);

} // namespace libvantre
