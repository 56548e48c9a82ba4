// SPDX-License-Identifier: MIT
#pragma once

#include "checker/ListSources.h"

namespace checker {

/// The rows of key lists as statements of a key script.
struct ScriptRows
{
    /// One statement for each row.
    QStringList statements;
    /// Why a script cannot hold these lists; empty if it can.
    QString fault;

    static ScriptRows of(const ListSources& sources);
};

} // namespace checker
