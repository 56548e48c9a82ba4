// SPDX-License-Identifier: MIT
#include "tests/whole/soak/SoakTraffic.h"

#include "simulator/script/ScriptPlayer.h"
#include "tests/whole/random/RandomRows.h"
#include "tests/whole/random/RandomScript.h"

#include <ls/MessageKeys.h>

#include <QElapsedTimer>
#include <QEventLoop>
#include <QTimer>

using namespace std::chrono_literals;

namespace {

constexpr auto timeout = 20s;
constexpr int burstKeys = 100;
constexpr int maxPauseMs = 20;
constexpr int timedPresses = 20;
constexpr int maxMenuPauseMs = 150;

} // namespace

SoakTraffic::SoakTraffic(SimulatedDevice& device, quint64 seed) : m_device(device), m_seed(seed), m_dice(seed)
{
    connect(&device, &SimulatedDevice::announced, this, &SoakTraffic::note);
    connect(&device, &SimulatedDevice::answered, this, [this] { --m_unanswered; });
    connect(&device, &SimulatedDevice::commandFailed, this, [this] {
        --m_unanswered;
        ++m_refused;
    });
}

QString SoakTraffic::playRound()
{
    for (const auto& part : {&SoakTraffic::playRandomScript, &SoakTraffic::releaseAll,
                             &SoakTraffic::playBurst, &SoakTraffic::timeMenu}) {
        const QString fault = (this->*part)();
        if (!fault.isEmpty()) {
            return QStringLiteral("round %1: %2").arg(m_counts.rounds).arg(fault);
        }
    }
    if (m_refused > 0) {
        return QStringLiteral("round %1: %2 commands got an error of the bus")
            .arg(m_counts.rounds)
            .arg(m_refused);
    }
    ++m_counts.rounds;
    return {};
}

QVector<double> SoakTraffic::takeLatencies()
{
    return std::exchange(m_latencies, {});
}

void SoakTraffic::note(const QVariantMap& notification)
{
    ++m_counts.announcements;
    if (notification.value(ls::actionIdKey) == ls::KeyboardActionId::SingleKey) {
        m_singleKeys << notification.value(ls::firstKeyKey).toString();
    }
}

QString SoakTraffic::playRandomScript()
{
    const KeyScript script = RandomScript::roll(m_seed + quint64(m_counts.rounds));
    m_device.setState(script.initialState);
    ScriptPlayer player(script, m_device);
    connect(&player, &ScriptPlayer::aboutToPlay, this, [this](const ScriptStep& step) {
        m_counts.keys += step.kind == ScriptStep::Kind::Press;
        m_counts.states += step.kind == ScriptStep::Kind::State;
        m_counts.commands += step.kind == ScriptStep::Kind::Command;
        m_unanswered += step.kind == ScriptStep::Kind::Command;
    });
    QEventLoop loop;
    connect(&player, &ScriptPlayer::finished, &loop, &QEventLoop::quit);
    player.start();
    loop.exec();
    return waitFor([this] { return m_unanswered == 0; })
               ? QString()
               : QStringLiteral("%1 commands were not answered").arg(m_unanswered);
}

/// Releases all keys of a script. In the keyboard test, only the key that ends it is announced, so this
/// announcement shows that the daemon has handled the keys before it.
QString SoakTraffic::releaseAll()
{
    for (int device = 0; device < Panel::keyboardCount; ++device) {
        if (!enter(ls::StateId::Print) || !roundTrip(ls::KeyboardHandlerCmdId::StartTestMode)) {
            return QStringLiteral("the keyboard test does not begin");
        }
        m_singleKeys.clear();
        for (const QString& key : ls::KeyId::meta.keys()) {
            if (key != ls::KeyId::Ten) {
                m_device.release(device, key);
            }
        }
        tap(device, ls::KeyId::Ten);
        if (!waitFor([this] { return m_singleKeys == QStringList(ls::KeyId::Ok); })) {
            return QStringLiteral("the end of the keyboard test announces: ") + m_singleKeys.join(' ');
        }
    }
    return {};
}

QString SoakTraffic::playBurst()
{
    const QString state =
        m_dice.pick({ls::StateId::Print, ls::StateId::PrintOff, ls::StateId::Update, ls::StateId::Error});
    if (!enter(state)) {
        return QStringLiteral("no answer in ") + state;
    }
    const int device = m_dice.below(Panel::keyboardCount);
    QStringList keys;
    m_singleKeys.clear();
    for (int i = 0; i < burstKeys; ++i) {
        const QString key = RandomRows::anyKey(m_dice);
        tap(device, key);
        if (key != ls::KeyId::Unknown) { // never announced
            keys << key;
        }
        pause(m_dice.below(maxPauseMs));
    }
    return waitFor([&] { return m_singleKeys == keys; })
               ? QString()
               : QStringLiteral("%1: pressed %2, but announced %3")
                     .arg(state, keys.join(' '), m_singleKeys.join(' '));
}

QString SoakTraffic::timeMenu()
{
    if (!enter(ls::StateId::Idle)) {
        return QStringLiteral("no answer in Idle");
    }
    for (int i = 0; i < timedPresses; ++i) {
        m_singleKeys.clear();
        QElapsedTimer clock;
        clock.start();
        tap(0, ls::KeyId::Menu);
        if (!waitFor([this] { return m_singleKeys == QStringList(ls::KeyId::Menu); })) {
            return QStringLiteral("Menu announces: ") + m_singleKeys.join(' ');
        }
        m_latencies << double(clock.nsecsElapsed()) / 1e6;
        pause(m_dice.below(maxMenuPauseMs));
    }
    return {};
}

bool SoakTraffic::waitFor(const std::function<bool()>& isReached)
{
    QEventLoop loop;
    const auto check = [&] {
        if (isReached()) {
            loop.quit();
        }
    };
    connect(&m_device, &SimulatedDevice::announced, &loop, check);
    connect(&m_device, &SimulatedDevice::answered, &loop, check);
    connect(&m_device, &SimulatedDevice::commandFailed, &loop, check);
    QTimer::singleShot(timeout, &loop, &QEventLoop::quit);
    if (!isReached()) {
        loop.exec();
    }
    return isReached();
}

bool SoakTraffic::enter(const QString& state)
{
    ++m_counts.states;
    m_device.setState(state);
    // The state is announced on another connection. The answer to a first command shows that the bus has it,
    // the answer to a second one that the daemon has it.
    return roundTrip(ls::KeyboardHandlerCmdId::GetLastKey) && roundTrip(ls::KeyboardHandlerCmdId::GetLastKey);
}

bool SoakTraffic::roundTrip(const QString& command)
{
    ++m_counts.commands;
    ++m_unanswered;
    return !m_device.request({{ls::commandIdKey, command}, {ls::senderIdKey, ls::ServiceId::ServiceTool}})
                .isEmpty();
}

void SoakTraffic::tap(int device, const QString& key)
{
    ++m_counts.keys;
    m_device.press(device, key);
    m_device.release(device, key);
}

void SoakTraffic::pause(int ms)
{
    QEventLoop loop;
    QTimer::singleShot(ms, Qt::PreciseTimer, &loop, &QEventLoop::quit);
    loop.exec();
}
