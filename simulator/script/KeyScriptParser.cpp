// SPDX-License-Identifier: MIT
#include "simulator/script/KeyScriptParser.h"

#include "simulator/script/CommandWords.h"
#include "simulator/script/ExpectationWords.h"
#include "simulator/script/KeyRowWords.h"
#include "simulator/script/ScriptWords.h"
#include "simulator/script/ServiceWords.h"

#include <QRegularExpression>

#include <limits>

using namespace std::chrono_literals;
using std::chrono::milliseconds;

namespace {

constexpr milliseconds maxDuration = 24h;
constexpr milliseconds tapTime = 50ms;
constexpr milliseconds tapPause = 50ms;
constexpr int maxFaults = 50;
constexpr int maxSteps = 100'000;

std::optional<milliseconds> timeOf(const QString& word)
{
    const auto count = ScriptWords::number(word, 0, maxDuration.count());
    return count ? std::optional(milliseconds(*count)) : std::nullopt;
}

QString timeFault(const QString& word)
{
    static const QRegularExpression seconds(QStringLiteral("^\\d+(\\.\\d+s?|s)$"));
    const bool isInSeconds = seconds.match(word).hasMatch();
    return QStringLiteral("\"%1\" is not a time from 0 to %2 ms%3.")
        .arg(word, QString::number(maxDuration.count()),
             isInSeconds ? QStringLiteral(": times are whole milliseconds, 2250 for 2.25 s") : QString());
}

} // namespace

KeyScriptParser::KeyScriptParser(Begin begin) : m_inHeader(begin == Begin::AtHeader) {}

ParsedScript KeyScriptParser::parse(const QString& text)
{
    const QStringList lines = text.split('\n');
    for (int i = 0; i < lines.size() && m_result.faults.size() < maxFaults; ++i) {
        const int before = m_result.faults.size();
        readLine(lines.at(i));
        if (m_result.faults.size() > before) {
            m_result.faults.last().line = i + 1;
        }
    }
    return m_result;
}

const KeyScriptParser::Handlers& KeyScriptParser::headerHandlers()
{
    static const Handlers handlers{{QStringLiteral("recorded"), &KeyScriptParser::readRecorded},
                                   {QStringLiteral("model"), &KeyScriptParser::readModel},
                                   {QStringLiteral("state"), &KeyScriptParser::readInitialState},
                                   {QStringLiteral("service"), &KeyScriptParser::readInitialService},
                                   {QStringLiteral("row"), &KeyScriptParser::readRow}};
    return handlers;
}

const KeyScriptParser::Handlers& KeyScriptParser::stepHandlers()
{
    static const Handlers handlers{{QStringLiteral("device"), &KeyScriptParser::readDevice},
                                   {QStringLiteral("press"), &KeyScriptParser::readPress},
                                   {QStringLiteral("release"), &KeyScriptParser::readRelease},
                                   {QStringLiteral("tap"), &KeyScriptParser::readTap},
                                   {QStringLiteral("hold"), &KeyScriptParser::readHold},
                                   {QStringLiteral("wait"), &KeyScriptParser::readWait},
                                   {QStringLiteral("state"), &KeyScriptParser::readState},
                                   {QStringLiteral("service"), &KeyScriptParser::readService},
                                   {QStringLiteral("record"), &KeyScriptParser::readRecord},
                                   {QStringLiteral("command"), &KeyScriptParser::readCommand},
                                   {QStringLiteral("console"), &KeyScriptParser::readConsole},
                                   {QStringLiteral("expect"), &KeyScriptParser::readExpect}};
    return handlers;
}

void KeyScriptParser::readLine(const QString& line)
{
    m_line = line.trimmed();
    if (m_line.startsWith(QLatin1String("## "))) {
        addStep({{}, ScriptStep::Kind::Heading, 0, m_line.mid(3).trimmed(), {}, {}});
    }
    if (m_line.isEmpty() || m_line.startsWith('#')) {
        return;
    }
    QStringList words = m_line.simplified().split(' ');
    const QString keyword = words.takeFirst();
    QString fault = readWords(keyword, words);
    if (fault.isEmpty() && m_result.script.steps.size() > maxSteps) {
        fault = QStringLiteral("The script has more than %1 steps.").arg(maxSteps);
    }
    if (!fault.isEmpty()) {
        m_result.faults.append({0, ScriptWords::shortened(fault)});
    }
}

