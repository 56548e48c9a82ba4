// SPDX-License-Identifier: MIT
#pragma once

#include <ls/Identifiers.h>

#include <QMap>
#include <QStringList>

namespace checker::RowNames {

/// The identifiers of a family that a row can mean: all but "Unknown", which means "no key".
inline QStringList of(const QMap<QString, int>& meta)
{
    QStringList names = meta.keys();
    names.removeOne(ls::KeyId::Unknown);
    return names;
}

} // namespace checker::RowNames
