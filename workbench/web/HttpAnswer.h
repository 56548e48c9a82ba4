// SPDX-License-Identifier: MIT
#pragma once

#include "workbench/web/HttpStatus.h"

#include <QByteArray>
#include <QJsonObject>
#include <QMap>
#include <QString>

#include <memory>

class EventStream;

/// What is sent back to a client.
struct HttpAnswer
{
    int status = HttpStatus::ok;
    QByteArray type;
    QByteArray body;
    /// Further headers, by their names.
    QMap<QByteArray, QByteArray> headers;
    /// In place of the body, where the answer lasts.
    std::shared_ptr<EventStream> stream;

    /// `headers`, the type and what every answer has, which keeps the page to itself.
    QMap<QByteArray, QByteArray> allHeaders() const;

    static HttpAnswer json(const QJsonObject& object, int status = HttpStatus::ok);
    /// A file that a browser saves under this name.
    static HttpAnswer file(const QByteArray& name, const QByteArray& type, const QByteArray& content);
    /// `sentence` explains the error to a person, and `details` to a program.
    static HttpAnswer error(int status, const QString& sentence, QJsonObject details = {});
};
