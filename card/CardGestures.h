// SPDX-License-Identifier: MIT
#pragma once

#include "card/CardTypes.h"
#include "model/RowProofs.h"

#include <QHash>

/// Plays gestures on the model of the keys and describes what they announce.
class CardGestures
{
public:
    /// `keyModel` must outlive this object.
    explicit CardGestures(const model::KeyModel& keyModel) : m_model(keyModel) {}

    /// A tap of `key` in `state`; without receivers if it is not announced.
    KeyCardEntry singleKey(model::Key key, model::State state) const;
    /// The hold of FactoryReset in `state`; without receivers if it is not announced.
    KeyCardEntry factoryReset(model::State state) const;
    /// The gesture of `row`, which is announced by the witness of `verdict`.
    KeyCardEntry gesture(model::RowId row, const model::RowVerdict& verdict);

    static KeyCardKind kindOf(model::List list);
    /// The keys that decide whether the row is complete.
    static QStringList keysOf(const KeyEntry& row, model::List list);

private:
    /// A gesture that is completed, with its keys still down, and then ended by releasing them.
    struct Played
    {
        /// What the rows that it announces have in common.
        KeyCardEntry entry;
        /// How often the rows are announced at the moment of the completion.
        QMap<model::RowId, int> times;
        /// All rows that are announced, by the key that is released first; the key is empty if it does not
        /// matter.
        QMap<QString, QVector<model::RowId>> rows;
    };

    const Played& play(model::List list, const model::RowVerdict& verdict);
    Played played(model::List list, const model::Environment& environment, const model::Run& run) const;
    QStringList othersOf(model::RowId row, const Played& played) const;

    const model::KeyModel& m_model;
    /// Thousands of rows may share a run.
    QHash<QByteArray, Played> m_played;
};
