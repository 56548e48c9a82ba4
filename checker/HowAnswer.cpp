// SPDX-License-Identifier: MIT
#include "checker/HowAnswer.h"

#include "checker/ActionSearch.h"
#include "checker/BuiltInActions.h"
#include "checker/OutputWords.h"
#include "checker/Printable.h"
#include "checker/RowStates.h"
#include "checker/RunWords.h"
#include "checker/SearchWords.h"
#include "checker/Times.h"
#include "model/Witness.h"

#include <algorithm>

using namespace model;

namespace checker {

namespace {

const QString comment = QStringLiteral("# ");

/// Writes the paragraphs of an answer.
class HowWriter
{
public:
    HowWriter(const KeyLists& lists, const PlaceOf& placeOf, const std::optional<ScriptRows>& rows,
              HowAnswer& answer)
        : m_model(lists), m_placeOf(placeOf), m_rows(rows), m_answer(answer)
    {}

    /// All ways to one row.
    void write(const QVector<ActionWay>& ways);
    void writeBuiltIn(const QString& action, const QVector<State>& states);

private:
    QString wordsOf(const Run& run, const Environment& environment, State state) const;
    void writeAnnounced(const QVector<ActionWay>& ways);
    void writeOther(const ActionWay& way);
    void writeGroups(const std::vector<BuiltInActions::Group>& groups);
    void writeScript(const Playback& playback);
    void note(const RowVerdict& verdict);
    void add(const QString& text) { m_answer.paragraphs.last().append(comment + text); }

