// SPDX-License-Identifier: MIT
#include "tests/checker/DaemonTrial.h"

#include "tests/whole/random/Player.h"

#include <ls/MessageKeys.h>

#include <algorithm>

using namespace checker;
using model::Alphabet::nameOf;
using std::chrono::milliseconds;

namespace {

KeyRow::Kind kindOf(model::List list)
{
    static const QMap<model::List, KeyRow::Kind> kinds{{model::List::LongPresses, KeyRow::Kind::Long},
                                                       {model::List::Combinations, KeyRow::Kind::Modifier},
                                                       {model::List::Shortcuts, KeyRow::Kind::Shortcut}};
    return kinds.value(list);
}

/// The rows but those that the edits remove.
QVector<KeyRow> rowsOf(const KeyScript& script, const QVector<Edit>& edits)
{
    QMap<KeyRow::Kind, int> counts;
    QVector<KeyRow> rows;
    for (const KeyRow& row : script.rows) {
        const int index = counts[row.kind]++;
        const bool isRemoved = std::any_of(edits.begin(), edits.end(), [&](const Edit& edit) {
            return edit.kind == Edit::Kind::RemoveRow && kindOf(edit.row.list) == row.kind &&
                   edit.row.index == index;
        });
        if (!isRemoved) {
            rows.append(row);
        }
    }
    // Without any row, the installed lists would apply.
    return rows.isEmpty() ? QVector<KeyRow>{KeyRow{}} : rows;
}

bool isAction(const QString& text)
{
    return text.startsWith("announce ") || text.startsWith("speak ") || text == "cancel" ||
           text.startsWith("log KeyboardManager::onEvent WARN:");
}

/// Answers that list the rows change with the rows at any time.
bool listsRows(const QString& text)
{
    return text.startsWith("answer ") &&
           (text.contains(ls::keyTimeouts) || text.contains(ls::modifierKeyListKey) ||
            text.contains(ls::shortcutKeyListKey));
}

bool isPerceived(const QString& text)
{
    return text.startsWith("announce ") || text.startsWith("speak ");
}

} // namespace

DaemonTrial::DaemonTrial(const KeyScript& script) : m_script(script)
{
    play(Edits::apply(script, {}));
}

DaemonTrial::DaemonTrial(const DaemonTrial& original, const QVector<Edit>& edits, const Occasion& last)
    : m_script(original.m_script)
{
    EditedScript edited = Edits::apply(m_script, edits);
    KeyScript& script = edited.script;
    script.rows = rowsOf(m_script, edits);
    script.end = timeIn(edited, last);
    while (!script.steps.isEmpty() && script.steps.last().at > script.end) {
        script.steps.removeLast();
    }
    play(edited);
}

milliseconds DaemonTrial::timeIn(const EditedScript& edited, const Occasion& occasion)
{
    // An inserted step has the id -1, too.
    const int index = occasion.scriptStep == -1 ? -1 : edited.ids.indexOf(occasion.scriptStep);
    const milliseconds begin = index == -1 ? milliseconds::zero() : edited.script.steps.at(index).at;
    return begin + occasion.after.value_or(milliseconds::zero());
}

milliseconds DaemonTrial::timeOf(const Occasion& occasion) const
{
    return timeIn({m_play.script, m_ids}, occasion);
}

void DaemonTrial::play(const EditedScript& edited)
{
    m_ids = edited.ids;
    m_play = Player::play(edited.script);
}

bool DaemonTrial::isMended(const Swallowed& swallowed, const DaemonTrial& original,
                           const CauseSearch& search) const
{
    using Kind = Swallowed::Kind;
    const QStringList now = observationsAt(swallowed.occasion);
    if (swallowed.kind == Kind::NotSpoken || swallowed.kind == Kind::Ignored) {
        return std::any_of(now.begin(), now.end(), isPerceived);
    }
    if (swallowed.kind == Kind::NotSent) {
        return std::any_of(now.begin(), now.end(), [&](const QString& text) {
            const QStringList words = text.split(' '); // announce SingleKey RECEIVER SENDER KEY
            return words.value(1) == "SingleKey" && words.mid(4) == QStringList(nameOf(swallowed.key));
        });
    }
    if (swallowed.kind == Kind::Refused) {
        const KeyEntry& row = search.original().keyModel().lists().row(swallowed.row);
        const QString start = "announce " + row.eAction() + ' ' + row.receiverService() + ' ';
        return std::any_of(now.begin(), now.end(),
                           [&](const QString& text) { return text.startsWith(start); });
    }
    return now != original.observationsAt(swallowed.occasion);
}

milliseconds DaemonTrial::earliest(const QVector<Edit>& edits, const CauseSearch& search) const
{
    milliseconds time = milliseconds::max();
    const auto addStep = [&](int step) { time = std::min(time, m_script.steps.at(step).at); };
    for (const Edit& edit : edits) {
        std::for_each(edit.steps.begin(), edit.steps.end(), addStep);
        if (edit.kind == Edit::Kind::InsertState && edit.steps.isEmpty()) {
            time = std::min(time, edit.at - milliseconds(1));
        }
        for (const model::PlayedStep& step : search.original().steps()) {
            const bool matters =
                edit.kind == Edit::Kind::RemoveRow &&
                std::any_of(step.effects.begin(), step.effects.end(),
                            [&](const model::Effect& effect) { return effect.row == edit.row; });
            time = matters ? std::min(time, step.at) : time;
        }
    }
    return time;
}

QStringList DaemonTrial::before(milliseconds time) const
{
    QStringList texts;
    for (const PlayEvent& event : m_play.events) {
        if (event.at < time && !listsRows(event.text)) {
            texts.append(QString::number(event.at.count()) + ' ' + event.text);
        }
    }
    return texts;
}

/// The index of the played step to which an event belongs, including long presses without delay; -1 if the
/// event came between two steps.
int DaemonTrial::stepOf(const PlayEvent& event) const
{
    const int index = event.place.steps - 1;
    const bool isInStep =
        index >= 0 && (event.place.isInStep() || event.at == m_play.script.steps.at(index).at);
    return isInStep ? index : -1;
}

/// Sorted, because speech passes the event loop.
QStringList DaemonTrial::observationsAt(const Occasion& occasion) const
{
    const int index = m_ids.indexOf(occasion.scriptStep);
    const milliseconds time = timeOf(occasion);
    QStringList texts;
    for (const PlayEvent& event : m_play.events) {
        const int step = stepOf(event);
        const bool isMeant = occasion.after ? step == -1 && event.at == time : step != -1 && step == index;
        if (isMeant && isAction(event.text)) {
            texts.append(event.text);
        }
    }
    texts.sort();
    return texts;
}