QString KeyScriptParser::readWords(const QString& keyword, const QStringList& words)
{
    if (m_inHeader && headerHandlers().contains(keyword)) {
        return (this->*headerHandlers().value(keyword))(words);
    }
    if (const Handler handler = stepHandlers().value(keyword)) {
        m_inHeader = false;
        return (this->*handler)(words);
    }
    if (headerHandlers().contains(keyword)) {
        return QStringLiteral("\"%1\" must come before the first step.").arg(keyword);
    }
    return QStringLiteral("\"%1\" is not a keyword of a key script.").arg(keyword);
}

QString KeyScriptParser::readRecorded(const QStringList& words)
{
    const bool hasOnlyAnnouncements = words == QStringList{QStringLiteral("announcements")};
    m_result.script.recorded = true;
    m_result.script.hasOnlyAnnouncements = hasOnlyAnnouncements;
    return hasOnlyAnnouncements
               ? QString()
               : ScriptWords::checkCount(words, 0, 0, QStringLiteral("recorded [announcements]"));
}

QString KeyScriptParser::readModel(const QStringList& words)
{
    if (words.size() != 1 || !ScriptWords::models().contains(words.first())) {
        return QStringLiteral("Write it as: model Orvane|Pellit");
    }
    m_result.script.model = words.first();
    return {};
}

QString KeyScriptParser::readInitialState(const QStringList& words)
{
    if (m_hasState) {
        return QStringLiteral(
            "The initial state is already given; write \"wait 0\" before the first change.");
    }
    const QString fault = ScriptWords::checkCount(words, 1, 1, QStringLiteral("state STATE"));
    if (!fault.isEmpty()) {
        return fault;
    }
    m_hasState = true;
    m_result.script.initialState = words.first();
    return ScriptWords::checkState(words.first());
}

QString KeyScriptParser::readInitialService(const QStringList& words)
{
    const ServiceWords::Parsed parsed = ServiceWords::parse(words);
    m_result.script.services.insert(parsed.change.service, parsed.change.condition);
    return parsed.fault;
}

QString KeyScriptParser::readRow(const QStringList& words)
{
    const KeyRowWords::Parsed parsed = KeyRowWords::parse(words);
    m_result.script.rows.append(parsed.row);
    return parsed.fault;
}

QString KeyScriptParser::readDevice(const QStringList& words)
{
    const auto device = ScriptWords::number(words.value(0), 0, 1);
    if (words.size() != 1 || !device) {
        return QStringLiteral("Write it as: device 0|1");
    }
    m_keyboard = int(*device);
    return {};
}

QString KeyScriptParser::readPress(const QStringList& words)
{
    return readKey(ScriptStep::Kind::Press, words, QStringLiteral("press KEY"));
}

QString KeyScriptParser::readRelease(const QStringList& words)
{
    return readKey(ScriptStep::Kind::Release, words, QStringLiteral("release KEY"));
}

QString KeyScriptParser::readTap(const QStringList& words)
{
    QString fault = ScriptWords::checkCount(words, 1, -1, QStringLiteral("tap KEY..."));
    if (fault.isEmpty()) {
        fault = ScriptWords::checkKeys(words);
    }
    for (int i = 0; i < words.size() && fault.isEmpty(); ++i) {
        if (i > 0) {
            fault = advance(tapPause);
        }
        addKey(ScriptStep::Kind::Press, words.at(i));
        fault += advance(tapTime);
        addKey(ScriptStep::Kind::Release, words.at(i));
    }
    return fault;
}

