// SPDX-License-Identifier: MIT
#include "workbench/web/ListSearches.h"

std::optional<HttpAnswer> ListSearches::refusalOf(const QMap<QString, QByteArray>& keyLists)
{
    // Each row has a bracket, and each other value is after a comma.
    int rows = 0;
    int values = 0;
    for (const QByteArray& text : keyLists) {
        rows += text.count('{');
        values += text.count(',');
    }
    if (rows <= maxRows && values <= maxValues) {
        return std::nullopt;
    }
    return HttpAnswer::error(
        HttpStatus::payloadTooLarge,
        QStringLiteral("The key lists are not checked: they have more than %1 rows or %2 values.")
            .arg(maxRows)
            .arg(maxValues));
}

void ListSearches::start(const Search& search, const Reply& reply)
{
    if (m_waiting.size() >= maxWaiting) {
        reply(HttpAnswer::error(HttpStatus::unavailable,
                                QStringLiteral("Too many key lists wait to be checked. Try again.")));
        return;
    }
    m_waiting.enqueue({search, reply});
    startNext();
}

void ListSearches::startNext()
{
    if (m_isSearching || m_waiting.isEmpty()) {
        return;
    }
    m_isSearching = true;
    m_work.start([this, next = m_waiting.dequeue()] {
        return [this, answer = next.first(), reply = next.second] {
            m_isSearching = false;
            startNext();
            reply(answer);
        };
    });
}
