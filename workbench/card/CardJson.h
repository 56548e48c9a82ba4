// SPDX-License-Identifier: MIT
#pragma once

#include "workbench/card/KeyCard.h"

#include <QJsonObject>

/// `card` as docs/panel-api.md describes it.
QJsonObject toJson(const KeyCard& card);
