// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// The file of the option --record.
namespace RecordingFile {

/// Returns a sentence if `path` is not writable, otherwise an empty string. Creates an empty file if there is
/// none.
QString check(const QString& path);

/// Writes `text` to `path`. On failure, saves it to a new temporary file and returns a sentence that names
/// this file; otherwise returns an empty string.
QString write(const QString& path, const QString& text);

} // namespace RecordingFile
