// SPDX-License-Identifier: MIT
#include "workbench/web/HttpAnswer.h"

#include <QJsonDocument>

HttpAnswer HttpAnswer::json(const QJsonObject& object, int status)
{
    return {status, "application/json", QJsonDocument(object).toJson(QJsonDocument::Compact), {}};
}

HttpAnswer HttpAnswer::file(const QByteArray& name, const QByteArray& type, const QByteArray& content)
{
    return {200, type, content, {{"Content-Disposition", "attachment; filename=\"" + name + '"'}}};
}

HttpAnswer HttpAnswer::error(int status, const QString& sentence, QJsonObject details)
{
    details.insert(QStringLiteral("error"), sentence);
    return json(details, status);
}
