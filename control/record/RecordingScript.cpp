// SPDX-License-Identifier: MIT
#include "control/record/RecordingScript.h"

#include "control/record/KeySteps.h"
#include "control/record/KeyVerdict.h"
#include "control/record/Stretches.h"
#include "simulator/script/KeyScriptText.h"

#include <ls/MessageKeys.h>

#include <algorithm>

using std::chrono::microseconds;
using std::chrono::milliseconds;

namespace control {

namespace {

using Kind = Happening::Kind;

/// A command is written in the middle between two announcements; closer ones may come out in another order.
constexpr milliseconds minRoomForCommand{2 * KeyVerdict::limitTolerance};

ScriptStep heading(milliseconds at, const QString& text)
{
    ScriptStep step;
    step.at = at;
    step.text = text;
    return step;
}

ScriptStep stateStep(milliseconds at, const QString& state)
{
    ScriptStep step = heading(at, state);
    step.kind = ScriptStep::Kind::State;
    return step;
}

/// Writes the script of a recording, stretch by stretch.
class Writing
{
public:
    Writing(const Recording& recording, microseconds end, const RecordedDevice& device);

    QByteArray text() const;

private:
    milliseconds timeOf(microseconds at) const;
    KeyScript scriptOfStretch(const Stretch& stretch) const;
    void write(const Stretch& stretch);
    void writeKnown(const Stretch& stretch, const KeyScript& script, bool isNearLimit);
    void writeUnknown(const Stretch& stretch, const QString& reason);
    bool canExpectSenders(const Stretch& stretch) const;
    void expect(const Happening& announcement);

