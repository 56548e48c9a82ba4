// SPDX-License-Identifier: MIT
#pragma once

#include "workbench/card/KeyCard.h"

#include <QJsonObject>

/// `card` as docs/key-card.md describes it.
QJsonObject toJson(const KeyCard& card);