QString KeyScriptParser::readHold(const QStringList& words)
{
    QString fault = ScriptWords::checkCount(words, 2, 2, QStringLiteral("hold KEY MS"));
    if (fault.isEmpty()) {
        fault = ScriptWords::checkKeys(words.mid(0, 1));
    }
    if (!fault.isEmpty()) {
        return fault;
    }
    const auto time = timeOf(words.at(1));
    if (!time) {
        return timeFault(words.at(1));
    }
    addKey(ScriptStep::Kind::Press, words.first());
    fault = advance(*time);
    addKey(ScriptStep::Kind::Release, words.first());
    return fault;
}

QString KeyScriptParser::readWait(const QStringList& words)
{
    const auto time = timeOf(words.value(0));
    if (words.size() != 1 || !time) {
        return timeFault(words.join(' '));
    }
    return advance(*time);
}

QString KeyScriptParser::readState(const QStringList& words)
{
    const QString fault = ScriptWords::checkCount(words, 1, 1, QStringLiteral("state STATE"));
    if (!fault.isEmpty()) {
        return fault;
    }
    addStep({{}, ScriptStep::Kind::State, 0, words.first(), {}, {}});
    return ScriptWords::checkState(words.first());
}

QString KeyScriptParser::readService(const QStringList& words)
{
    const ServiceWords::Parsed parsed = ServiceWords::parse(words);
    addStep({{}, ScriptStep::Kind::Service, 0, {}, {}, {}, parsed.change});
    return parsed.fault;
}

QString KeyScriptParser::readRecord(const QStringList& words)
{
    const auto type = ScriptWords::number(words.value(0), 0, std::numeric_limits<quint16>::max());
    const auto code = ScriptWords::number(words.value(1), 0, std::numeric_limits<quint16>::max());
    const auto value = ScriptWords::number(words.value(2), std::numeric_limits<qint32>::min(),
                                           std::numeric_limits<qint32>::max());
    if (words.size() != 3 || !type || !code || !value) {
        return QStringLiteral("Write it as: record TYPE CODE VALUE, three numbers that fit an input record");
    }
    const RawRecord record{quint16(*type), quint16(*code), qint32(*value)};
    addStep({{}, ScriptStep::Kind::Record, m_keyboard, {}, {}, record});
    return {};
}

QString KeyScriptParser::readCommand(const QStringList& words)
{
    const CommandWords::Parsed parsed = CommandWords::parse(words);
    addStep({{}, ScriptStep::Kind::Command, 0, {}, parsed.command, {}});
    return parsed.fault;
}

QString KeyScriptParser::readConsole(const QStringList&)
{
    // Leading blanks matter to the daemon's console, so only the one after the keyword is removed.
    const QString line = m_line.mid(int(qstrlen("console")) + 1);
    addStep({{}, ScriptStep::Kind::Console, 0, line, {}, {}});
    return {};
}

QString KeyScriptParser::readExpect(const QStringList& words)
{
    const bool fromNow = words.value(0).startsWith('+');
    const auto time = timeOf(words.value(0).mid(fromNow ? 1 : 0));
    const milliseconds begin = fromNow ? m_now : 0ms;
    if (!time || *time > maxDuration - begin) {
        return timeFault(words.value(0));
    }
    const QString text = ScriptWords::withoutWords(m_line, 2);
    m_result.script.expectations.append({begin + *time, ExpectationWords::normalised(text)});
    return ExpectationWords::check(text);
}

QString KeyScriptParser::readKey(ScriptStep::Kind kind, const QStringList& words, const QString& usage)
{
    const QString fault = ScriptWords::checkCount(words, 1, 1, usage);
    if (!fault.isEmpty()) {
        return fault;
    }
    addKey(kind, words.first());
    return ScriptWords::checkKeys(words);
}

void KeyScriptParser::addKey(ScriptStep::Kind kind, const QString& key)
{
    addStep({{}, kind, m_keyboard, key, {}, {}});
}

void KeyScriptParser::addStep(ScriptStep step)
{
    step.at = m_now;
    m_result.script.steps.append(step);
}

QString KeyScriptParser::advance(milliseconds time)
{
    if (time > maxDuration - m_now) {
        return QStringLiteral("The script would last longer than %1 hours.").arg(maxDuration / 1h);
    }
    m_now += time;
    m_result.script.end = m_now;
    return {};
}
