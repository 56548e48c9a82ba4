// SPDX-License-Identifier: MIT
#pragma once

#include "card/KeyCard.h"

#include <QByteArray>
#include <QString>

/// The key card in the formats of `card`.
namespace checker::CardReport {

/// For a terminal; each action has a line for its keys and one for what they do.
QString text(const KeyCard& card);
/// A document without scripts, for a browser and for printing.
QString html(const KeyCard& card);
/// As the front panel's page receives it.
QByteArray json(const KeyCard& card);

} // namespace checker::CardReport
