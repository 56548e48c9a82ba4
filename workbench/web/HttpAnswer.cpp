// SPDX-License-Identifier: MIT
#include "workbench/web/HttpAnswer.h"

#include <QJsonDocument>

QMap<QByteArray, QByteArray> HttpAnswer::allHeaders() const
{
    QMap<QByteArray, QByteArray> all = headers;
    all.insert("Content-Type", type);
    all.insert("Connection", "close");
    all.insert("Content-Security-Policy",
               "default-src 'self'; img-src 'self' data: blob:; object-src 'none'; base-uri 'none'; "
               "form-action 'self'; frame-ancestors 'none'");
    all.insert("X-Content-Type-Options", "nosniff");
    all.insert("Referrer-Policy", "no-referrer");
    all.insert("Cross-Origin-Resource-Policy", "same-origin");
    all.insert("Cache-Control", "no-store");
    return all;
}

HttpAnswer HttpAnswer::json(const QJsonObject& object, int status)
{
    return {status, "application/json", QJsonDocument(object).toJson(QJsonDocument::Compact), {}, {}};
}

HttpAnswer HttpAnswer::file(const QByteArray& name, const QByteArray& type, const QByteArray& content)
{
    return {
        HttpStatus::ok, type, content, {{"Content-Disposition", "attachment; filename=\"" + name + '"'}}, {}};
}

HttpAnswer HttpAnswer::error(int status, const QString& sentence, QJsonObject details)
{
    details.insert(QStringLiteral("error"), sentence);
    return json(details, status);
}
