// SPDX-License-Identifier: MIT
#include "tests/whole/random/Player.h"

#include "tests/virtual/VirtualDevice.h"
#include "tests/whole/random/Dice.h"

using std::chrono::milliseconds;

namespace {

constexpr int maxPiece = 700;

using WaitUntil = std::function<void(VirtualDevice&, milliseconds)>;

class Recording
{
public:
    Recording(const KeyScript& script, const WaitUntil& waitUntil)
        : m_play{script, {}}, m_waitUntil(waitUntil)
    {
        m_device.setModel(script.model);
        m_device.setRows(script.rows);
        m_device.start(script.initialState);
        m_device.take(); // discards the log lines of the start
    }

    Play play()
    {
        const KeyScript script = m_play.script;
        for (int i = 0; i < script.steps.size(); ++i) {
            m_waitUntil(m_device, script.steps.at(i).at);
            note(i, false);
            m_device.play(script.steps.at(i));
            note(i + 1, true);
        }
        m_waitUntil(m_device, script.end);
        note(script.steps.size(), false);
        return m_play;
    }

private:
    void note(int steps, bool inStep)
    {
        const Observations observations = m_device.takeObservations();
        for (const Observation& observation : observations) {
            const Place place{steps, inStep ? Place::inStep : observation.at};
            m_play.events.append({observation.at, observation.text, place});
        }
    }

    Play m_play;
    WaitUntil m_waitUntil;
    VirtualDevice m_device;
};

} // namespace

Play Player::play(const KeyScript& script)
{
    return Recording(script, [](VirtualDevice& device, milliseconds time) { device.waitUntil(time); }).play();
}

Play Player::playInPieces(const KeyScript& script, quint64 seed)
{
    Dice dice(seed);
    milliseconds now{0};
    const auto waitInPieces = [&](VirtualDevice& device, milliseconds time) {
        while (now < time) {
            now = qMin(time, now + milliseconds(dice.below(maxPiece)));
            device.waitUntil(now);
        }
        device.waitUntil(time);
    };
    return Recording(script, waitInPieces).play();
}
