// SPDX-License-Identifier: MIT
#pragma once

#include "tests/card/CardDevice.h"
#include "tests/whole/random/Dice.h"

#include <QJsonValue>

/// Generates random key-list files, including fields of any type, sections that are not lists and malformed
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
