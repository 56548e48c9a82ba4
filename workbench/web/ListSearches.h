// SPDX-License-Identifier: MIT
#pragma once

#include "workbench/web/BackgroundWork.h"
#include "workbench/web/HttpAnswer.h"

#include <QQueue>

#include <optional>

/// Answers questions about key lists, which take up to seconds, on another thread: one after the other, so
/// that no client can take the processors from the device, and only so many, so that none can fill the
/// memory. Deleting this object waits for the search under way.
class ListSearches
{
public:
    using Search = std::function<HttpAnswer()>;
    using Reply = std::function<void(const HttpAnswer& answer)>;

    static constexpr int maxWaiting = 32;
    /// A list of 1 MiB has about 10,000 useful rows. It has room for 300,000 useless ones, whose findings
    /// would fill gigabytes.
    static constexpr int maxRows = 20'000;
    static constexpr int maxValues = 200'000;

    /// The refusal of lists that are too long for a search within seconds.
    static std::optional<HttpAnswer> refusalOf(const QMap<QString, QByteArray>& keyLists);

    /// Calls `reply` with what `search` returns, or at once with an error if too many are waiting.
    void start(const Search& search, const Reply& reply);

private:
    void startNext();

    QQueue<std::pair<Search, Reply>> m_waiting;
    bool m_isSearching = false;
    BackgroundWork m_work;
};
