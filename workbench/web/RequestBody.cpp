// SPDX-License-Identifier: MIT
#include "workbench/web/RequestBody.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QTextCodec>

namespace {

QString placeOf(const QByteArray& body, const QJsonParseError& error)
{
    const QByteArray before = body.left(error.offset);
    const int column = before.size() - (before.lastIndexOf('\n') + 1) + 1;
    return QStringLiteral("The JSON is faulty in line %1, column %2: %3.")
        .arg(before.count('\n') + 1)
        .arg(column)
        .arg(error.errorString());
}

QString readKeyLists(const QJsonValue& member, Session::Changes& changes)
{
    if (member.isNull()) {
        changes.defaultKeyLists = true;
        return {};
    }
    if (!member.isObject()) {
        return QStringLiteral("The member \"keyLists\" is neither an object nor null.");
    }
    const QJsonObject lists = member.toObject();
    for (auto list = lists.begin(); list != lists.end(); ++list) {
        if (!list.value().isString()) {
            return QStringLiteral("The content of %1 is not a text.").arg(list.key());
        }
        changes.keyLists.insert(list.key(), list.value().toString().toUtf8());
    }
    return {};
}

QString readMember(const QString& name, const QJsonValue& member, Session::Changes& changes)
{
    if (name == QStringLiteral("model") || name == QStringLiteral("state")) {
        (name == QStringLiteral("model") ? changes.model : changes.state) = member.toString();
        return member.isString() ? QString() : QStringLiteral("The member \"%1\" is not a text.").arg(name);
    }
    if (name == QStringLiteral("keyLists")) {
        return readKeyLists(member, changes);
    }
    return QStringLiteral("The members of a restart are model, state and keyLists.");
}

} // namespace

std::optional<QString> textOf(const QByteArray& body)
{
    QTextCodec::ConverterState state;
    const QString text = QTextCodec::codecForName("UTF-8")->toUnicode(body.constData(), body.size(), &state);
    if (state.invalidChars > 0 || state.remainingChars > 0) {
        return std::nullopt;
    }
    return text;
}

std::optional<QJsonObject> objectOf(const QByteArray& body, QString* fault)
{
    QJsonParseError error{};
    const QJsonDocument document = QJsonDocument::fromJson(body.trimmed().isEmpty() ? "{}" : body, &error);
    if (error.error != QJsonParseError::NoError) {
        *fault = placeOf(body, error);
        return std::nullopt;
    }
    if (!document.isObject()) {
        *fault = QStringLiteral("The JSON is not an object.");
        return std::nullopt;
    }
    return document.object();
}

std::optional<Session::Changes> changesOf(const QByteArray& body, QString* fault)
{
    const std::optional<QJsonObject> members = objectOf(body, fault);
    if (!members) {
        return std::nullopt;
    }
    Session::Changes changes;
    for (auto member = members->begin(); member != members->end(); ++member) {
        *fault = readMember(member.key(), member.value(), changes);
        if (!fault->isEmpty()) {
            return std::nullopt;
        }
    }
    return changes;
}

HttpAnswer refuse(const QVector<ScriptFault>& faults)
{
    QJsonArray list;
    for (const ScriptFault& fault : faults) {
        list.append(QJsonObject{{QStringLiteral("line"), fault.line}, {QStringLiteral("text"), fault.text}});
    }
    return HttpAnswer::error(HttpStatus::badRequest, faults.constFirst().text,
                             {{QStringLiteral("faults"), list}});
}
