// SPDX-License-Identifier: MIT
#include "simulator/web/PanelApi.h"

#include "simulator/card/BrailleCard.h"
#include "simulator/card/KeyCard.h"
#include "simulator/session/DeviceSession.h"
#include "simulator/web/EventStreams.h"
#include "simulator/web/RequestBody.h"

#include <QJsonArray>

namespace {

constexpr int accepted = 202;
constexpr int badRequest = 400;
constexpr int conflict = 409;
constexpr int internalError = 500;

const QString notText = QStringLiteral("The body is not UTF-8 text.");

KeyCard cardOf(const DeviceSession& session)
{
    return KeyCard::from(session.keyLists(), session.description().value(QStringLiteral("model")).toString());
}

HttpAnswer refuse(const QVector<ScriptFault>& faults)
{
    QJsonArray list;
    for (const ScriptFault& fault : faults) {
        list.append(QJsonObject{{QStringLiteral("line"), fault.line}, {QStringLiteral("text"), fault.text}});
    }
    return HttpAnswer::error(badRequest, faults.constFirst().text, {{QStringLiteral("faults"), list}});
}

} // namespace

PanelApi::PanelApi(DeviceSession& session, const EventStreams& streams)
    : m_session(session), m_streams(streams)
{}

const std::vector<PanelApi::Route>& PanelApi::routes()
{
    static const std::vector<Route> table{{"GET", "/api/device", &PanelApi::device},
                                          {"GET", "/api/key-lists", &PanelApi::keyLists},
                                          {"GET", "/api/card", &PanelApi::card},
                                          {"GET", "/api/card.brf", &PanelApi::brailleCard},
                                          {"GET", "/api/recording.keys", &PanelApi::recording},
                                          {"POST", "/api/steps", &PanelApi::takeSteps},
                                          {"POST", "/api/restart", &PanelApi::restart},
                                          {"POST", "/api/recording", &PanelApi::restartRecording},
                                          {"POST", "/api/replay", &PanelApi::replay},
                                          {"POST", "/api/replay/stop", &PanelApi::stopReplay}};
    return table;
}

HttpAnswer PanelApi::device(const HttpRequest& /*request*/) const
{
    return HttpAnswer::json(m_session.description());
}

HttpAnswer PanelApi::keyLists(const HttpRequest& /*request*/) const
{
    QJsonObject lists;
    const QMap<QString, QByteArray> files = m_session.keyLists();
    for (auto file = files.begin(); file != files.end(); ++file) {
        lists.insert(file.key(), QString::fromUtf8(file.value()));
    }
    return HttpAnswer::json(lists);
}

HttpAnswer PanelApi::card(const HttpRequest& /*request*/) const
{
    return HttpAnswer::json(cardOf(m_session).toJson());
}

HttpAnswer PanelApi::brailleCard(const HttpRequest& /*request*/) const
{
    QString error;
    const QByteArray pages = ::brailleCard(cardOf(m_session), &error);
    return error.isEmpty() ? HttpAnswer::file("key-card.brf", "text/plain; charset=us-ascii", pages)
                           : HttpAnswer::error(internalError, error);
}

HttpAnswer PanelApi::recording(const HttpRequest& /*request*/) const
{
    QStringList faults;
    const QString script = m_session.recording(&faults);
    if (!faults.isEmpty()) {
        return HttpAnswer::error(conflict, faults.join(QLatin1Char(' ')));
    }
    return HttpAnswer::file("recording.keys", "text/plain; charset=utf-8", script.toUtf8());
}

HttpAnswer PanelApi::takeSteps(const HttpRequest& request) const
{
    // Nobody would release what a client presses that is not there.
    if (request.client != 0 && !m_streams.contains(request.client)) {
        return HttpAnswer::error(badRequest, QStringLiteral("There is no event stream of that client."));
    }
    const std::optional<QString> statements = textOf(request.body);
    if (!statements) {
        return HttpAnswer::error(badRequest, notText);
    }
    const QVector<ScriptFault> faults = m_session.take(*statements, request.client);
    return faults.isEmpty() ? HttpAnswer::json({}) : refuse(faults);
}

HttpAnswer PanelApi::restart(const HttpRequest& request) const
{
    QString fault;
    const std::optional<DeviceSession::Changes> changes = changesOf(request.body, &fault);
    if (changes) {
        fault = m_session.restart(*changes);
    }
    return fault.isEmpty() ? HttpAnswer::json({}, accepted) : HttpAnswer::error(badRequest, fault);
}

HttpAnswer PanelApi::restartRecording(const HttpRequest& /*request*/) const
{
    m_session.restartRecording();
    return HttpAnswer::json({});
}

HttpAnswer PanelApi::replay(const HttpRequest& request) const
{
    const std::optional<QString> script = textOf(request.body);
    if (!script) {
        return HttpAnswer::error(badRequest, notText);
    }
    const QVector<ScriptFault> faults = m_session.replay(*script);
    return faults.isEmpty() ? HttpAnswer::json({}, accepted) : refuse(faults);
}

HttpAnswer PanelApi::stopReplay(const HttpRequest& /*request*/) const
{
    m_session.stopReplay();
    return HttpAnswer::json({});
}
