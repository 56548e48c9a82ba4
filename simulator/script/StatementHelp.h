// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// One line for each statement of the prompt: its syntax and its effect.
QString statementHelp();
