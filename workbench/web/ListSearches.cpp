// SPDX-License-Identifier: MIT
#include "workbench/web/ListSearches.h"

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
        return [this, answer = HttpAnswer::json(next.first()), reply = next.second] {
            m_isSearching = false;
            startNext();
            reply(answer);
        };
    });
}
