// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>

struct KeyCard;

/// The card as a BRF file to be embossed: pages of 25 lines of 40 cells, each state from a new page on, then
/// the rows that never work. Single keys of which the same comes stand together.
///
/// Nothing without the tables of liblouis; `error` (may be null) is then a sentence. For one thread of the
/// program at a time, as liblouis is.
QByteArray brailleCard(const KeyCard& card, QString* error);
