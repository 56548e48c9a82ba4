// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// The statements that can be typed at a prompt, one a line with what it does.
QString statementHelp();
