// SPDX-License-Identifier: MIT
#pragma once

#include "model/Playback.h"

#include <QStringList>

namespace checker {

/// Says which rows of two keys a person has missed by little: a key came too late, was released too early, or
/// came in the wrong order.
class MissedRows
{
public:
    /// Only rows of `action`, unless that is null. `lists` must outlive this object.
    explicit MissedRows(const model::KeyLists& lists, const QString& action = {})
        : m_lists(lists), m_action(action)
    {}

    /// A phrase for each row that the key of a step would have completed with other times or in another
    /// order. Each row does work that way: it is played. `step` is an index.
    QStringList phrasesOf(const QVector<model::PlayedStep>& steps, int step) const;

private:
    struct Keys
    {
        model::Key first = model::Key::None;
        model::Key second = model::Key::None;
        model::State state = model::State::Undefined;
    };

    QStringList afterPress(const QVector<model::PlayedStep>& steps, int step) const;
    QStringList afterRelease(const QVector<model::PlayedStep>& steps, int step) const;
    /// The actions that the keys announce, as a shortcut or as a combination.
    QStringList actionsOf(model::List list, const Keys& keys) const;
    QVector<model::RowId> announcedRows(model::List list, const Keys& keys) const;

    const model::KeyLists& m_lists;
    QString m_action;
};

} // namespace checker
