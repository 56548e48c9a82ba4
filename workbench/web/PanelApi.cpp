// SPDX-License-Identifier: MIT
#include "workbench/web/PanelApi.h"

#include "card/CardJson.h"
#include "model/KeyLists.h"
#include "simulator/script/ScriptWords.h"
#include "workbench/braille/BrailleCard.h"
#include "workbench/session/Session.h"
#include "workbench/web/EventStreams.h"
#include "workbench/web/ListChanges.h"
#include "workbench/web/ListFindings.h"
#include "workbench/web/RequestBody.h"
#include "workbench/web/SessionJson.h"

#include <chrono>
#include <mutex>

namespace {

constexpr std::chrono::seconds maxTurnTime(10); // the server's end waits as long

const QString notText = QStringLiteral("The body is not UTF-8 text.");

/// The number of the client's event stream; 0 when it names none, -1 when it is not a number.
int clientOf(const HttpRequest& request)
{
    const QByteArray text = request.headers.value("x-client", request.query.value("client"));
    bool isNumber = true;
    const int number = text.isEmpty() ? 0 : text.toInt(&isNumber);
    return isNumber && number >= 0 ? number : -1;
}

HttpAnswer cardAsJson(const KeyCard& card)
{
    return HttpAnswer::json(toJson(card));
}

HttpAnswer cardInBraille(const KeyCard& card)
{
    static std::timed_mutex turn;
    const std::unique_lock lock(turn, maxTurnTime);
    if (!lock) {
        return HttpAnswer::error(HttpStatus::unavailable,
                                 QStringLiteral("The card is made in braille for others now."));
    }
    QString error;
    const QByteArray pages = brailleCard(card, &error);
    return error.isEmpty() ? HttpAnswer::file("key-card.brf", "text/plain; charset=us-ascii", pages)
                           : HttpAnswer::error(HttpStatus::internalError, error);
}

HttpAnswer findingsOf(const QMap<QString, QByteArray>& lists, const QString& model)
{
    const std::optional<HttpAnswer> refusal = ListSearches::refusalOf(lists);
    return refusal ? *refusal : HttpAnswer::json(ListFindings::of(lists, model).toJson());
}

HttpAnswer findingsOfDraft(const DeviceOptions& /*current*/, const DeviceOptions& draft)
{
    return findingsOf(draft.keyLists, draft.model);
}

HttpAnswer changesOfDraft(const DeviceOptions& current, const DeviceOptions& draft)
{
    for (const DeviceOptions& options : {current, draft}) {
        if (const std::optional<HttpAnswer> refusal = ListSearches::refusalOf(options.keyLists)) {
            return *refusal;
        }
    }
    return HttpAnswer::json(ListChanges::between(current, draft));
}

/// One at a time: the search for causes takes all of a processor.
HttpAnswer answerInTurn(PanelApi::KeyAnswer answerOf, const KeyAnswers::Device& device,
                        const KeyQuestion& question)
{
    static std::timed_mutex turn;
    const std::unique_lock lock(turn, maxTurnTime);
    return lock ? answerOf(device, question)
                : HttpAnswer::error(HttpStatus::unavailable,
                                    QStringLiteral("Questions of others about keys are answered now."));
}

using Recording = QString (Session::*)(QStringList* faults) const;

HttpAnswer recordingFile(const Session& session, Recording recording, const QByteArray& name)
{
    QStringList faults;
    const QString script = (session.*recording)(&faults);
    return faults.isEmpty() ? HttpAnswer::file(name, "text/plain; charset=utf-8", script.toUtf8())
                            : HttpAnswer::error(HttpStatus::conflict, faults.join(QLatin1Char(' ')));
}

} // namespace

PanelApi::PanelApi(Session& session, EventStreams& streams) : m_session(session), m_streams(streams) {}

const QMap<QByteArray, PanelApi::Route>& PanelApi::routes()
{
    using Api = PanelApi&;
    using Request = const HttpRequest&;
    using To = const Reply&;
    const auto recording = [](Api api, Request, To reply) {
        reply(recordingFile(api.m_session, &Session::recording, "recording.keys"));
    };
    const auto formerRecording = [](Api api, Request, To reply) {
        reply(recordingFile(api.m_session, &Session::formerRecording, "former-recording.keys"));
    };
    const auto restartRecording = [](Api api, Request, To reply) {
        api.m_session.restartRecording();
        reply(HttpAnswer::json({}));
    };
    const auto stopReplay = [](Api api, Request, To reply) {
        api.m_session.stopReplay();
        reply(HttpAnswer::json({}));
    };
    const auto device = [](Api api, Request, To reply) {
        reply(HttpAnswer::json(SessionJson::description(api.m_session)));
    };
    const auto draftFindings = [](Api api, Request request, To reply) {
        api.searchDraft(request, findingsOfDraft, reply);
    };
    const auto draftChanges = [](Api api, Request request, To reply) {
        api.searchDraft(request, changesOfDraft, reply);
    };
    const auto what = [](Api api, Request request, To reply) {
        api.answerAboutKeys(request, KeyAnswers::what, reply);
    };
    const auto why = [](Api api, Request request, To reply) {
        api.answerAboutKeys(request, KeyAnswers::why, reply);
    };
    const auto judgement = [](Api api, Request request, To reply) {
        api.answerAboutKeys(request, KeyAnswers::judgement, reply);
    };
    static const QMap<QByteArray, Route> table{
        {"/api/events", {"GET", [](Api api, Request, To reply) { reply(api.events()); }}},
        {"/api/device", {"GET", device}},
        {"/api/key-lists", {"GET", [](Api api, Request, To reply) { reply(api.keyLists()); }}},
        {"/api/card", {"GET", [](Api api, Request, To reply) { api.makeCard(cardAsJson, reply); }}},
        {"/api/card.brf", {"GET", [](Api api, Request, To reply) { api.makeCard(cardInBraille, reply); }}},
        {"/api/what", {"POST", what}},
        {"/api/why", {"POST", why}},
        {"/api/judgement", {"POST", judgement}},
        {"/api/findings", {"GET", [](Api api, Request, To reply) { api.findFaults(reply); }, draftFindings}},
        {"/api/diff", {"POST", draftChanges}},
        {"/api/recording.keys", {"GET", recording}},
        {"/api/former-recording.keys", {"GET", formerRecording}},
        {"/api/steps", {"POST", [](Api api, Request request, To reply) { reply(api.takeSteps(request)); }}},
        {"/api/restart", {"POST", [](Api api, Request request, To reply) { reply(api.restart(request)); }}},
        {"/api/recording", {"POST", restartRecording}},
        {"/api/replay", {"POST", [](Api api, Request request, To reply) { api.replay(request, reply); }}},
        {"/api/replay/stop", {"POST", stopReplay}}};
    return table;
}

