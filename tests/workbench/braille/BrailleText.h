// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QByteArrayList>
#include <QString>
#include <QVector>

/// Reads the pages of a BRF file and their text.
namespace BrailleText {

/// The pages, as lines without line ends.
QVector<QByteArrayList> pages(const QByteArray& brf);
/// The text of cells, by back-translation.
QString textOf(const QByteArray& cells);
/// The text of all lines except the running heads, with split words joined.
QString body(const QByteArray& brf);

} // namespace BrailleText
