// SPDX-License-Identifier: MIT
#include "tests/whole/fuzz/JsonLeaks.h"

#include "tests/whole/fuzz/Resources.h"

#include <QJsonDocument>

bool JsonLeaks::occurIn(const QByteArray& text)
{
    const Resources::Trial trial;
    QJsonDocument::fromJson(text);
    return trial.hasGrown();
}
