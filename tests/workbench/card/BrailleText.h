// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QByteArrayList>
#include <QString>
#include <QVector>

/// Reads what a blind reader reads: the pages of a BRF file and the text in them.
namespace BrailleText {

/// The pages, each as its lines without their ends.
QVector<QByteArrayList> pages(const QByteArray& brf);
/// The text of cells, by back-translation.
QString textOf(const QByteArray& cells);
/// The text of all lines but the running heads. Words that were broken are whole again.
QString body(const QByteArray& brf);

} // namespace BrailleText