    KeyModel m_model;
    PlaceOf m_placeOf;
    std::optional<ScriptRows> m_rows;
    HowAnswer& m_answer;
};

void HowWriter::write(const QVector<ActionWay>& ways)
{
    const RowId row = ways.first().row;
    const KeyEntry& entry = m_model.lists().row(row);
    m_answer.paragraphs.append(QStringList());
    add(OutputWords::enumeration({entry.eAction()}) + QStringLiteral(" to ") +
        OutputWords::enumeration({entry.receiverService()}) + QStringLiteral("  [") + m_placeOf(row) +
        QLatin1Char(']'));
    QVector<ActionWay> announced;
    for (const ActionWay& way : ways) {
        note(way.verdict);
        if (way.verdict.kind == RowVerdict::Kind::Announced) {
            announced.append(way);
        } else {
            writeOther(way);
        }
    }
    writeAnnounced(announced);
}

void HowWriter::writeBuiltIn(const QString& action, const QVector<State>& states)
{
    for (const State state : states) {
        m_answer.paragraphs.append(QStringList());
        add(action + QStringLiteral(" without a row, in ") + Alphabet::nameOf(state));
        const auto groups = BuiltInActions::groups(action, m_model, state);
        writeGroups(groups);
        if (!groups.empty()) {
            m_answer.isAnnounced = true;
            writeScript(groups.front().playback);
            continue;
        }
        const RowVerdict verdict = BuiltInActions::search(action, m_model, state);
        const ActionWay way{{List::LongPresses, -1}, state, verdict, {}};
        note(verdict);
        if (verdict.kind == RowVerdict::Kind::Announced) {
            writeAnnounced({way});
        } else {
            writeOther(way);
        }
    }
}

QString HowWriter::wordsOf(const Run& run, const Environment& environment, State state) const
{
    const QString words = RunWords::of(m_model, environment, run);
    return run.start == state ? words
                              : QStringLiteral("begin in %1: %2").arg(Alphabet::nameOf(run.start), words);
}

/// States with the same way share a script.
void HowWriter::writeAnnounced(const QVector<ActionWay>& ways)
{
    QStringList allWords;
    QVector<QVector<State>> states;
    QVector<ActionWay> firstWays;
    for (const ActionWay& way : ways) {
        const QString words = wordsOf(way.verdict.witness, way.verdict.proof.environment, *way.state);
        int index = allWords.indexOf(words);
        if (index == -1) {
            index = allWords.size();
            allWords.append(words);
            states.append(QVector<State>());
            firstWays.append(way);
        }
        states[index].append(*way.state);
    }
    for (int i = 0; i < firstWays.size(); ++i) {
        if (i > 0) {
            m_answer.paragraphs.append(QStringList());
        }
        add(QStringLiteral("In ") + RowStates::toText(states.at(i)) + QStringLiteral(": ") + allWords.at(i));
        const RowVerdict& verdict = firstWays.at(i).verdict;
        writeScript(Witness::play(m_model, verdict.proof.environment, verdict.witness));
    }
}

void HowWriter::writeOther(const ActionWay& way)
{
    const QString where =
        way.state ? QStringLiteral("in ") + Alphabet::nameOf(*way.state) : QStringLiteral("in any state");
    if (way.verdict.kind == RowVerdict::Kind::NotProved) {
        add(QStringLiteral("Not proved %1: the search ended after %2.")
                .arg(where, SearchWords::extentOf(way.verdict.proof)));
        return;
    }
    const QStringList states = way.row.index < 0 ? QStringList() : m_model.lists().statesOf(way.row);
    if (way.row.index >= 0 && !(way.state && states.contains(Alphabet::nameOf(*way.state)))) {
        add(QStringLiteral("Never %1: the row is valid in %2.").arg(where, OutputWords::enumeration(states)));
        return;
    }
    const QString what = way.row.index < 0 ? QStringLiteral("it") : QStringLiteral("this row");
    add(QStringLiteral("Never %1: no keys announce %2 (proved: %3).")
            .arg(where, what, SearchWords::extentOf(way.verdict.proof)));
    if (way.byServices) {
        Environment services;
        services.kind = Environment::Kind::Services;
        add(QStringLiteral("Services can: ") + wordsOf(*way.byServices, services, *way.state));
    }
}

/// A group is of keys that are tapped, or of the one key that is held.
void HowWriter::writeGroups(const std::vector<BuiltInActions::Group>& groups)
{
    for (const BuiltInActions::Group& group : groups) {
        const bool isHeld = group.playback.steps().last().input.kind == Input::Kind::FactoryResetTime;
        const bool isAtOnce = group.delay == std::chrono::milliseconds::zero();
        const QString how = isHeld     ? QStringLiteral("held for ") + Times::duration(group.delay)
                            : isAtOnce ? QStringLiteral("at the release")
                                       : Times::duration(group.delay) + QStringLiteral(" after the release");
        add(QStringLiteral("%1: %2, to %3")
                .arg(group.keys.join(QStringLiteral(", ")), how, OutputWords::enumeration(group.receivers)));
    }
}

void HowWriter::writeScript(const Playback& playback)
{
    QStringList lines =
        Witness::toScript(playback, m_model.lists()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    const bool isPrintable =
        std::all_of(lines.begin(), lines.end(), [](const QString& line) { return printable(line) == line; });
    if (!isPrintable) {
        add(QStringLiteral("A script cannot be shown: a name has characters that a terminal would act on."));
        return;
    }
    if (m_rows && !m_rows->fault.isEmpty()) {
        add(QStringLiteral("The script needs the key lists: keyboard-handler-simulator --data FOLDER. ") +
            m_rows->fault);
    } else if (m_rows) {
        const QString header = lines.takeFirst(); // the model
        lines = QStringList(header) + m_rows->statements + lines;
    }
    m_answer.paragraphs.last() += lines;
}

void HowWriter::note(const RowVerdict& verdict)
{
    m_answer.isAnnounced = m_answer.isAnnounced || verdict.kind == RowVerdict::Kind::Announced;
    m_answer.isProved = m_answer.isProved && verdict.kind != RowVerdict::Kind::NotProved;
}

bool leadsThere(const QVector<ActionWay>& ways)
{
    return std::any_of(ways.begin(), ways.end(),
                       [](const ActionWay& way) { return way.verdict.kind == RowVerdict::Kind::Announced; });
}

/// The ways to each row; the rows that keys announce come first.
std::vector<QVector<ActionWay>> waysOfRows(const QVector<ActionWay>& all)
{
    std::vector<QVector<ActionWay>> ofRows;
    for (const ActionWay& way : all) {
        if (ofRows.empty() || !(ofRows.back().first().row == way.row)) {
            ofRows.emplace_back();
        }
        ofRows.back().append(way);
    }
    std::stable_partition(ofRows.begin(), ofRows.end(), leadsThere);
    return ofRows;
}

} // namespace

HowAnswer HowAnswer::of(const QString& action, const KeyLists& lists, std::optional<State> state,
                        const PlaceOf& placeOf, const std::optional<ScriptRows>& rows)
{
    HowAnswer answer;
    answer.isKnown = actionsOf(lists).contains(action);
    HowWriter writer(lists, placeOf, rows, answer);
    ActionSearch search(lists, searchLimits);
    const std::vector<QVector<ActionWay>> ofRows = waysOfRows(search.waysTo(action, state));
    for (const QVector<ActionWay>& ways : ofRows) {
        writer.write(ways);
    }
    if (BuiltInActions::all().contains(action)) {
        writer.writeBuiltIn(action, state ? QVector<State>{*state} : Alphabet::states());
    }
    return answer;
}

QStringList HowAnswer::actionsOf(const KeyLists& lists)
{
    QStringList actions = ActionSearch::actionsOf(lists) + BuiltInActions::all();
    actions.removeDuplicates();
    return actions;
}

} // namespace checker
