// SPDX-License-Identifier: MIT
#pragma once

#include <ls/IReader.h>

#include <QObject>

namespace ls {

/// Reads JSON files whose top level is an object: numbers arrive as numbers, arrays as variant lists,
/// objects as variant maps; the last of duplicate keys counts. Only regular files of at most 16 MiB
/// are read, so that neither a FIFO nor a device file can block the caller.
class JFile : public QObject, public IReader
{
    Q_OBJECT

public:
    explicit JFile(QObject* parent = nullptr);

    bool read(const QString& path, QVariantMap& content) override;
};

} // namespace ls
