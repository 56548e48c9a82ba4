// SPDX-License-Identifier: MIT
#pragma once

#include "workbench/web/HttpAnswer.h"
#include "workbench/web/HttpRequest.h"

#include <functional>
#include <optional>
#include <vector>

class Session;
class EventStreams;
struct KeyCard;

/// The routes below /api that work on the session; docs/panel-api.md describes them. Unless they
/// say otherwise, the functions are called on the session's thread.
class PanelApi
{
public:
    struct Route
    {
        const char* method;
        const char* path;
        /// Null where the answer is made of the key card.
        HttpAnswer (PanelApi::*answer)(const HttpRequest& request) const;
        HttpAnswer (*answerOfCard)(const KeyCard& card) = nullptr;
        /// Whether the body is a script to replay.
        bool takesScript = false;
    };
    /// The rest of the work on a request, which comes back with the answer. It may take seconds, and is for
    /// any thread but the session's.
    using Rest = std::function<HttpAnswer()>;

    /// Both must live as long as this object.
    PanelApi(Session& session, const EventStreams& streams);

    /// All routes; may be called on any thread.
    static const std::vector<Route>& routes();

    /// Reads the script of a route that takes one; returns the answer to a faulty one. For any thread but the
    /// session's, because a long script takes a second.
    static std::optional<HttpAnswer> read(const Route& route, HttpRequest* request);
    /// Does what concerns the session with a request that was read.
    Rest begin(const Route& route, const HttpRequest& request) const;

private:
    HttpAnswer device(const HttpRequest& request) const;
    HttpAnswer keyLists(const HttpRequest& request) const;
    HttpAnswer recording(const HttpRequest& request) const;
    HttpAnswer formerRecording(const HttpRequest& request) const;
    HttpAnswer takeSteps(const HttpRequest& request) const;
    HttpAnswer restart(const HttpRequest& request) const;
    HttpAnswer restartRecording(const HttpRequest& request) const;
    HttpAnswer replay(const HttpRequest& request) const;
    HttpAnswer stopReplay(const HttpRequest& request) const;

    Session& m_session;
    const EventStreams& m_streams;
};
