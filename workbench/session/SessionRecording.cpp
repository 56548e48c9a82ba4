// SPDX-License-Identifier: MIT
#include "workbench/session/SessionRecording.h"

#include "simulator/script/CommandWords.h"
#include "simulator/script/ExpectationWords.h"
#include "simulator/script/KeyListJson.h"
#include "simulator/script/KeyScriptText.h"
#include "simulator/script/ObservationText.h"

using std::chrono::milliseconds;

namespace {

constexpr int mostEntries = 20'000;
constexpr int mostText = 800'000;
/// What a line has beside its text: a time or the wait before it, keyword and end.
constexpr int lineSize = 32;
constexpr int mostFaults = 20;

int textSize(const ScriptStep& step)
{
    const int words =
        step.kind == ScriptStep::Kind::Command ? CommandWords::wordsOf(step.command).join(' ').size() : 0;
    return step.text.toUtf8().size() + words;
}

/// Log lines that a script cannot expect (blank ones, for example) are none of its matters.
bool canBeExpected(const QString& text)
{
    return !ObservationText::isLogLine(text) ||
           (ExpectationWords::check(text).isEmpty() && ExpectationWords::normalised(text) == text);
}

QStringList sentences(const QVector<ScriptFault>& faults)
{
    QStringList texts;
    for (const ScriptFault& fault : faults) {
        texts << fault.text;
    }
    texts.removeDuplicates();
    return texts;
}

bool isInstalled(const QMap<QString, QByteArray>& keyLists)
{
    return KeyListJson::areEqual(keyLists, KeyListJson::read(QStringLiteral(KEYBOARD_HANDLER_DATA_FOLDER)));
}

} // namespace

void SessionRecording::begin(const QString& model, const QString& state,
                             const QMap<QString, QByteArray>& keyLists,
                             const QMap<QString, ServiceChange::Condition>& services)
{
    m_script = KeyScript();
    m_script.recorded = true;
    m_script.model = model;
    m_script.initialState = state;
    m_script.services = services;
    m_keyLists = keyLists;
    m_size = 0;
    m_state = State::Running;
    m_clock.start();
}

void SessionRecording::stop()
{
    if (isRunning()) {
        m_script.end = elapsed();
        m_state = State::Stopped;
    }
}

void SessionRecording::add(const ScriptStep& step)
{
    if (isRunning()) {
        m_script.steps.append(step);
        m_script.steps.last().at = elapsed();
        grow(textSize(step));
    }
}

void SessionRecording::observe(const QString& text)
{
    // What is logged before the first step comes from the start of the daemon, and sooner or later.
    if (!isRunning() || !canBeExpected(text) || (isUntouched() && ObservationText::isLogLine(text))) {
        return;
    }
    m_script.expectations.append({elapsed(), text});
    grow(text.toUtf8().size());
}

QString SessionRecording::toText(QStringList* faults) const
{
    if (m_state == State::None) {
        *faults = QStringList{QStringLiteral("Nothing was recorded yet.")};
        return {};
    }
    KeyScript script = m_script;
    if (isRunning()) {
        script.end = elapsed();
    }
    if (!isInstalled(m_keyLists)) {
        const KeyListJson::Parsed lists = KeyListJson::rowsOf(m_keyLists);
        script.rows = lists.rows;
        *faults = lists.faults.mid(0, mostFaults);
    }
    if (!faults->isEmpty()) {
        return {};
    }
    const QString text = writeKeyScript(script);
    *faults = sentences(parseScriptFile(text.toUtf8()).faults);
    return faults->isEmpty() ? text : QString();
}

milliseconds SessionRecording::elapsed() const
{
    return milliseconds(m_clock.elapsed());
}

void SessionRecording::grow(int textSize)
{
    m_size += textSize + lineSize;
    if (m_size > mostText || m_script.steps.size() + m_script.expectations.size() >= mostEntries) {
        stop();
        m_isFullNow = true;
    }
}
