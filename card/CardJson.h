// SPDX-License-Identifier: MIT
#pragma once

#include "card/KeyCard.h"

#include <QJsonObject>

/// `card` as described in docs/panel-api.md.
QJsonObject toJson(const KeyCard& card);
