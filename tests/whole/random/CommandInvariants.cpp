// SPDX-License-Identifier: MIT
#include "simulator/script/KeyListJson.h"
#include "simulator/script/ObservationText.h"
#include "tests/whole/random/Commands.h"
#include "tests/whole/random/Invariants.h"

#include <ls/MessageKeys.h>

#include <QJsonDocument>
#include <QJsonObject>
#include <QSet>

#include <limits>

using namespace ls;

namespace {

constexpr int window = 1500;
constexpr int helpFactor = 3;
const QString helpTitle = QStringLiteral("log ================= Help =================");

QVariantMap listOf(const Facts& facts, const QString& fileName)
{
    QVariantMap list =
        QJsonDocument::fromJson(KeyListJson::filesOf(facts.script()).value(fileName)).object().toVariantMap();
    list.insert(keyTimeouts, window);
    return list;
}

QVariantMap timeoutsOf(const Facts& facts)
{
    constexpr qint64 largest = std::numeric_limits<int>::max();
    QVariantMap times;
    const QVector<KeyRow> rows = facts.rows(KeyRow::Kind::Long);
    for (const KeyRow& row : rows) {
        const QString key = row.keys.first();
        const qint64 time = qBound<qint64>(-largest / 1000, row.seconds, largest / 1000) * 1000;
        const qint64 reported = key == KeyId::Help ? time * helpFactor : time;
        times.insert(key,
                     static_cast<int>(qBound<qint64>(std::numeric_limits<int>::min(), reported, largest)));
    }
    return times;
}

/// The number of different keys of the keyboard test before the step, since the last query.
int testedKeys(const Facts& facts, int step)
{
    QSet<QString> keys;
    for (int i = 0; i < step; ++i) {
        const auto command = Commands::of(facts.script().steps.at(i));
        if (command && Commands::succeeds(*command, KeyboardHandlerCmdId::GetTestResult)) {
            keys.clear();
        }
        const Release* release = facts.releaseOf(i);
        const bool isBusy = release && release->input.state != StateId::Idle;
        if (isBusy && (release->inTest || release->input.key == KeyId::Unknown)) {
            keys.insert(release->input.key);
        }
    }
    return keys.size();
}

/// The possible answers of GetLastKey: several only if both devices repeat a key at the same moment.
QList<int> lastCodes(const Facts& facts, int step)
{
    QList<int> codes{0};
    Place last;
    for (const KeyInput& input : facts.inputs()) {
        if (Place::ofStep(step) <= input.place) {
            break;
        }
        codes = input.place == last ? codes : QList<int>();
        codes.append(input.code);
        last = input.place;
    }
    return codes;
}

QList<QVariantMap> answersTo(const Facts& facts, int step, const QVariantMap& command)
{
    const QString error = Commands::errorOf(command);
    QVariantMap answer{{resultIdKey, ResultId::Failure}, {errorIdKey, error}};
    if (!error.isEmpty()) {
        return {answer};
    }
    answer = {{resultIdKey, ResultId::Success}, {errorIdKey, QStringLiteral("Undefined")}};
    const QString name = command.value(commandIdKey).toString();
    QList<QVariantMap> answers;
    if (name == KeyboardHandlerCmdId::GetLastKey) {
        const QList<int> codes = lastCodes(facts, step);
        for (const int code : codes) {
            answer.insert(keyKey, code);
            answers.append(answer);
        }
        return answers;
    }
    if (name == KeyboardHandlerCmdId::GetTestResult) {
        answer.insert(resultIdKey, testedKeys(facts, step));
    } else if (name == KeyboardHandlerCmdId::GetLongKeysTimeout) {
        answer.insert(keyTimeouts, timeoutsOf(facts));
    } else if (name == KeyboardHandlerCmdId::GetModifierKeyList) {
        answer.insert(modifierKeyListKey, listOf(facts, QStringLiteral("modifierKeyList.json")));
    } else if (name == KeyboardHandlerCmdId::GetShortcutKeyList) {
        answer.insert(shortcutKeyListKey, listOf(facts, QStringLiteral("shortcutKeyList.json")));
    }
    return {answer};
}

QStringList textsIn(const Facts& facts, int step, const QString& begin)
{
    QStringList texts;
    const QVector<PlayEvent> events = facts.eventsIn(step);
    for (const PlayEvent& event : events) {
        if (event.text.startsWith(begin)) {
            texts.append(event.text);
        }
    }
    return texts;
}

} // namespace

namespace invariants {

QString sendersAreNamedOnce(const Facts& facts)
{
    QString sender;
    int step = 0;
    for (const Announcement& announcement : facts.announcements()) {
        for (; step < announcement.place.steps; ++step) {
            const auto command = Commands::of(facts.script().steps.at(step));
            if (command && Commands::isAccepted(*command)) {
                sender = command->value(senderIdKey).toString();
            }
        }
        if (announcement.sender != sender) {
            return QStringLiteral("%1 at %2 ms names \"%3\", not \"%4\"")
                .arg(announcement.action)
                .arg(announcement.at.count())
                .arg(announcement.sender, sender);
        }
        sender = ServiceId::KeyboardHandler;
    }
    return {};
}

QString commandsAreAnsweredOnce(const Facts& facts)
{
    for (int i = 0; i < facts.script().steps.size(); ++i) {
        const ScriptStep& step = facts.script().steps.at(i);
        const QStringList answers = textsIn(facts, i, QStringLiteral("answer "));
        QStringList due;
        const bool isCommand = step.kind == ScriptStep::Kind::Command;
        const QList<QVariantMap> maps = isCommand ? answersTo(facts, i, step.command) : QList<QVariantMap>();
        for (const QVariantMap& map : maps) {
            due.append(ObservationText::answer(map));
        }
        if (answers.size() != (isCommand ? 1 : 0) || (isCommand && !due.contains(answers.first()))) {
            return QStringLiteral("step %1 is answered by \"%2\", not \"%3\"")
                .arg(i)
                .arg(answers.join(QStringLiteral("; ")), due.join(QStringLiteral("; ")));
        }
    }
    return {};
}

QString consoleLinesAreAnsweredOnce(const Facts& facts)
{
    for (int i = 0; i < facts.script().steps.size(); ++i) {
        const ScriptStep& step = facts.script().steps.at(i);
        const bool isLine = step.kind == ScriptStep::Kind::Console;
        const int responses = textsIn(facts, i, QStringLiteral("log QMap(")).size();
        const int screens = textsIn(facts, i, helpTitle).size();
        const bool runs = isLine && Commands::of(step).has_value();
        // A help screen for a table or a command ends with an empty line.
        const bool isOwnScreen = isLine && !runs && screens == 0 &&
                                 textsIn(facts, i, QStringLiteral("log ")).contains(QStringLiteral("log "));
        if (responses != (runs ? 1 : 0) || (!isOwnScreen && screens != (isLine && !runs ? 1 : 0))) {
            return QStringLiteral("step %1 prints %2 responses and %3 help screens")
                .arg(i)
                .arg(responses)
                .arg(screens);
        }
    }
    return {};
}

QString invalidValuesAreReported(const Facts& facts)
{
    for (int i = 0; i < facts.script().steps.size(); ++i) {
        const KeyInput* input = facts.inputOf(i);
        const bool isOdd = input && input->isSeen() && (input->value < 0 || input->value > 2);
        const QString line =
            QStringLiteral("log KeyboardManager::onKeyEvent ERROR: Action cannot be categorized!");
        if (textsIn(facts, i, line).size() != (isOdd ? 1 : 0)) {
            return QStringLiteral("step %1").arg(i);
        }
    }
    return {};
}

} // namespace invariants
