// SPDX-License-Identifier: MIT
#pragma once

#include "model/Effect.h"
#include "model/Input.h"
#include "model/KeyLists.h"
#include "model/RowTables.h"
#include "model/Situation.h"

namespace model {

/// The daemon as a function from a situation and an input to the next situation and the effects. The daemon's
/// classes define what is correct; tests compare each step with them.
class KeyModel
{
public:
    /// What the canonical situations keep apart.
    enum class Scope {
        Everything,
        /// Only which rows are completed and announced, for lists of which only one has rows. This is exact:
        /// the recognisers do not read each other's state, and the flag that they share, "gesture seen",
        /// decides about single keys and speech but never about a reset.
        RowsOfOneList,
    };

    explicit KeyModel(const KeyLists& lists, Scope scope = Scope::Everything);

    const KeyLists& lists() const { return m_lists; }
    const RowTables& rows() const { return m_rows; }

    /// The situation after `input`. Replaces `effects` with those of this step, in order.
    Situation step(Situation situation, Input input, Effects& effects) const;

    /// The same situation for all situations that behave alike within the scope. `step` accepts any.
    Situation canonical(Situation situation) const;

private:
    KeyLists m_lists;
    RowTables m_rows;
    Scope m_scope;
};

} // namespace model
