// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>

namespace libvantre {

/// The content of the file at `path`; symbolic links are followed. Empty when it cannot be read, is not a
/// regular file or has more than `maxSize` bytes. Neither a FIFO nor a device file holds the caller up.
QByteArray readRegularFile(const QString& path, qint64 maxSize);

} // namespace libvantre