HttpAnswer PanelApi::events()
{
    const std::shared_ptr<EventStream> stream = m_streams.open();
    return stream ? HttpAnswer{HttpStatus::ok, "text/event-stream", {}, {}, stream}
                  : HttpAnswer::error(HttpStatus::unavailable,
                                      QStringLiteral("There are too many event streams."));
}

HttpAnswer PanelApi::keyLists() const
{
    QJsonObject lists;
    const QMap<QString, QByteArray> files = m_session.keyLists();
    for (auto file = files.begin(); file != files.end(); ++file) {
        lists.insert(file.key(), QString::fromUtf8(file.value()));
    }
    return HttpAnswer::json(lists);
}

HttpAnswer PanelApi::takeSteps(const HttpRequest& request)
{
    const int client = clientOf(request);
    // The keys that an unknown client presses would never be released.
    if (client != 0 && !m_streams.contains(client)) {
        return HttpAnswer::error(HttpStatus::badRequest,
                                 QStringLiteral("There is no event stream of that client."));
    }
    const std::optional<QString> statements = textOf(request.body);
    if (!statements) {
        return HttpAnswer::error(HttpStatus::badRequest, notText);
    }
    const QVector<ScriptFault> faults = m_session.execute(*statements, client);
    return faults.isEmpty() ? HttpAnswer::json({}) : refuse(faults);
}

HttpAnswer PanelApi::restart(const HttpRequest& request)
{
    QString fault;
    const std::optional<Session::Changes> changes = changesOf(request.body, &fault);
    if (changes) {
        fault = m_session.restart(*changes);
    }
    return fault.isEmpty() ? HttpAnswer::json({}, HttpStatus::accepted)
                           : HttpAnswer::error(HttpStatus::badRequest, ScriptWords::shortened(fault));
}

void PanelApi::replay(const HttpRequest& request, const Reply& reply)
{
    const std::optional<QString> text = textOf(request.body);
    if (!text) {
        reply(HttpAnswer::error(HttpStatus::badRequest, notText));
        return;
    }
    m_work.start([this, text, reply] {
        return [this, parsed = Replay::read(*text), reply] {
            if (parsed.faults.isEmpty()) {
                m_session.replay(parsed.script);
            }
            reply(parsed.faults.isEmpty() ? HttpAnswer::json({}, HttpStatus::accepted)
                                          : refuse(parsed.faults));
        };
    });
}

void PanelApi::makeCard(HttpAnswer (*answerOf)(const KeyCard& card), const Reply& reply)
{
    m_work.start([card = currentCard(), answerOf, reply] {
        return [answer = answerOf(card.get()), reply] { reply(answer); };
    });
}

void PanelApi::findFaults(const Reply& reply)
{
    const auto lists = std::make_pair(m_session.keyLists(), m_session.model());
    if (!m_findings.valid() || lists != m_findingsLists) {
        m_findingsLists = lists;
        m_findings = std::async(std::launch::deferred, findingsOf, lists.first, lists.second);
    }
    m_searches.start([findings = m_findings] { return findings.get(); }, reply);
}

/// Searches in the lists that a device would have if it were restarted with the body of the request.
void PanelApi::searchDraft(const HttpRequest& request, ListSearch search, const Reply& reply)
{
    QString fault;
    const std::optional<Session::Changes> changes = changesOf(request.body, &fault);
    if (changes) {
        fault = DeviceSetup::check(*changes);
    }
    if (!fault.isEmpty()) {
        reply(HttpAnswer::error(HttpStatus::badRequest, ScriptWords::shortened(fault)));
        return;
    }
    m_searches.start([search, current = m_session.options(),
                      draft = m_session.optionsAfter(*changes)] { return search(current, draft); },
                     reply);
}

void PanelApi::answerAboutKeys(const HttpRequest& request, KeyAnswer answerOf, const Reply& reply)
{
    const KeyAnswers::Device device{m_session.keyLists(), m_session.model()};
    m_work.start([body = request.body, state = m_session.state(), device, answerOf, reply] {
        HttpAnswer answer;
        const auto question = KeyQuestion::read(body, state, &answer);
        if (question) {
            answer = answerInTurn(answerOf, device, *question);
        }
        return [answer, reply] { reply(answer); };
    });
}

/// The first thread that needs the card makes it, and the others wait for it.
std::shared_future<KeyCard> PanelApi::currentCard()
{
    const auto lists = std::make_pair(m_session.keyLists(), m_session.model());
    if (!m_card.valid() || lists != m_cardLists) {
        m_cardLists = lists;
        m_card = std::async(std::launch::deferred, &KeyCard::of,
                            model::KeyLists::read(lists.first, lists.second == QLatin1String("Orvane")));
    }
    return m_card;
}
