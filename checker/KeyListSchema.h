// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>

namespace checker {

/// The JSON Schema with which editors complete and check key lists while they are written.
namespace KeyListSchema {

/// One schema for the three files, in draft-07, which most editors support. `data/key-list.schema.json` is a
/// copy of it.
QByteArray text();

} // namespace KeyListSchema

} // namespace checker
