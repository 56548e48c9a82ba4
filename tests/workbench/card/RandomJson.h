// SPDX-License-Identifier: MIT
#pragma once

#include "tests/whole/random/Dice.h"
#include "tests/workbench/card/CardDevice.h"

#include <QJsonValue>

/// Rolls key-list files of any content: rows with fields of any type, sections that are no lists, broken
/// JSON.
class RandomJson
{
public:
    explicit RandomJson(quint64 seed) : m_dice(seed) {}

    KeyLists keyLists();

private:
    QByteArray file(const QString& section);
    QJsonValue row();
    QJsonValue value(int depth);
    QString text();

    Dice m_dice;
};
