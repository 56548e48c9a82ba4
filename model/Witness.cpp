// SPDX-License-Identifier: MIT
#include "model/Witness.h"

#include <algorithm>

namespace model {

namespace {

class Player
{
public:
    Player(const KeyModel& keyModel, const Environment& environment, State start)
        : m_environment(environment), m_playback(keyModel, start)
    {}

    void play(Input input);
    const Playback& playback() const { return m_playback; }

private:
    void waitForTick(Input input);
    void waitFor(Input input);
    void move(Input input);
    bool isPerson() const { return m_environment.kind == Environment::Kind::Person; }
    bool isDigital() const { return m_environment.time == Environment::Time::Digital; }

    Environment m_environment;
    Playback m_playback;
    bool m_hasMoved = false;
};

void Player::play(Input input)
{
    const bool comesByItself = input.isExpiry() || (isPerson() && input.kind == Input::Kind::Repeat);
    if (input.kind == Input::Kind::Tick) {
        waitForTick(input);
    } else if (comesByItself) {
        waitFor(input);
    } else if (input.kind <= Input::Kind::Repeat) {
        move(input);
    } else {
        m_playback.take(input);
    }
}

void Player::waitForTick(Input input)
{
    const auto longPress = m_playback.due(Input::of(Input::Kind::LongPressTime));
    m_playback.wait(input.isLong() && longPress ? *longPress - m_playback.now() : Environment::tick);
}

/// On digital clocks, the tick has already brought the input.
void Player::waitFor(Input input)
{
    const auto due = m_playback.due(input);
    if (!isDigital() && due) {
        m_playback.wait(*due - m_playback.now());
    }
}

void Player::move(Input input)
{
    if (m_hasMoved && !isDigital()) {
        m_playback.wait(Witness::movementInterval);
    }
    m_hasMoved = true;
    if (!isPerson()) {
        m_playback.take(input);
    } else if (input.kind == Input::Kind::Press) {
        m_playback.press(input.key(), input.device);
    } else {
        m_playback.release(input.key(), input.device);
    }
}

} // namespace

Playback Witness::play(const KeyModel& keyModel, const Environment& environment, const Run& run)
{
    Player player(keyModel, environment, run.start);
    for (const Input input : run.inputs) {
        player.play(input);
    }
    return player.playback();
}

QVector<RowId> Witness::announcedAtEnd(const Playback& playback)
{
    QVector<RowId> rows;
    const auto& steps = playback.steps();
    for (int i = steps.size() - 1; i >= 0 && steps.at(i).at == steps.last().at; --i) {
        for (const Effect& effect : steps.at(i).effects) {
            if (effect.rule == Rule::Announces) {
                rows.append(effect.row);
            }
        }
    }
    std::sort(rows.begin(), rows.end());
    return rows;
}

} // namespace model
