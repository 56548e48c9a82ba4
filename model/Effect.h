// SPDX-License-Identifier: MIT
#pragma once

#include "model/Alphabet.h"
#include "model/KeyLists.h"

#include <QVarLengthArray>

namespace model {

/// The rules by which the daemon handles an input. Each rule that applies has an effect.
enum class Rule : quint8 {
    StartupRefuses, // a press in Startup speaks "starting up"
    StartupIgnores, // a release or repetition in Startup
    ShortcutOpens,
    ShortcutCompletes,
    ShortcutCloses,
    CombinationOpens,
    CombinationCompletes, // the closing key is spoken
    SequenceHides,        // a row of three or more keys does not match and hides the rows after it
    LongPressArms,
    LongPressContinues, // a repetition while a long press is timed
    LongPressStops,
    LongPressCompletes,
    Announces,      // a row's action in a state that the row names
    RefusesState,   // a row's action in another state
    DropsReceiver,  // a row's action for the receiver "Undefined"
    MarksGesture,   // suppresses names and lone keys until the keys are forgotten
    WindowOpens,    // a release starts the 1500 ms
    KeyReplaced,    // another release replaces the waiting key
    MenuSentAtOnce, // in Idle
    MenuWaits,      // in Idle, right after Help
    NameSpoken,     // in Idle
    NameSilenced,   // in Idle, after a gesture
    NameOmitted,    // in Idle, for a key without feedback
    KeyWaits,       // for the end of the window
    LoneKeySent,    // at the end of the window
    LoneKeyUsedUp,  // at the end of the window, after a gesture
    LoneKeyDropped, // at the end of the window, if the state is no longer Idle
    KeySentAtOnce,  // in the other states
    TestNameSpoken, // in the keyboard test
    TestCounts,     // in the keyboard test; the key Unknown also without it
    TestEnds,       // with Ten, which is announced as Ok
    TestBegins,
    KeysForgotten, // after a single key and at the end of the window
    WindowCloses,
    FactoryResetStarts,
    FactoryResetStops,
    FactoryResetCompletes,
    StateChanges,
};
constexpr int ruleCount = static_cast<int>(Rule::StateChanges) + 1;

/// What a rule did to a key or a row.
struct Effect
{
    Rule rule = Rule::StateChanges;
    Key key = Key::None;
    /// The row of a rule about rows; for other rules, `index` is -1.
    RowId row{List::LongPresses, -1};
    /// How often the action is announced or refused: a long press is tried in each state that it names.
    quint32 count = 1;
};

using Effects = QVarLengthArray<Effect, 16>;

/// The parts of a situation on which effects depend.
enum class Part : quint8 {
    State,
    LastKey,
    HeldKey,
    FirstKey,
    Sequence,
    ArmedKey,
    GestureSeen,
    TestMode,
    Window,
    FactoryReset,
};
constexpr int partCount = static_cast<int>(Part::FactoryReset) + 1;

/// A set of parts, with a bit for each.
using Parts = quint16;

namespace Rules {

QString nameOf(Rule rule);
/// The parts that decide whether the rule applies, and the parts that it sets or clears.
Parts read(Rule rule);
Parts written(Rule rule);
/// Whether the rule causes speech or an announcement.
bool isPerceived(Rule rule);

} // namespace Rules

} // namespace model
