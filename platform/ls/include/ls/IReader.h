// SPDX-License-Identifier: MIT
#pragma once

#include <QVariantMap>

namespace ls {

/// Reads a file whose content is one map.
class IReader
{
public:
    virtual ~IReader() = default;

    /// Reads the file at `path` into `content`. Returns false, with `content` unchanged, if the file
    /// cannot be read or does not hold a map.
    virtual bool read(const QString& path, QVariantMap& content) = 0;
};

} // namespace ls
