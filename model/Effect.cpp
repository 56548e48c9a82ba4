// SPDX-License-Identifier: MIT
#include "model/Effect.h"

#include <iterator>

namespace model {

namespace {

constexpr Parts bit(Part part)
{
    return static_cast<Parts>(1U << static_cast<unsigned>(part));
}

/// The descriptions of the rules. The namespace keeps its short names from other sources.
namespace table {

constexpr Parts noPart = 0;
constexpr Parts state = bit(Part::State);
constexpr Parts last = bit(Part::LastKey);
constexpr Parts held = bit(Part::HeldKey);
constexpr Parts first = bit(Part::FirstKey);
constexpr Parts sequence = bit(Part::Sequence);
constexpr Parts armed = bit(Part::ArmedKey);
constexpr Parts gesture = bit(Part::GestureSeen);
constexpr Parts test = bit(Part::TestMode);
constexpr Parts window = bit(Part::Window);
constexpr Parts reset = bit(Part::FactoryReset);

struct Description
{
    const char* name;
    Parts read;
    Parts written;
    bool isPerceived;
};

// In the order of the rules.
constexpr Description descriptions[] = {
    {"StartupRefuses", state, noPart, true},
    {"StartupIgnores", state, noPart, false},
    {"ShortcutOpens", held, held, false},
    {"ShortcutCompletes", held, noPart, false},
    {"ShortcutCloses", held, held, false},
    {"CombinationOpens", first, static_cast<Parts>(first | sequence), false},
    {"CombinationCompletes", static_cast<Parts>(first | sequence), sequence, true},
    {"SequenceHides", static_cast<Parts>(first | sequence), sequence, false},
    {"LongPressArms", armed, armed, false},
    {"LongPressContinues", armed, noPart, false},
    {"LongPressStops", armed, armed, false},
    {"LongPressCompletes", armed, armed, false},
    {"Announces", state, noPart, true},
    {"RefusesState", state, noPart, false},
    {"DropsReceiver", noPart, noPart, false},
    {"MarksGesture", noPart, gesture, false},
    {"WindowOpens", noPart, window, false},
    {"KeyReplaced", last, last, false},
    {"MenuSentAtOnce", static_cast<Parts>(state | last), noPart, true},
    {"MenuWaits", static_cast<Parts>(state | last), noPart, false},
    {"NameSpoken", static_cast<Parts>(state | gesture), noPart, true},
    {"NameSilenced", static_cast<Parts>(state | gesture), noPart, false},
    {"NameOmitted", state, noPart, false},
    {"KeyWaits", state, last, false},
    {"LoneKeySent", static_cast<Parts>(state | last | gesture), noPart, true},
    {"LoneKeyUsedUp", static_cast<Parts>(state | last | gesture), noPart, false},
    {"LoneKeyDropped", static_cast<Parts>(state | last), noPart, false},
    {"KeySentAtOnce", static_cast<Parts>(state | test), noPart, true},
    {"TestNameSpoken", static_cast<Parts>(state | test), noPart, true},
    {"TestCounts", static_cast<Parts>(state | test), last, false},
    {"TestEnds", static_cast<Parts>(state | test), test, true},
    {"TestBegins", noPart, test, false},
    {"KeysForgotten", noPart, static_cast<Parts>(last | held | first | sequence | armed | gesture), false},
    {"WindowCloses", window, window, false},
    {"FactoryResetStarts", noPart, reset, false},
    {"FactoryResetStops", reset, reset, false},
    {"FactoryResetCompletes", reset, reset, true},
    {"StateChanges", noPart, state, false},
};
static_assert(std::size(descriptions) == ruleCount);

} // namespace table

const table::Description& descriptionOf(Rule rule)
{
    return table::descriptions[static_cast<size_t>(rule)];
}

} // namespace

QString Rules::nameOf(Rule rule)
{
    return QString::fromLatin1(descriptionOf(rule).name);
}

Parts Rules::read(Rule rule)
{
    return descriptionOf(rule).read;
}

Parts Rules::written(Rule rule)
{
    return descriptionOf(rule).written;
}

bool Rules::isPerceived(Rule rule)
{
    return descriptionOf(rule).isPerceived;
}

} // namespace model
