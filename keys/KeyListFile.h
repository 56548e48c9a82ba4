// SPDX-License-Identifier: MIT
#pragma once

#include "keys/EnumDetail.h"
#include "keys/KeyEntry.h"

#include <QDebug>
#include <QList>
#include <QVariantMap>

namespace ls {
class IReader;
}

/// Loads a key-list file: the part that is the same for the three recognisers.
class KeyListFile
{
public:
    /// Whether the rows' "timeout" counts; without it every row's timeout is 0.
    enum class Timeouts { Ignored, Read };

    /// The function `loader` (as the compiler writes its signature) is named in the messages.
    KeyListFile(const QString& fileName, EnumDetail::RowKeyList section, Timeouts timeouts,
                const char* loader);

    /// Reads the rows, in file order and as they are written. When the file has no list of rows, log lines
    /// name the fault and `rows` and `content` stay empty.
    void load(ls::IReader& reader);

    /// The rows of the section.
    QList<KeyEntry> rows() const { return m_rows; }
    /// The whole top-level map of the file.
    QVariantMap content() const { return m_content; }

private:
    QDebug error() const;
    KeyEntry entry(const QVariantMap& row) const;

    QString m_path;
    QString m_section;
    Timeouts m_timeouts;
    const char* m_loader;
    QList<KeyEntry> m_rows;
    QVariantMap m_content;
};
