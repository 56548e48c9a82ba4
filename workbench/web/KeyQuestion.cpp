// SPDX-License-Identifier: MIT
#include "workbench/web/KeyQuestion.h"

#include "card/CardSentences.h"
#include "checker/Practice.h"
#include "checker/ScriptPlayback.h"
#include "simulator/script/KeyScriptText.h"
#include "simulator/script/ScriptWords.h"
#include "workbench/web/RequestBody.h"

#include <QJsonArray>

using namespace std::chrono_literals;
using std::chrono::milliseconds;

namespace {

/// The search for causes plays the script again and again: with lists of hundreds of rows, this takes
/// seconds.
constexpr int maxSteps = 100;
constexpr milliseconds maxDuration = 1min;

const QString scriptMember = QStringLiteral("script");
const QString stateMember = QStringLiteral("state");
const QString atMember = QStringLiteral("at");
const QString taskMember = QStringLiteral("task");
const QString paceMember = QStringLiteral("ownPace");

std::optional<KeyCardKind> kindOf(const QString& name)
{
    for (const auto kind : {KeyCardKind::Single, KeyCardKind::Long, KeyCardKind::Combination,
                            KeyCardKind::Shortcut, KeyCardKind::Hold}) {
        if (CardSentences::nameOf(kind) == name) {
            return kind;
        }
    }
    return std::nullopt;
}

std::optional<QStringList> textsOf(const QJsonValue& value)
{
    QStringList texts;
    const QJsonArray items = value.toArray();
    for (const QJsonValue& item : items) {
        if (item.isString()) {
            texts.append(item.toString());
        }
    }
    return value.isArray() && texts.size() == items.size() ? std::optional(texts) : std::nullopt;
}

std::optional<KeyCardEntry> taskOf(const QJsonObject& object)
{
    const auto kind = kindOf(object.value(QStringLiteral("kind")).toString());
    const auto keys = textsOf(object.value(QStringLiteral("keys")));
    const auto receivers = textsOf(object.value(QStringLiteral("receivers")));
    const QJsonValue action = object.value(QStringLiteral("action"));
    if (!kind || !keys || keys->isEmpty() || !receivers || receivers->isEmpty() || !action.isString()) {
        return std::nullopt;
    }
    KeyCardEntry task;
    task.kind = *kind;
    task.keys = *keys;
    task.receivers = *receivers;
    task.action = action.toString();
    task.holdMs = object.value(QStringLiteral("holdMs")).toInt();
    return task;
}

/// Returns a sentence about a member that is not as it should be.
QString faultOf(const QJsonObject& members)
{
    static const QStringList names{stateMember, scriptMember, atMember, taskMember, paceMember};
    for (auto member = members.begin(); member != members.end(); ++member) {
        if (!names.contains(member.key())) {
            return QStringLiteral("The members of a question are %1.").arg(names.join(QStringLiteral(", ")));
        }
    }
    if (!members.value(scriptMember).isString()) {
        return QStringLiteral("The member \"script\" is not a text.");
    }
    if (members.contains(stateMember) && !members.value(stateMember).isString()) {
        return QStringLiteral("The member \"state\" is not a text.");
    }
    const QJsonValue at = members.value(atMember);
    if (members.contains(atMember) &&
        !(at.toDouble(-1) >= 0 && at.toDouble() <= double(maxDuration.count()))) {
        return QStringLiteral("The member \"at\" is not a time from 0 to %1 ms.").arg(maxDuration.count());
    }
    if (members.contains(taskMember) && !taskOf(members.value(taskMember).toObject())) {
        return QStringLiteral("The member \"task\" is not an entry of the key card.");
    }
    return members.contains(paceMember) && !members.value(paceMember).isBool()
               ? QStringLiteral("The member \"ownPace\" is neither true nor false.")
               : QString();
}

QString faultOf(const KeyScript& script)
{
    if (script.steps.size() > maxSteps || script.end > maxDuration) {
        return QStringLiteral("The script has more than %1 steps or lasts longer than %2 ms.")
            .arg(QString::number(maxSteps), QString::number(maxDuration.count()));
    }
    const QString fault = checker::ScriptPlayback::unknownStatement(script);
    return fault.isEmpty() ? ScriptWords::checkState(script.initialState) : fault;
}

HttpAnswer refuse(const QString& fault)
{
    return HttpAnswer::error(HttpStatus::badRequest, ScriptWords::shortened(fault));
}

} // namespace

std::optional<KeyQuestion> KeyQuestion::read(const QByteArray& body, const QString& state,
                                             HttpAnswer* refusal)
{
    QString fault;
    const QJsonObject members = objectOf(body, &fault).value_or(QJsonObject());
    fault = fault.isEmpty() ? faultOf(members) : fault;
    if (!fault.isEmpty()) {
        *refusal = refuse(fault);
        return std::nullopt;
    }
    const ParsedScript parsed = parseKeyScriptSteps(members.value(scriptMember).toString());
    if (!parsed.faults.isEmpty()) {
        *refusal = refuse(parsed.faults);
        return std::nullopt;
    }
    KeyQuestion question;
    question.script = parsed.script;
    question.script.initialState = members.value(stateMember).toString(state);
    if (members.contains(atMember)) {
        question.at = milliseconds(qRound64(members.value(atMember).toDouble()));
    }
    if (members.contains(taskMember)) {
        question.task = taskOf(members.value(taskMember).toObject());
    }
    question.isAtOwnPace = question.task && members.value(paceMember).toBool();
    if (question.isAtOwnPace) {
        question.script = checker::Practice::atOwnPace(question.script, *question.task);
    }
    fault = faultOf(question.script);
    if (!fault.isEmpty()) {
        *refusal = refuse(fault);
        return std::nullopt;
    }
    return question;
}
