// SPDX-License-Identifier: MIT
#include "workbench/web/PanelApi.h"

#include "simulator/script/ScriptWords.h"
#include "workbench/card/BrailleCard.h"
#include "workbench/card/CardJson.h"
#include "workbench/session/Session.h"
#include "workbench/web/EventStreams.h"
#include "workbench/web/RequestBody.h"
#include "workbench/web/SessionJson.h"

#include <QJsonArray>

#include <chrono>
#include <mutex>

namespace {

constexpr int accepted = 202;
constexpr int badRequest = 400;
constexpr int conflict = 409;
constexpr int internalError = 500;
constexpr int unavailable = 503;

constexpr std::chrono::seconds longestTurn(10); // the server's end waits as long

const QString notText = QStringLiteral("The body is not UTF-8 text.");

HttpAnswer cardAsJson(const KeyCard& card)
{
    return HttpAnswer::json(toJson(card));
}

HttpAnswer cardInBraille(const KeyCard& card)
{
    static std::timed_mutex turn;
    const std::unique_lock lock(turn, longestTurn);
    if (!lock) {
        return HttpAnswer::error(unavailable, QStringLiteral("The card is made in braille for others now."));
    }
    QString error;
    const QByteArray pages = brailleCard(card, &error);
    return error.isEmpty() ? HttpAnswer::file("key-card.brf", "text/plain; charset=us-ascii", pages)
                           : HttpAnswer::error(internalError, error);
}

HttpAnswer refuse(const QVector<ScriptFault>& faults)
{
    QJsonArray list;
    for (const ScriptFault& fault : faults) {
        list.append(QJsonObject{{QStringLiteral("line"), fault.line}, {QStringLiteral("text"), fault.text}});
    }
    return HttpAnswer::error(badRequest, faults.constFirst().text, {{QStringLiteral("faults"), list}});
}

HttpAnswer recordingFile(const QByteArray& name, const QString& script, const QStringList& faults)
{
    return faults.isEmpty() ? HttpAnswer::file(name, "text/plain; charset=utf-8", script.toUtf8())
                            : HttpAnswer::error(conflict, faults.join(QLatin1Char(' ')));
}

} // namespace

PanelApi::PanelApi(Session& session, const EventStreams& streams) : m_session(session), m_streams(streams) {}

const std::vector<PanelApi::Route>& PanelApi::routes()
{
    static const std::vector<Route> table{{"GET", "/api/device", &PanelApi::device},
                                          {"GET", "/api/key-lists", &PanelApi::keyLists},
                                          {"GET", "/api/card", nullptr, cardAsJson},
                                          {"GET", "/api/card.brf", nullptr, cardInBraille},
                                          {"GET", "/api/recording.keys", &PanelApi::recording},
                                          {"GET", "/api/former-recording.keys", &PanelApi::formerRecording},
                                          {"POST", "/api/steps", &PanelApi::takeSteps},
                                          {"POST", "/api/restart", &PanelApi::restart},
                                          {"POST", "/api/recording", &PanelApi::restartRecording},
                                          {"POST", "/api/replay", &PanelApi::replay, nullptr, true},
                                          {"POST", "/api/replay/stop", &PanelApi::stopReplay}};
    return table;
}

std::optional<HttpAnswer> PanelApi::read(const Route& route, HttpRequest* request)
{
    if (!route.takesScript) {
        return std::nullopt;
    }
    const std::optional<QString> text = textOf(request->body);
    if (!text) {
        return HttpAnswer::error(badRequest, notText);
    }
    ParsedScript parsed = Replay::read(*text);
    request->script = std::move(parsed.script);
    return parsed.faults.isEmpty() ? std::nullopt : std::optional(refuse(parsed.faults));
}

PanelApi::Rest PanelApi::begin(const Route& route, const HttpRequest& request) const
{
    if (route.answerOfCard) {
        return [card = KeyCard::from(m_session.keyLists(), m_session.model()),
                answerOf = route.answerOfCard] { return answerOf(card); };
    }
    return [answer = (this->*route.answer)(request)] { return answer; };
}

HttpAnswer PanelApi::device(const HttpRequest& /*request*/) const
{
    return HttpAnswer::json(SessionJson::description(m_session));
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

HttpAnswer PanelApi::recording(const HttpRequest& /*request*/) const
{
    QStringList faults;
    const QString script = m_session.recording(&faults);
    return recordingFile("recording.keys", script, faults);
}

HttpAnswer PanelApi::formerRecording(const HttpRequest& /*request*/) const
{
    QStringList faults;
    const QString script = m_session.formerRecording(&faults);
    return recordingFile("former-recording.keys", script, faults);
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
    const std::optional<Session::Changes> changes = changesOf(request.body, &fault);
    if (changes) {
        fault = m_session.restart(*changes);
    }
    return fault.isEmpty() ? HttpAnswer::json({}, accepted)
                           : HttpAnswer::error(badRequest, ScriptWords::shortened(fault));
}

HttpAnswer PanelApi::restartRecording(const HttpRequest& /*request*/) const
{
    m_session.restartRecording();
    return HttpAnswer::json({});
}

HttpAnswer PanelApi::replay(const HttpRequest& request) const
{
    m_session.replay(request.script);
    return HttpAnswer::json({}, accepted);
}

HttpAnswer PanelApi::stopReplay(const HttpRequest& /*request*/) const
{
    m_session.stopReplay();
    return HttpAnswer::json({});
}