    microseconds m_origin;
    QStringList m_remarks;
    model::KeyModel m_model;
    KeyScript m_script;
    // The sender that the next announcement of a replay names, and the last announcement's time in it.
    QString m_sender;
    milliseconds m_lastAnnouncement{0};
};

Writing::Writing(const Recording& recording, microseconds end, const RecordedDevice& device)
    : m_origin(recording.begin())
    , m_remarks(device.remarks)
    , m_model(model::KeyLists::read(device.files, device.isOrvane))
{
    const KeyListJson::Parsed lists = KeyListJson::rowsOf(device.files);
    if (lists.faults.isEmpty() && !lists.rows.isEmpty()) {
        m_script.rows = lists.rows;
    } else {
        m_remarks << QStringLiteral("The key lists of the device are not in this file: %1")
                         .arg(lists.faults.value(0, QStringLiteral("they have no rows.")));
    }
    m_script.recorded = true;
    m_script.hasOnlyAnnouncements = true;
    m_script.model = device.isOrvane ? QStringLiteral("Orvane") : QStringLiteral("Pellit");
    m_script.initialState = recording.firstState();
    const QVector<Stretch> stretches = stretchesOf(recording, end);
    for (const Stretch& stretch : stretches) {
        write(stretch);
    }
    m_script.end = timeOf(std::max(end, m_origin));
    // The state in which the recording begins is in the header.
    const auto first = std::find_if(m_script.steps.begin(), m_script.steps.end(), [](const ScriptStep& step) {
        return step.kind == ScriptStep::Kind::State;
    });
    if (recording.initialState().isEmpty() && first != m_script.steps.end()) {
        m_script.steps.erase(first);
    }
}

milliseconds Writing::timeOf(microseconds at) const
{
    return std::chrono::duration_cast<milliseconds>(at - m_origin);
}

/// The steps and announcements of a stretch; times count from its begin.
KeyScript Writing::scriptOfStretch(const Stretch& stretch) const
{
    KeyScript script;
    script.recorded = true;
    script.initialState = stretch.state;
    script.end = std::chrono::duration_cast<milliseconds>(stretch.end - stretch.begin);
    QVector<InputRecord> records;
    for (const Happening& happening : stretch.happenings) {
        const auto at = std::chrono::duration_cast<milliseconds>(happening.at - stretch.begin);
        if (happening.kind == Kind::Key) {
            records.append(happening.record);
        } else if (happening.kind == Kind::Announcement) {
            script.expectations.append({at, happening.textWithoutSender});
        } else if (happening.kind == Kind::State) {
            script.steps.append(stateStep(at, happening.text));
        }
    }
    script.steps += keySteps(records, stretch.begin, stretch.end);
    std::stable_sort(script.steps.begin(), script.steps.end(),
                     [](const ScriptStep& one, const ScriptStep& other) { return one.at < other.at; });
    return script;
}

void Writing::write(const Stretch& stretch)
{
    KeyScript script = scriptOfStretch(stretch);
    QString unknown = stretch.unknown;
    KeyVerdict verdict;
    if (unknown.isEmpty()) {
        verdict = KeyVerdict::of(m_model, script);
        if (!verdict.unexplained.isEmpty() && !verdict.isNearLimit) {
            unknown = QStringLiteral("not explained by the keys; a command may have come (%1)")
                          .arg(verdict.unexplained);
        } else if (!canExpectSenders(stretch)) {
            unknown = QStringLiteral("commands came too close to each other");
        }
    }
    const milliseconds begin = timeOf(stretch.begin);
    for (ScriptStep& step : script.steps) {
        step.at += begin;
    }
    unknown.isEmpty() ? writeKnown(stretch, script, verdict.isNearLimit) : writeUnknown(stretch, unknown);
}

void Writing::writeKnown(const Stretch& stretch, const KeyScript& script, bool isNearLimit)
{
    if (isNearLimit) {
        m_script.steps.append(
            heading(timeOf(stretch.begin), QStringLiteral("within %1 ms of a time limit: a replay may differ")
                                               .arg(KeyVerdict::limitTolerance.count())));
    }
    const int first = m_script.steps.size();
    m_script.steps += script.steps;
    for (const Happening& happening : stretch.happenings) {
        if (happening.kind == Kind::Announcement) {
            expect(happening);
        }
    }
    std::stable_sort(m_script.steps.begin() + first, m_script.steps.end(),
                     [](const ScriptStep& one, const ScriptStep& other) { return one.at < other.at; });
}

/// States are facts that later keys depend on, so they stay steps.
void Writing::writeUnknown(const Stretch& stretch, const QString& reason)
{
    const bool hasReason =
        std::any_of(stretch.happenings.begin(), stretch.happenings.end(),
                    [](const Happening& happening) { return happening.kind != Kind::State; });
    if (hasReason) {
        m_script.steps.append(heading(timeOf(stretch.begin), QStringLiteral("unknown: ") + reason));
    }
    for (const Happening& happening : stretch.happenings) {
        const milliseconds at = timeOf(happening.at);
        if (happening.kind == Kind::State) {
            m_script.steps.append(stateStep(at, happening.text));
        } else if (happening.kind == Kind::Key) {
            m_script.steps.append(heading(at, QStringLiteral("? device %1 %2")
                                                  .arg(happening.record.keyboard)
                                                  .arg(writeStep(keyStep(happening.record, m_origin)))));
        } else if (happening.kind == Kind::Announcement) {
            m_script.steps.append(
                heading(at, QStringLiteral("? expect %1 %2").arg(at.count()).arg(happening.text)));
        }
    }
}

/// Whether a command fits between each two announcements of which the later one names a sender.
bool Writing::canExpectSenders(const Stretch& stretch) const
{
    QString sender = m_sender;
    milliseconds last = m_lastAnnouncement;
    for (const Happening& happening : stretch.happenings) {
        if (happening.kind != Kind::Announcement) {
            continue;
        }
        const milliseconds at = timeOf(happening.at);
        const bool fits = at - last >= minRoomForCommand && !happening.sender.isEmpty();
        if (happening.sender != sender && !fits) {
            return false;
        }
        sender = ls::ServiceId::KeyboardHandler;
        last = at;
    }
    return true;
}

/// The next announcement after a command names its sender. Which command it was is not known; this one
/// changes nothing else.
void Writing::expect(const Happening& announcement)
{
    const milliseconds at = timeOf(announcement.at);
    if (announcement.sender != m_sender) {
        ScriptStep step;
        step.at = (m_lastAnnouncement + at) / 2;
        step.kind = ScriptStep::Kind::Command;
        step.command = {{ls::commandIdKey, ls::KeyboardHandlerCmdId::GetLastKey},
                        {ls::senderIdKey, announcement.sender}};
        const auto place = std::find_if(m_script.steps.begin(), m_script.steps.end(),
                                        [&](const ScriptStep& other) { return other.at > step.at; });
        m_script.steps.insert(place, step);
    }
    m_script.expectations.append({at, announcement.text});
    m_sender = ls::ServiceId::KeyboardHandler;
    m_lastAnnouncement = at;
}

QByteArray Writing::text() const
{
    QString text;
    for (const QString& remark : m_remarks) {
        text += QStringLiteral("# %1\n").arg(QString(remark).replace(QLatin1Char('\n'), QLatin1Char(' ')));
    }
    return (text + writeKeyScript(m_script)).toUtf8();
}

} // namespace

QByteArray scriptOf(const Recording& recording, microseconds end, const RecordedDevice& device)
{
    return Writing(recording, end, device).text();
}

} // namespace control
