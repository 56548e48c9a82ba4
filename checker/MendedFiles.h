// SPDX-License-Identifier: MIT
#pragma once

#include "checker/SourceFile.h"

namespace checker::MendedFiles {

/// Replaces the files by their new texts; the names are their paths. Each file is replaced as a whole or
/// stays as it is, and none is replaced before all texts are on the disk. Permissions stay as they are, and a
/// symbolic link continues to refer to its file. Returns why a file could not be replaced; empty on success.
QString replace(const QVector<SourceFile>& files);

} // namespace checker::MendedFiles
