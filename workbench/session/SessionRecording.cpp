// SPDX-License-Identifier: MIT
#include "workbench/session/SessionRecording.h"

#include "simulator/script/CommandWords.h"
#include "simulator/script/ExpectationWords.h"
#include "simulator/script/KeyListJson.h"
#include "simulator/script/KeyScriptText.h"
#include "simulator/script/ObservationText.h"
#include "workbench/session/DeviceSetup.h"

using std::chrono::milliseconds;

namespace {

constexpr int maxEntries = 20'000;
constexpr int maxSize = 800'000;
/// The size of a line without its text: a time or the preceding wait, keyword and line feed.
constexpr int lineOverhead = 32;
constexpr int maxFaults = 20;

int textSize(const ScriptStep& step)
{
    const int words =
        step.kind == ScriptStep::Kind::Command ? CommandWords::wordsOf(step.command).join(' ').size() : 0;
    return step.text.toUtf8().size() + words;
}

/// False for log lines that a script cannot express, such as blank ones.
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
    // Log lines before the first step belong to the daemon's start and arrive at no definite time.
    if (!isRunning() || !canBeExpected(text) || (!hasSteps() && ObservationText::isLogLine(text))) {
        return;
    }
    m_script.expectations.append({elapsed(), text});
    grow(text.toUtf8().size());
}

QString SessionRecording::toText(QStringList* faults) const
{
    if (m_state == State::None) {
        *faults = QStringList{QStringLiteral("Nothing has been recorded yet.")};
        return {};
    }
    KeyScript script = m_script;
    if (isRunning()) {
        script.end = elapsed();
    }
    if (!DeviceSetup::areInstalled(m_keyLists)) {
        const KeyListJson::Parsed lists = KeyListJson::rowsOf(m_keyLists);
        script.rows = lists.rows;
        *faults = lists.faults.mid(0, maxFaults);
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
    m_size += textSize + lineOverhead;
    if (m_size > maxSize || m_script.steps.size() + m_script.expectations.size() >= maxEntries) {
        stop();
        m_becameFull = true;
    }
}
