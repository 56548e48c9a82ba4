// SPDX-License-Identifier: MIT
#include "control/LiveKeys.h"

#include "checker/ListSources.h"
#include "control/DeviceModel.h"
#include "control/Monotonic.h"
#include "control/doctor/Probes.h"
#include "control/record/Recording.h"
#include "model/DaemonInputs.h"
#include "vocabulary/Vocabulary.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>

#include <algorithm>

using namespace std::chrono_literals;

namespace control {

namespace {

constexpr auto lookInterval = 100ms;
/// After the window of 1500 ms, nothing of earlier keys counts.
constexpr std::chrono::microseconds quietTime = 1600ms;
/// How late a record may be read, and an announcement may come, compared with the other.
constexpr std::chrono::microseconds recordDelay = 50ms;
constexpr std::chrono::microseconds announcementDelay = 3000ms;
/// Far more than keys cause in that time.
constexpr size_t maxUnexplained = 256;

QString eventOf(const model::PlayedStep& step)
{
    constexpr int width = 18;
    return checker::EffectWords::eventOf(step).leftJustified(width);
}

} // namespace

LiveKeys::LiveKeys(Report report) : m_report(std::move(report))
{
    connect(&m_nodes, &InputNodes::recorded, this, &LiveKeys::take);
    connect(&m_nodes, &InputNodes::gapFound, this, &LiveKeys::takeGap);
    connect(&m_timer, &QTimer::timeout, this, &LiveKeys::lookAround);
    m_timer.setInterval(lookInterval);
}

QString LiveKeys::open()
{
    const QString fault = m_nodes.open();
    if (!fault.isEmpty()) {
        return fault;
    }
    readLists();
    m_lastRecord = Monotonic::now();
    for (int keyboard = 0; keyboard < InputNodes::count; ++keyboard) {
        const QVector<quint16> down = m_nodes.node(keyboard).keysDown().value_or(QVector<quint16>());
        for (const quint16 code : down) {
            m_down.insert({keyboard, code});
        }
    }
    m_timer.start();
    return {};
}

void LiveKeys::setState(const QString& state)
{
    m_state = state;
    if (!m_playback) {
        return;
    }
    const QVector<model::Input> inputs = model::DaemonInputs::ofState(state);
    if (inputs.isEmpty()) {
        loseTrack(QStringLiteral("the state is not known"));
        return;
    }
    advance(Monotonic::now());
    for (const model::Input input : inputs) {
        m_playback->take(input);
    }
    flush();
}

void LiveKeys::takeAnnouncement(const QVariantMap& notification)
{
    if (m_playback) {
        const microseconds now = Monotonic::now();
        m_announced.push_back({Happening::announcement(notification, now).textWithoutSender, now});
        compare(now);
    }
}

void LiveKeys::restart()
{
    loseTrack(QStringLiteral("a daemon has come"));
    readLists();
}

/// The rows of the files, which may not be those that the daemon has read.
void LiveKeys::readLists()
{
    const QDir folder(vocabulary::dataDirectory);
    const auto sources = checker::ListSources::read({folder.path()});
    m_model = std::make_unique<model::KeyModel>(sources.lists(DeviceModel::isOrvane()));
    m_effects = std::make_unique<checker::EffectWords>(m_model->lists(), checker::PlacesOf::rowsIn(sources));
    const QDateTime ready = Probes::readyTime();
    for (const model::List list : model::allLists) {
        const QFileInfo file(folder, model::KeyLists::fileOf(list));
        if (ready.isValid() && file.exists() && file.metadataChangeTime() > ready) {
            say(QStringLiteral("%1 is newer than the daemon, which may use other rows").arg(file.fileName()));
        }
    }
}

void LiveKeys::take(const InputRecord& record)
{
    if (record.type != model::DaemonInputs::keyEventType) {
        return;
    }
    m_lastRecord = Monotonic::now();
    const QPair<int, quint16> key(record.keyboard, record.code);
    record.value == 0 ? (void)m_down.remove(key) : (void)m_down.insert(key);
    const auto inputs =
        model::DaemonInputs::ofRecord(record.type, record.code, record.value, record.keyboard);
    if (!m_playback) {
        sayUnexplained(inputs);
        return;
    }
    advance(record.at);
    for (const model::Input input : inputs) {
        m_playback->take(input);
    }
    flush();
}

void LiveKeys::sayUnexplained(const QVector<model::Input>& inputs)
{
    if (inputs.isEmpty() || inputs.first().kind == model::Input::Kind::Repeat) {
        return;
    }
    const bool isPress = inputs.first().kind == model::Input::Kind::Press;
    say(QStringLiteral("%1 %2: no rules are named, because what came before is not known")
            .arg(model::Alphabet::nameOf(inputs.first().key()),
                 isPress ? QStringLiteral("down") : QStringLiteral("up")));
}

void LiveKeys::takeGap(const InputGap& gap)
{
    m_lastRecord = Monotonic::now();
    m_down.clear();
    loseTrack(gap.reason == InputGap::Reason::Dropped ? QStringLiteral("the kernel dropped records of keys")
                                                      : QStringLiteral("an input device left or returned"));
}

void LiveKeys::lookAround()
{
    const microseconds now = Monotonic::now();
    if (!m_playback) {
        if (!m_state.isEmpty() && m_down.isEmpty() && now - m_lastRecord >= quietTime) {
            begin(now);
        }
        return;
    }
    advance(now - recordDelay);
    flush();
    compare(now);
}

void LiveKeys::begin(microseconds now)
{
    const auto state = model::Alphabet::stateOf(m_state);
    if (!state) {
        return;
    }
    m_playback.emplace(*m_model, *state);
    m_origin = now;
    m_explained = 0;
    say(QStringLiteral("from here on, the rules of each key are named"));
}

void LiveKeys::loseTrack(const QString& reason)
{
    if (m_playback) {
        m_playback.reset();
        say(QStringLiteral("the rules are not named until no key has been down for 1.6 s: %1").arg(reason));
    }
    m_expected.clear();
    m_announced.clear();
    m_lastRecord = Monotonic::now();
}

void LiveKeys::advance(microseconds time)
{
    using std::chrono::milliseconds;
    const auto target = std::chrono::duration_cast<milliseconds>(time - m_origin);
    m_playback->wait(std::max(target - m_playback->now(), milliseconds(0)));
}

void LiveKeys::flush()
{
    for (; m_explained < m_playback->steps().size(); ++m_explained) {
        explain(m_explained);
    }
    const model::Situation& situation = m_playback->situation();
    model::Situation quiet = model::Situation::initial(situation.state);
    quiet.testMode = situation.testMode;
    // A key that is held for days must not fill the memory.
    constexpr int maxSteps = 10'000;
    if ((situation == quiet && m_down.isEmpty()) || m_explained > maxSteps) {
        m_playback->forgetSteps();
        m_explained = 0;
    }
}

void LiveKeys::explain(int step)
{
    const model::PlayedStep& played = m_playback->steps().at(step);
    QStringList phrases = m_effects->phrasesOf(m_playback->steps(), step);
    for (const model::Output& output : played.outputs) {
        if (output.kind == model::Output::Kind::Announce) {
            m_expected.push_back({output.toText(QString()), m_origin + played.at});
        }
    }
    const bool isKey = played.origin != model::PlayedStep::Origin::Time &&
                       played.input.kind != model::Input::Kind::ChangeState;
    if (phrases.isEmpty() && !isKey) {
        return;
    }
    if (phrases.isEmpty()) {
        phrases.append(QStringLiteral("does nothing"));
    }
    const QString event = checker::EffectWords::eventOf(played);
    m_report(
        eventOf(played) + phrases.join(QStringLiteral("; ")),
        {{QStringLiteral("event"), event}, {QStringLiteral("rules"), QJsonArray::fromStringList(phrases)}});
}

/// An announcement and the record that explains it come by different ways, so each waits for the other.
void LiveKeys::compare(microseconds now)
{
    const auto isSame = [](const QString& text) {
        return [text](const Announcement& other) { return other.text == text; };
    };
    for (auto each = m_announced.begin(); each != m_announced.end();) {
        const auto found = std::find_if(m_expected.begin(), m_expected.end(), isSame(each->text));
        if (found == m_expected.end()) {
            ++each;
            continue;
        }
        m_expected.erase(found);
        each = m_announced.erase(each);
    }
    if (!m_announced.empty() &&
        (now - m_announced.front().at > announcementDelay || m_announced.size() > maxUnexplained)) {
        loseTrack(QStringLiteral("\"%1\" is not explained by the keys; a command may have come")
                      .arg(m_announced.front().text.trimmed()));
    } else if (!m_expected.empty() && now - m_expected.front().at > announcementDelay) {
        loseTrack(QStringLiteral("the keys explain \"%1\", which did not come; the daemon may be late, or a "
                                 "command or other rows may have played a part")
                      .arg(m_expected.front().text.trimmed()));
    }
}

} // namespace control
