// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/web/HttpAnswer.h"
#include "simulator/web/HttpRequest.h"

#include <vector>

class DeviceSession;
class EventStreams;

/// The routes below /api that work on the session; docs/panel-page.md describes them. The functions are
/// called on the session's thread.
class PanelApi
{
public:
    struct Route
    {
        const char* method;
        const char* path;
        HttpAnswer (PanelApi::*answer)(const HttpRequest& request) const;
    };

    /// Both must live as long as this object.
    PanelApi(DeviceSession& session, const EventStreams& streams);

    /// All routes; may be called on any thread.
    static const std::vector<Route>& routes();

    HttpAnswer answer(const Route& route, const HttpRequest& request) const
    {
        return (this->*route.answer)(request);
    }

private:
    HttpAnswer device(const HttpRequest& request) const;
    HttpAnswer keyLists(const HttpRequest& request) const;
    HttpAnswer card(const HttpRequest& request) const;
    HttpAnswer brailleCard(const HttpRequest& request) const;
    HttpAnswer recording(const HttpRequest& request) const;
    HttpAnswer takeSteps(const HttpRequest& request) const;
    HttpAnswer restart(const HttpRequest& request) const;
    HttpAnswer restartRecording(const HttpRequest& request) const;
    HttpAnswer replay(const HttpRequest& request) const;
    HttpAnswer stopReplay(const HttpRequest& request) const;

    DeviceSession& m_session;
    const EventStreams& m_streams;
};
