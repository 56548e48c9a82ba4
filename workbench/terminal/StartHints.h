// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>

/// Hints that the program prints at the start of a device.
namespace StartHints {

/// The rows of the key lists that no keys can complete, with the reasons.
QString deadRows(const QMap<QString, QByteArray>& keyLists, const QString& model);

/// A shell command that accesses the bus at `address`.
QString bus(const QString& address);

} // namespace StartHints
