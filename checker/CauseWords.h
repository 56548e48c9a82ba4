// SPDX-License-Identifier: MIT
#pragma once

#include "checker/CauseSearch.h"
#include "checker/EffectWords.h"

namespace checker {

/// Says in words what keys did not do, and why.
class CauseWords
{
public:
    /// Both must outlive this object.
    CauseWords(const CauseSearch& search, const EffectWords& effects) : m_search(search), m_effects(effects)
    {}

    /// "Ok is not spoken", "LoadPaper is refused".
    QString factOf(const Swallowed& swallowed) const;
    /// The causes that `CauseSearch` has found, joined by "and"; a sentence without causes if there are none.
    QString causesOf(const Swallowed& swallowed, const QVector<Edit>& causes) const;
    /// "It would have worked in PrintOff."; empty if no other state would have helped. `firstStep` is the
    /// step of the script with which the keys begin.
    QString remedyOf(const Swallowed& swallowed, int firstStep) const;

private:
    QString causeOf(const Swallowed& swallowed, const Edit& cause) const;
    QString rowCause(const Swallowed& swallowed, model::RowId row) const;
    QString stepCause(const Swallowed& swallowed, const Edit& cause) const;

    const CauseSearch& m_search;
    const EffectWords& m_effects;
};

} // namespace checker
