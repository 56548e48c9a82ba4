// SPDX-License-Identifier: MIT
#pragma once

#include "workbench/web/BackgroundWork.h"
#include "workbench/web/HttpAnswer.h"

#include <QQueue>

/// Answers questions about key lists, which take up to seconds, on another thread: one after the other, so
/// that no client can take the processors from the device, and only so many, so that none can fill the
/// memory. Deleting this object waits for the search under way.
class ListSearches
{
public:
    using Search = std::function<QJsonObject()>;
    using Reply = std::function<void(const HttpAnswer& answer)>;

    static constexpr int maxWaiting = 32;

    /// Calls `reply` with what `search` returns, or at once with an error if too many are waiting.
    void start(const Search& search, const Reply& reply);

private:
    void startNext();

    QQueue<std::pair<Search, Reply>> m_waiting;
    bool m_isSearching = false;
    BackgroundWork m_work;
};
