// SPDX-License-Identifier: MIT
#pragma once

#include "card/KeyCard.h"
#include "workbench/web/BackgroundWork.h"
#include "workbench/web/HttpAnswer.h"
#include "workbench/web/HttpRequest.h"
#include "workbench/web/KeyAnswers.h"
#include "workbench/web/ListSearches.h"

#include <future>

class Session;
class EventStreams;
struct DeviceOptions;

/// The routes below /api, which work on the session; docs/panel-page.md describes them.
class PanelApi
{
public:
    using Reply = std::function<void(const HttpAnswer& answer)>;
    /// Calls `reply` with the answer, at once or later; never after the end of `api`.
    using Handler = void (*)(PanelApi& api, const HttpRequest& request, const Reply& reply);
    struct Route
    {
        QByteArray method;
        Handler answer;
        /// For POST, where `method` is another one.
        Handler answerToPost = nullptr;

        Handler handlerOf(const QByteArray& requestMethod) const
        {
            return requestMethod == "POST" && answerToPost ? answerToPost : answer;
        }
    };

    using KeyAnswer = HttpAnswer (*)(const KeyAnswers::Device& device, const KeyQuestion& question);

    /// Both must live as long as this object.
    PanelApi(Session& session, EventStreams& streams);

    /// All routes, by their paths.
    static const QMap<QByteArray, Route>& routes();

private:
    HttpAnswer events();
    HttpAnswer keyLists() const;
    HttpAnswer takeSteps(const HttpRequest& request);
    HttpAnswer restart(const HttpRequest& request);
    void replay(const HttpRequest& request, const Reply& reply);
    void makeCard(HttpAnswer (*answerOf)(const KeyCard& card), const Reply& reply);
    void findFaults(const Reply& reply);
    using ListSearch = HttpAnswer (*)(const DeviceOptions& current, const DeviceOptions& draft);
    void searchDraft(const HttpRequest& request, ListSearch search, const Reply& reply);
    void answerAboutKeys(const HttpRequest& request, KeyAnswer answerOf, const Reply& reply);
    std::shared_future<KeyCard> currentCard();

    Session& m_session;
    EventStreams& m_streams;
    /// The last card, and the key lists and the model that it is for.
    std::shared_future<KeyCard> m_card;
    std::pair<QMap<QString, QByteArray>, QString> m_cardLists;
    /// The last findings, and the key lists and the model that they are for.
    std::shared_future<HttpAnswer> m_findings;
    std::pair<QMap<QString, QByteArray>, QString> m_findingsLists;
    ListSearches m_searches;
    BackgroundWork m_work;
};
