// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// The file of the option --record.
namespace RecordingFile {

/// Why nothing can be written to `path`, as a sentence; empty when something can. The content of a file that
/// is there stays; one that is not there is created empty.
QString whyNotWritable(const QString& path);

/// Writes `text` to `path`. When that fails, it writes it to a new temporary file, so that nothing is lost,
/// and returns a sentence that names it; otherwise an empty text.
QString write(const QString& path, const QString& text);

} // namespace RecordingFile
