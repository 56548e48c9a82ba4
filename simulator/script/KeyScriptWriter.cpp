// SPDX-License-Identifier: MIT
#include "simulator/script/KeyScriptText.h"

#include "simulator/script/CommandWords.h"
#include "simulator/script/KeyRowWords.h"
#include "simulator/script/ServiceWords.h"

namespace {

QStringList wordsOf(const ScriptStep& step)
{
    switch (step.kind) {
    case ScriptStep::Kind::Heading:
        return {QStringLiteral("##"), step.text};
    case ScriptStep::Kind::Press:
        return {QStringLiteral("press"), step.text};
    case ScriptStep::Kind::Release:
        return {QStringLiteral("release"), step.text};
    case ScriptStep::Kind::Record:
        return {QStringLiteral("record"), QString::number(step.record.type),
                QString::number(step.record.code), QString::number(step.record.value)};
    case ScriptStep::Kind::State:
        return {QStringLiteral("state"), step.text};
    case ScriptStep::Kind::Service:
        return QStringList(QStringLiteral("service")) + ServiceWords::wordsOf(step.service);
    case ScriptStep::Kind::Command:
        return QStringList(QStringLiteral("command")) + CommandWords::wordsOf(step.command);
    case ScriptStep::Kind::Console:
        return {QStringLiteral("console"), step.text};
    }
    return {};
}

/// Writes a script line by line, with a `wait` where time passes.
class Writer
{
public:
    void writeHeader(const KeyScript& script)
    {
        if (script.recorded) {
            line(script.hasOnlyAnnouncements
                     ? QStringList{QStringLiteral("recorded"), QStringLiteral("announcements")}
                     : QStringList{QStringLiteral("recorded")});
        }
        line({QStringLiteral("model"), script.model});
        line({QStringLiteral("state"), script.initialState});
        for (auto it = script.services.begin(); it != script.services.end(); ++it) {
            line(QStringList(QStringLiteral("service")) + ServiceWords::wordsOf({it.key(), it.value()}));
        }
        for (const KeyRow& row : script.rows) {
            line(QStringList(QStringLiteral("row")) + KeyRowWords::wordsOf(row));
        }
        // Ends the header, so that a following change of state is not read as the initial state.
        line({QStringLiteral("device"), QString::number(m_keyboard)});
    }

    void waitUntil(std::chrono::milliseconds time)
    {
        if (time > m_now) {
            line({QStringLiteral("wait"), QString::number((time - m_now).count())});
            m_now = time;
        }
    }

    void write(const ScriptStep& step)
    {
        waitUntil(step.at);
        const bool fromKeyboard = step.kind == ScriptStep::Kind::Press ||
                                  step.kind == ScriptStep::Kind::Release ||
                                  step.kind == ScriptStep::Kind::Record;
        if (fromKeyboard && step.keyboard != m_keyboard) {
            line({QStringLiteral("device"), QString::number(step.keyboard)});
            m_keyboard = step.keyboard;
        }
        line(wordsOf(step));
    }

    void write(const Observation& expectation)
    {
        line({QStringLiteral("expect"), QString::number(expectation.at.count()), expectation.text});
    }

    QString text() const { return m_text; }

private:
    void line(const QStringList& words) { m_text += words.join(' ') + '\n'; }

    QString m_text;
    std::chrono::milliseconds m_now{0};
    int m_keyboard = 0;
};

} // namespace

QString writeStep(const ScriptStep& step)
{
    return wordsOf(step).join(' ');
}

QString writeKeyScript(const KeyScript& script)
{
    Writer writer;
    writer.writeHeader(script);
    auto expectation = script.expectations.begin();
    for (const ScriptStep& step : script.steps) {
        for (; expectation != script.expectations.end() && expectation->at < step.at; ++expectation) {
            writer.write(*expectation);
        }
        writer.write(step);
    }
    writer.waitUntil(script.end);
    for (; expectation != script.expectations.end(); ++expectation) {
        writer.write(*expectation);
    }
    return writer.text();
}
