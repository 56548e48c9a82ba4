// SPDX-License-Identifier: MIT
#pragma once

#include "keys/EnumDetail.h"
#include "keys/KeyEntry.h"

#include <QList>
#include <QVariantMap>

#include <limits>

namespace ls {
class IReader;
}

/// The members of a row in a key-list file.
namespace KeyListFields {

inline const QString keys = QStringLiteral("keys");
inline const QString eAction = QStringLiteral("eAction");
inline const QString receiverService = QStringLiteral("receiverService");
/// In seconds; read from the long-press list only.
inline const QString timeout = QStringLiteral("timeout");
inline const QString validOnState = QStringLiteral("validOnState");

} // namespace KeyListFields

/// The content of a key-list file, and its loader, which the three recognisers share.
struct KeyListFile
{
    /// In bytes. A larger file is not read, because its values could exceed the memory limit of the daemon.
    static constexpr qint64 maxSize = 1024 * 1024;
    /// The longest time of a long press; a larger number counts as this one.
    static constexpr int maxSeconds = std::numeric_limits<int>::max() / 1000;

    /// Reads `section` of the file `fileName` in the data directory. If the file has no list of rows, logs
    /// the fault and leaves both members empty. The log lines name the function with the signature `loader`.
    static KeyListFile load(ls::IReader& reader, const QString& fileName, EnumDetail::RowKeyList section,
                            const char* loader);
    /// Like `load`, but for content that has already been read.
    static KeyListFile take(const QVariantMap& content, EnumDetail::RowKeyList section, const char* loader);
    /// The key of the section in the file.
    static QString sectionName(EnumDetail::RowKeyList section);

    /// The rows of the section, in file order and as written.
    QList<KeyEntry> rows;
    /// The whole top-level map of the file.
    QVariantMap content;
};
