// SPDX-License-Identifier: MIT
#pragma once

#include "model/Effect.h"
#include "model/KeyLists.h"

#include <QStringList>
#include <QVector>

namespace model {

/// An observable action of the daemon.
struct Output
{
    enum class Kind { Cancel, Speak, Announce, Log };

    Kind kind = Kind::Cancel;
    /// The translation file of a sentence, the action of an announcement, or the log line.
    QString text;
    /// The number of the sentence.
    int sentence = 0;
    QString receiver;
    /// The keys that an announcement names: one or two.
    QStringList keys;

    /// The output in the words of key scripts. `sender` is that of an announcement and may be empty.
    QString toText(const QString& sender) const;
};

namespace Outputs {

/// The outputs of the effects of one step, in order. `state` is the state after the step.
QVector<Output> of(const Effects& effects, const KeyLists& lists, State state);

} // namespace Outputs

} // namespace model
