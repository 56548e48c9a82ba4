// SPDX-License-Identifier: MIT
#pragma once

#include "model/RowProofs.h"
#include "workbench/card/CardTypes.h"

#include <QHash>

#include <optional>

/// Plays gestures on the model of the keys and describes what they announce.
class CardGestures
{
public:
    /// `keyModel` must outlive this object.
    explicit CardGestures(const model::KeyModel& keyModel) : m_model(keyModel) {}

    /// A tap of `key` in `state`; nothing if it is not announced.
    std::optional<KeyCardEntry> singleKey(model::Key key, model::State state) const;
    /// The hold of FactoryReset in `state`; nothing if it is not announced.
    std::optional<KeyCardEntry> factoryReset(model::State state) const;
    /// The gesture of `row`, which is announced by the witness of `verdict`.
    KeyCardEntry gesture(model::RowId row, const model::RowVerdict& verdict);

    static KeyCardKind kindOf(model::List list);

private:
    /// A gesture that is completed, with its keys still down, and then ended by releasing them.
    struct Played
    {
        QStringList keys;
        /// When the last key of the gesture was moved or its time expired.
        int completedAt = 0;
        QVector<KeyCardConsequence> consequences;
        /// Sentences about the keys before the last one.
        QStringList notes;
        /// How often the rows are announced at that moment.
        QMap<model::RowId, int> times;
        /// All rows that are announced, in order, and those that only one order of releases announces, by
        /// the key that is released first.
        QVector<model::RowId> rows;
        QMap<QString, QVector<model::RowId>> rowsAfter;
    };

    const Played& play(model::List list, const model::RowVerdict& verdict);
    Played played(model::List list, const model::Environment& environment, const model::Run& run) const;
    QStringList othersOf(model::RowId row, const Played& played) const;

    const model::KeyModel& m_model;
    /// Thousands of rows may share a run.
    QHash<QByteArray, Played> m_played;
};
