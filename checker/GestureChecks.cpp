// SPDX-License-Identifier: MIT
#include "checker/GestureChecks.h"

#include "checker/Gesture.h"
#include "checker/OutputWords.h"
#include "checker/RowStates.h"

#include <QSet>

#include <algorithm>

namespace checker {

using model::List;
using model::PlayedStep;
using model::RowId;
using model::State;

namespace {

/// More rows with the same keys are reported as such.
constexpr int maxOthers = 3;

/// Checks one gesture in all states.
class GestureCheck
{
public:
    GestureCheck(const model::KeyModel& keyModel, const RowPlaces& places, RowId id)
        : m_model(keyModel), m_places(places), m_id(id)
    {}

    QVector<Finding> findings();

private:
    void checkIn(State state);
    void addSilent();
    void addOthers();

    const model::KeyModel& m_model;
    const RowPlaces& m_places;
    RowId m_id;
    QVector<State> m_silentStates;
    QVector<RowId> m_others; // the rows that the gesture announces as well
    QVector<Finding> m_findings;
};

/// The gesture of a row, and its action.
QString gestureOf(const model::KeyLists& lists, RowId id)
{
    return QStringLiteral("%1 (%2)").arg(Gesture::toText(lists, id), lists.row(id).eAction());
}

bool hasPerceived(const PlayedStep& step)
{
    return std::any_of(step.outputs.begin(), step.outputs.end(), OutputWords::isPerceived);
}

QVector<Finding> GestureCheck::findings()
{
    for (const State state : model::Alphabet::states()) {
        if (state != State::Undefined) {
            checkIn(state);
        }
    }
    addSilent();
    addOthers();
    return m_findings;
}

void GestureCheck::checkIn(State state)
{
    const model::Playback playback = Gesture::play(m_model, m_id, state);
    const auto& steps = playback.steps();
    if (std::none_of(steps.begin(), steps.end(), hasPerceived)) {
        m_silentStates.append(state);
    }
    QVector<RowId> announced;
    for (const PlayedStep& step : steps) {
        for (const model::Effect& effect : step.effects) {
            if (effect.rule == model::Rule::Announces) {
                announced.append(effect.row);
            }
        }
    }
    if (!announced.contains(m_id)) {
        return;
    }
    for (const RowId other : qAsConst(announced)) {
        if (m_others.size() < maxOthers && !(other == m_id) && !m_others.contains(other)) {
            m_others.append(other);
        }
    }
}

void GestureCheck::addSilent()
{
    if (!m_silentStates.isEmpty()) {
        Finding finding;
        finding.id = QStringLiteral("silent");
        finding.message = QStringLiteral("in %1, %2 causes neither speech nor an action")
                              .arg(RowStates::toText(m_silentStates), gestureOf(m_model.lists(), m_id));
        finding.row = m_id;
        finding.place = m_places.whole(m_id);
        finding.help =
            QStringLiteral("accept the silence with --allow silent:%1, or choose other keys for the row")
                .arg(m_model.lists().row(m_id).eAction());
        m_findings.append(finding);
    }
}

void GestureCheck::addOthers()
{
    for (const RowId other : qAsConst(m_others)) {
        Finding finding;
        finding.id = QStringLiteral("also");
        finding.level = Level::Note;
        finding.message = QStringLiteral("%1 announces \"%2\" as well")
                              .arg(gestureOf(m_model.lists(), m_id), m_model.lists().row(other).eAction());
        finding.row = m_id;
        finding.place = m_places.whole(m_id);
        finding.related.append(m_places.whole(other));
        finding.related.last().remark = QStringLiteral("the other action");
        m_findings.append(finding);
    }
}

/// Of several long presses with the same key, the last one decides.
bool isHiddenLongPress(const model::KeyModel& keyModel, RowId id)
{
    const auto key = model::Alphabet::keyOf(keyModel.lists().row(id).firstKey());
    return id.list == List::LongPresses && key && keyModel.rows().longPressOf(*key) != id.index;
}

} // namespace

QVector<Finding> GestureChecks::of(const model::KeyLists& lists, const RowPlaces& places,
                                   const QVector<RowId>& ids)
{
    const model::KeyModel keyModel(lists);
    QVector<Finding> findings;
    QSet<QString> played;
    for (const RowId id : ids) {
        const QString gesture = Gesture::toText(lists, id);
        const bool isPlayed = isHiddenLongPress(keyModel, id) || played.contains(gesture);
        if (Gesture::isPossible(lists.row(id)) && !isPlayed) {
            played.insert(gesture);
            findings += GestureCheck(keyModel, places, id).findings();
        }
    }
    return findings;
}

} // namespace checker
