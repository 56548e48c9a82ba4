// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>

/// What the program prints about a device at its start.
namespace StartHints {

/// The rows of these key lists that no keys can complete, with the reasons; empty when there are none.
QString rowsThatNeverWork(const QMap<QString, QByteArray>& keyLists, const QString& model);

/// How other programs reach the bus at `address`, with a command for a shell.
QString bus(const QString& address);

} // namespace StartHints
