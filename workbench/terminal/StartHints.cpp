// SPDX-License-Identifier: MIT
#include "workbench/terminal/StartHints.h"

#include "workbench/card/CardSentences.h"
#include "workbench/card/KeyCard.h"

#include <ls/BusNames.h>
#include <ls/Identifiers.h>

namespace {

constexpr int maxRows = 20;

} // namespace

QString StartHints::deadRows(const QMap<QString, QByteArray>& keyLists, const QString& model)
{
    const KeyCard card = KeyCard::from(keyLists, model);
    const QVector<KeyCardDeadRow>& rows = card.deadRows;
    if (rows.isEmpty()) {
        return {};
    }
    QString text = QStringLiteral("Rows of the key lists that key presses alone never announce:");
    for (const KeyCardDeadRow& row : rows.mid(0, maxRows)) {
        text += QStringLiteral("\n  ") + CardSentences::describe(row) + QLatin1Char(' ') + row.why;
    }
    if (rows.size() > maxRows) {
        text +=
            QStringLiteral("\n  ... and %1 more; the key card lists them all.").arg(rows.size() - maxRows);
    }
    return text + QStringLiteral("\n  ") + CardSentences::proof(card.environment);
}

QString StartHints::bus(const QString& address)
{
    return QStringLiteral("The device's bus, until it restarts; for example, from another terminal:\n"
                          "DBUS_SYSTEM_BUS_ADDRESS='%1' busctl --system call %2 / %2 process 'a{sv}' "
                          "2 commandId s GetLastKey senderId s ServiceTool")
        .arg(address, ls::busName(ls::ServiceId::KeyboardHandler));
}
