// SPDX-License-Identifier: MIT
#pragma once

#include "checker/PlaceOf.h"
#include "model/Playback.h"

namespace checker {

/// Says in words what the rules of the daemon did with a key.
class EffectWords
{
public:
    /// `lists` must outlive this object.
    EffectWords(const model::KeyLists& lists, const PlaceOf& placeOf) : m_lists(lists), m_placeOf(placeOf) {}

    /// The event of a step: "Help down", "state Print".
    static QString eventOf(const model::PlayedStep& step);
    /// One phrase for each effect of the step that matters to a person; may be empty. `step` is an index.
    QStringList phrasesOf(const QVector<model::PlayedStep>& steps, int step) const;

    /// Why the action of an effect was refused or dropped: "LoadPaper is refused: it is valid in PrintOff and
    /// the state is Idle"; empty for other effects, and if the same step announces the action.
    QString refusal(const model::PlayedStep& step, const model::Effect& effect) const;
    /// Why the step does not complete a row of the action, or the factory reset, which needs little more: a
    /// key came too late, was released too early, or came in the wrong order.
    QStringList missed(const QVector<model::PlayedStep>& steps, int step, const QString& action) const;
    /// "row 4 of shortcutKeyList.json, LoadPaper".
    QString nameOf(model::RowId row) const;
    /// The states that the row names.
    QString statesOf(model::RowId row) const;

private:
    QString phraseOf(const QVector<model::PlayedStep>& steps, int step, int effect) const;
    QString phraseOfRow(const QVector<model::PlayedStep>& steps, int step, const model::Effect& effect) const;
    QString earliness(const QVector<model::PlayedStep>& steps, int step, model::RowId row) const;
    QString phraseOfKey(const model::PlayedStep& step, const model::Effect& effect) const;
    QString phraseOfSilence(const QVector<model::PlayedStep>& steps, int step) const;
    bool isGesture(const model::Effect& effect) const;
    QString closedDoor(const model::PlayedStep& step) const;
    QString hiddenBy(const model::PlayedStep& step, const model::Effect& effect) const;
    QString actionOf(model::RowId row) const;
    QString placed(const QString& phrase, model::RowId row) const;

    const model::KeyLists& m_lists;
    PlaceOf m_placeOf;
};

} // namespace checker
