// SPDX-License-Identifier: MIT
#pragma once

#include "workbench/card/KeyCard.h"

#include <QJsonObject>

/// `card` as described in docs/panel-api.md.
QJsonObject toJson(const KeyCard& card);
