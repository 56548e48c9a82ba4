// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>

struct KeyCard;

/// The card as a BRF file for embossing: pages of 25 lines of 40 cells, with each state and the rows that
/// never work starting a new page. Single keys with the same outcome are grouped.
///
/// Without the tables of liblouis, returns an empty array and sets `error` (may be null) to a sentence. Not
/// thread-safe, because liblouis is not.
QByteArray brailleCard(const KeyCard& card, QString* error);
