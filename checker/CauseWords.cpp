// SPDX-License-Identifier: MIT
#include "checker/CauseWords.h"

#include "checker/OutputWords.h"
#include "checker/RowStates.h"
#include "checker/Times.h"

using namespace model;

namespace checker {

QString CauseWords::factOf(const Swallowed& swallowed) const
{
    const QString key = Alphabet::nameOf(swallowed.key);
    const KeyLists& lists = m_search.original().keyModel().lists();
    const auto action = [&] { return OutputWords::enumeration({lists.row(swallowed.row).eAction()}); };
    switch (swallowed.kind) {
    case Swallowed::Kind::NotSpoken:
        return key + QStringLiteral(" is not spoken");
    case Swallowed::Kind::NotSent:
        return key + QStringLiteral(" is not sent");
    case Swallowed::Kind::Refused:
    case Swallowed::Kind::RefusedAlways:
        return action() + QStringLiteral(" is refused");
    case Swallowed::Kind::Dropped:
        return action() + QStringLiteral(" is dropped");
    case Swallowed::Kind::Hidden:
        return key + QStringLiteral(" completes no row");
    case Swallowed::Kind::Ignored:
        break;
    }
    return key + QStringLiteral(" is ignored");
}

QString CauseWords::causesOf(const Swallowed& swallowed, const QVector<Edit>& causes) const
{
    QStringList words;
    for (const Edit& cause : causes) {
        words.append(causeOf(swallowed, cause));
    }
    return words.isEmpty() ? QStringLiteral("not found")
                           : words.join(causes.size() == 1 ? QString() : QStringLiteral("; and "));
}

QString CauseWords::remedyOf(const Swallowed& swallowed, int firstStep) const
{
    if (swallowed.kind != Swallowed::Kind::Refused || firstStep == -1) {
        return {};
    }
    QStringList names;
    const QVector<State> states = RowStates::of(m_search.original().keyModel().lists(), swallowed.row);
    for (const State state : states) {
        Edit edit;
        edit.kind = Edit::Kind::InsertState;
        edit.steps = {firstStep};
        edit.state = state;
        if (state != State::Undefined && m_search.isMendedBy(swallowed, {edit})) {
            names.append(Alphabet::nameOf(state));
        }
    }
    return names.isEmpty() ? QString()
                           : QStringLiteral("It would have worked in ") +
                                 names.join(QStringLiteral(" and in ")) + QLatin1Char('.');
}

QString CauseWords::causeOf(const Swallowed& swallowed, const Edit& cause) const
{
    switch (cause.kind) {
    case Edit::Kind::RemoveRow:
        return rowCause(swallowed, cause.row);
    case Edit::Kind::ReleaseAtOnce:
        return QStringLiteral("FactoryReset was held until the factory reset");
    case Edit::Kind::InsertState:
        return swallowed.kind == Swallowed::Kind::Ignored
                   ? QStringLiteral("the state was Startup")
                   : QStringLiteral("%1 is valid in %2, and the state was %3")
                         .arg(m_effects.nameOf(swallowed.row), m_effects.statesOf(swallowed.row),
                              Alphabet::nameOf(m_search.original().steps().at(swallowed.step).after.state));
    case Edit::Kind::RemoveSteps:
        break;
    }
    return stepCause(swallowed, cause);
}

QString CauseWords::rowCause(const Swallowed& swallowed, RowId row) const
{
    const QString name = m_effects.nameOf(row);
    switch (swallowed.kind) {
    case Swallowed::Kind::RefusedAlways: {
        const bool namesState = !RowStates::of(m_search.original().keyModel().lists(), row).isEmpty();
        return QStringLiteral("%1 is valid in %2, %3")
            .arg(name, m_effects.statesOf(row),
                 namesState ? QStringLiteral("where these keys do not complete it")
                            : QStringLiteral("which is not a state"));
    }
    case Swallowed::Kind::Dropped:
        return QStringLiteral("the receiver of %1 is \"Undefined\"").arg(name);
    case Swallowed::Kind::Hidden:
        return QStringLiteral("%1 has three or more keys and hides the rows after it").arg(name);
    default:
        return QStringLiteral("%1 was completed, which uses up keys even if the action is refused").arg(name);
    }
}

/// A key that was released meanwhile, the factory reset, or a change of the state.
QString CauseWords::stepCause(const Swallowed& swallowed, const Edit& cause) const
{
    const Trial& trial = m_search.original();
    for (int i = 0; i < trial.steps().size(); ++i) {
        // From the step that decided back to the first, then the later ones.
        const int step = i <= swallowed.step ? swallowed.step - i : i;
        const PlayedStep& played = trial.steps().at(step);
        if (!cause.steps.contains(trial.idOf(step)) || played.origin == PlayedStep::Origin::Time) {
            continue;
        }
        const QString at = QStringLiteral(" at ") + Times::duration(played.at);
        switch (played.input.kind) {
        case Input::Kind::ChangeState:
            return QStringLiteral("the state became ") + Alphabet::nameOf(played.input.newState()) + at;
        case Input::Kind::Release:
            return Alphabet::nameOf(played.input.key()) + QStringLiteral(" was released") + at;
        default:
            return Alphabet::nameOf(played.input.key()) + QStringLiteral(" was pressed") + at;
        }
    }
    return QStringLiteral("a later key");
}

} // namespace checker
