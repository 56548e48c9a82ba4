// SPDX-License-Identifier: MIT
#include "model/Witness.h"

#include "model/DaemonInputs.h"

#include <ls/Identifiers.h>

#include <algorithm>
#include <array>

using std::chrono::milliseconds;

namespace model {

namespace {

/// Writes the statements of a key script.
class ScriptText
{
public:
    ScriptText(const Playback& playback, const KeyLists& lists);

    QString text() const { return m_lines.join(QLatin1Char('\n')) + QLatin1Char('\n'); }

private:
    void writeHeader(State start, bool isOrvane);
    bool canPress(Input input) const;
    void write(const PlayedStep& step);
    void writeKey(Input input, bool isFinger);
    void writeOther(Input input);
    void writeCommand(Input input);
    void expect(const PlayedStep& step);
    void expectOutput(milliseconds at, const Output& output);

    QStringList m_lines;
    // The devices that have keys without an identifier.
    std::array<bool, Environment::deviceCount> m_hasOtherKeys{};
    milliseconds m_now{0};
    int m_device = 0;
    bool m_hasStateHandler = true;
    // The next announcement names the sender of the last command, later ones the daemon.
    QString m_sender;
};

ScriptText::ScriptText(const Playback& playback, const KeyLists& lists)
{
    const auto& steps = playback.steps();
    writeHeader(steps.isEmpty() ? playback.situation().state : steps.first().before.state, lists.isOrvane);
    for (const PlayedStep& step : steps) {
        const bool isOther =
            step.origin == PlayedStep::Origin::Finger && !Alphabet::isIdentified(step.input.key());
        m_hasOtherKeys.at(step.input.device) = m_hasOtherKeys.at(step.input.device) || isOther;
    }
    for (const PlayedStep& step : steps) {
        write(step);
    }
}

void ScriptText::writeHeader(State start, bool isOrvane)
{
    m_lines << (isOrvane ? QStringLiteral("model Orvane") : QStringLiteral("model Pellit"));
    // The state is unknown if the state handler does not answer.
    m_lines << (start == State::Undefined ? QStringLiteral("service state-handler stop")
                                          : QStringLiteral("state ") + Alphabet::nameOf(start));
    // Ends the header: later statements about the state are changes.
    m_lines << QStringLiteral("device 0");
    m_hasStateHandler = start != State::Undefined;
}

/// Scripts can press only keys with an identifier. Other keys are written as records, repetitions too, and so
/// are all keys of their device, because a record does not end the repetition of a pressed key.
bool ScriptText::canPress(Input input) const
{
    return !m_hasOtherKeys.at(input.device);
}

void ScriptText::write(const PlayedStep& step)
{
    const bool isWritten = step.origin != PlayedStep::Origin::Time ||
                           (step.input.kind == Input::Kind::Repeat && !canPress(step.input));
    if (isWritten) {
        if (step.at > m_now) {
            m_lines << QStringLiteral("wait %1").arg((step.at - m_now).count());
            m_now = step.at;
        }
        if (step.input.kind > Input::Kind::Repeat) {
            writeOther(step.input);
        } else {
            writeKey(step.input, step.origin == PlayedStep::Origin::Finger && canPress(step.input));
        }
    }
    expect(step);
}

void ScriptText::writeKey(Input input, bool isFinger)
{
    if (input.device != m_device) {
        m_device = input.device;
        m_lines << QStringLiteral("device %1").arg(m_device);
    }
    const bool isPress = input.kind == Input::Kind::Press;
    if (isFinger) {
        m_lines << (isPress ? QStringLiteral("press ") : QStringLiteral("release ")) +
                       Alphabet::nameOf(input.key());
    } else {
        const int value = isPress ? 1 : input.kind == Input::Kind::Release ? 0 : 2;
        m_lines << QStringLiteral("record %1 %2 %3")
                       .arg(DaemonInputs::keyEventType)
                       .arg(Alphabet::codeOf(input.key()))
                       .arg(value);
    }
}

void ScriptText::writeOther(Input input)
{
    if (input.kind == Input::Kind::ChangeState) {
        if (!m_hasStateHandler) {
            m_hasStateHandler = true;
            m_lines << QStringLiteral("service state-handler start");
        }
        m_lines << QStringLiteral("state ") + Alphabet::nameOf(input.newState());
    } else {
        writeCommand(input);
    }
}

void ScriptText::writeCommand(Input input)
{
    const QString key = QLatin1Char(' ') + Alphabet::nameOf(input.key());
    m_sender = ls::ServiceId::ServiceTool;
    if (input.kind == Input::Kind::StartTest) {
        m_lines << QStringLiteral("command StartTestMode");
    } else if (input.kind == Input::Kind::SimulateCombination) {
        m_lines << QStringLiteral("command SimulateModifier") + key;
    } else {
        m_lines << QStringLiteral("command SimulateShortcut") + key;
    }
}

/// Speech passes the event loop and therefore comes after the other outputs of its step.
void ScriptText::expect(const PlayedStep& step)
{
    QVector<Output> outputs = step.outputs;
    const auto speech = std::stable_partition(outputs.begin(), outputs.end(), [](const Output& output) {
        return output.kind == Output::Kind::Announce || output.kind == Output::Kind::Log;
    });
    std::for_each(outputs.begin(), speech, [&](const Output& output) { expectOutput(step.at, output); });
    if (step.input.kind >= Input::Kind::StartTest) {
        m_lines << QStringLiteral("expect %1 answer errorId=Undefined resultId=Success").arg(step.at.count());
    }
    std::for_each(speech, outputs.end(), [&](const Output& output) { expectOutput(step.at, output); });
}

void ScriptText::expectOutput(milliseconds at, const Output& output)
{
    m_lines << QStringLiteral("expect %1 ").arg(at.count()) + output.toText(m_sender);
    if (output.kind == Output::Kind::Announce) {
        m_sender = ls::ServiceId::KeyboardHandler;
    }
}

} // namespace

QString Witness::toScript(const Playback& playback, const KeyLists& lists)
{
    return ScriptText(playback, lists).text();
}

} // namespace model
