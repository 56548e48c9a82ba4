// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>

/// A leak of Qt's JSON reader: of two members with the same name in an object, it never frees the first value
/// if that is a list or an object.
namespace JsonLeaks {

/// Whether reading `text` leaks memory. Always false in a build without the address sanitizer.
bool occurIn(const QByteArray& text);

} // namespace JsonLeaks
