// SPDX-License-Identifier: MIT
#pragma once

#include "keys/EnumDetail.h"
#include "keys/KeyEntry.h"

#include <QList>
#include <QVariantMap>

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

/// What a key-list file says, and how it is loaded: the part that is the same for the three recognisers.
struct KeyListFile
{
    /// In bytes. A larger file is not read: its values could take more memory than the daemon may have.
    static constexpr qint64 maxSize = 1024 * 1024;

    /// Reads `section` of the file `fileName` in the data directory. When the file has no list of rows, log
    /// lines name the fault and both members are empty. The function `loader` (as the compiler writes its
    /// signature) is named in these lines.
    static KeyListFile load(ls::IReader& reader, const QString& fileName, EnumDetail::RowKeyList section,
                            const char* loader);
    /// The same for content that was read already.
    static KeyListFile take(const QVariantMap& content, EnumDetail::RowKeyList section, const char* loader);
    /// The key of the section in the file.
    static QString sectionName(EnumDetail::RowKeyList section);

    /// The rows of the section, in file order and as they are written.
    QList<KeyEntry> rows;
    /// The whole top-level map of the file.
    QVariantMap content;
};
