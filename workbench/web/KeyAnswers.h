// SPDX-License-Identifier: MIT
#pragma once

#include "workbench/web/KeyQuestion.h"

#include <QMap>

/// What keys would do, and why, by the model of the keys. Thread-safe; each may take seconds.
namespace KeyAnswers {

/// The lists in use by the names of their files, and the model of the embosser.
struct Device
{
    QMap<QString, QByteArray> keyLists;
    QString model;
};

/// What the keys do.
HttpAnswer what(const Device& device, const KeyQuestion& question);
/// Which rules decided about each key.
HttpAnswer why(const Device& device, const KeyQuestion& question);
/// Whether the keys do what the task of the question asks for.
HttpAnswer judgement(const Device& device, const KeyQuestion& question);

} // namespace KeyAnswers
