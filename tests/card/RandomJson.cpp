// SPDX-License-Identifier: MIT
#include "tests/card/RandomJson.h"

#include "tests/whole/random/RandomRows.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace {

constexpr int maxDepth = 4;
constexpr int maxRows = 8;

} // namespace

KeyLists RandomJson::keyLists()
{
    return {{"longKeyList.json", file("LongKeys")},
            {"modifierKeyList.json", file("ModifierKeys")},
            {"shortcutKeyList.json", file("ShortcutKeys")}};
}

QByteArray RandomJson::file(const QString& section)
{
    QJsonArray rows;
    for (int i = m_dice.below(maxRows); i > 0; --i) {
        rows.append(row());
    }
    const QJsonValue content = m_dice.oneIn(10) ? value(0) : QJsonValue(rows);
    QByteArray bytes = QJsonDocument(QJsonObject{{section, content}, {text(), value(0)}}).toJson();
    if (m_dice.oneIn(10)) {
        bytes[m_dice.below(bytes.size())] = static_cast<char>(m_dice.below(256));
    }
    if (m_dice.oneIn(20)) {
        bytes.truncate(m_dice.below(bytes.size()));
    }
    return bytes;
}

QJsonValue RandomJson::row()
{
    if (m_dice.oneIn(15)) {
        return value(0);
    }
    QJsonArray keys;
    for (int i = m_dice.below(4); i > 0; --i) {
        keys.append(m_dice.oneIn(15) ? value(0) : RandomRows::anyKey(m_dice));
    }
    QJsonObject row{
        {"keys", keys}, {"eAction", text()}, {"receiverService", text()}, {"timeout", m_dice.below(5)}};
    row.insert("validOnState",
               m_dice.pick({QString("Idle"), QString("Idle | Print"), QString("Update"), text()}));
    if (m_dice.oneIn(4)) {
        row.insert(m_dice.pick(row.keys()), value(0));
    }
    return row;
}

QJsonValue RandomJson::value(int depth)
{
    switch (m_dice.below(depth < maxDepth ? 7 : 5)) {
    case 0:
        return {};
    case 1:
        return m_dice.oneIn(2);
    case 2:
        return m_dice.pick({0.0, -1.0, 2.5, 1e300, -1e300, 2147483648.0});
    case 3:
    case 4:
        return text();
    case 5:
        return QJsonArray{value(depth + 1), value(depth + 1)};
    default:
        return QJsonObject{{text(), value(depth + 1)}, {text(), value(depth + 1)}};
    }
}

QString RandomJson::text()
{
    QString text;
    const int size = m_dice.oneIn(30) ? 5000 : m_dice.below(60);
    for (int i = 0; i < size; ++i) {
        text += m_dice.oneIn(8) ? QChar(static_cast<ushort>(m_dice.below(0x10000)))
                                : QChar(static_cast<ushort>(0x20 + m_dice.below(0x5f)));
    }
    return text;
}
