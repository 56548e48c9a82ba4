// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>

namespace libvantre {

/// The content of the file at `path`; symbolic links are followed. Empty if the file cannot be read, is not
/// a regular file or has more than `maxSize` bytes. Neither a FIFO nor a device file blocks the caller.
QByteArray readRegularFile(const QString& path, qint64 maxSize);

} // namespace libvantre
