// SPDX-License-Identifier: MIT
#include "tests/whole/system/SystemTest.h"

#include "simulator/script/ObservationText.h"
#include "simulator/script/ScriptPlayer.h"
#include "simulator/script/Transcript.h"
#include "tests/support/Waiting.h"

#include <algorithm>

namespace {

constexpr int maxShownObservations = 50;

/// Whether observations are missing and nothing else is wrong.
bool isIncomplete(const QStringList& difference)
{
    const auto isMissing = [](const QString& line) { return line.startsWith(QLatin1String("missing ")); };
    return !difference.isEmpty() && std::all_of(difference.begin(), difference.end(), isMissing);
}

} // namespace

bool SystemTest::prepare()
{
    m_device = std::make_unique<SimulatedDevice>(options);
    m_recorder = std::make_unique<ObservationRecorder>(*m_device);
    const bool started = m_device->startServices();
    if (!started) {
        qWarning() << m_device->errorString();
    }
    return started;
}

void SystemTest::startThroughShell(const QString& script)
{
    options.daemon = QStringLiteral("/bin/sh");
    options.daemonArguments =
        QStringList{QStringLiteral("-c"), script, QStringLiteral(KEYBOARD_HANDLER_DAEMON)};
}

bool SystemTest::launch()
{
    if (!m_device && !prepare()) {
        return false;
    }
    if (!m_device->startDaemon()) {
        qWarning() << m_device->errorString();
        return false;
    }
    WAIT_FOR(m_device->isReady() || !m_device->isRunning());
    return m_device->isReady();
}

void SystemTest::tap(const QString& key, int keyboard)
{
    m_device->press(keyboard, key);
    m_device->release(keyboard, key);
}

QVariantMap SystemTest::command(const QString& name, const QVariantMap& arguments)
{
    QVariantMap map = arguments;
    map.insert(ls::commandIdKey, name);
    map.insert(ls::senderIdKey, ls::ServiceId::ServiceTool);
    return m_device->request(map);
}

QStringList SystemTest::actions() const
{
    QStringList texts;
    for (const Observation& observation : m_recorder->observations()) {
        if (!ObservationText::isLogLine(observation.text)) {
            texts << observation.text;
        }
    }
    return texts;
}

QStringList SystemTest::log() const
{
    QStringList lines;
    for (const Observation& observation : m_recorder->observations()) {
        if (ObservationText::isLogLine(observation.text)) {
            lines << observation.text.section(' ', 1);
        }
    }
    return lines;
}

QStringList SystemTest::completeLog()
{
    // An unserved command changes nothing and logs this line.
    const QString last = QStringLiteral("KeyboardHandler::process ERROR: \"GetKeyList\" command n/a!");
    const int before = log().count(last);
    command(ls::KeyboardHandlerCmdId::GetKeyList);
    WAIT_FOR(log().count(last) > before || !m_device->isRunning());
    QStringList lines = log();
    lines.removeAt(lines.lastIndexOf(last));
    return lines;
}

bool SystemTest::awaitAction(const QString& text)
{
    WAIT_FOR(actions().contains(text) || !m_device->isRunning());
    return actions().contains(text);
}

bool SystemTest::awaitLog(const QString& line)
{
    WAIT_FOR(log().contains(line) || !m_device->isRunning());
    return log().contains(line);
}

QStringList SystemTest::play(const KeyScript& script)
{
    m_recorder->restart();
    ScriptPlayer player(script, *m_device);
    QSignalSpy finished(&player, &ScriptPlayer::finished);
    player.start();
    WAIT_FOR(!finished.isEmpty());
    // On a busy machine, observations may be later than the player's end.
    WAIT_FOR(!isIncomplete(differenceTo(script)) || !m_device->isRunning());
    return differenceTo(script);
}

QStringList SystemTest::differenceTo(const KeyScript& script) const
{
    return Transcript::difference(script, m_recorder->observations(), Transcript::Clock::Real);
}

bool SystemTest::nextKeyWorks()
{
    const int before = menuAnnouncements();
    tap(ls::KeyId::Menu);
    WAIT_FOR(menuAnnouncements() > before || !m_device->isRunning());
    return menuAnnouncements() > before;
}

int SystemTest::menuAnnouncements() const
{
    static const QRegularExpression announcement(QStringLiteral("^announce SingleKey UserMenu \\S+ Menu$"));
    return actions().filter(announcement).size();
}

QStringList SystemTest::sanitizerReports() const
{
    static const QRegularExpression report(QStringLiteral("ERROR: \\w+Sanitizer: |: runtime error: "));
    return log().filter(report);
}

void SystemTest::showEnd() const
{
    // The last observations show the fault.
    const Observations last =
        m_recorder->observations().mid(std::max(0, m_recorder->observations().size() - maxShownObservations));
    for (const Observation& observation : last) {
        qInfo("%6lld ms  %s", static_cast<long long>(observation.at.count()), qPrintable(observation.text));
    }
}

void SystemTest::cleanup()
{
    QStringList reports;
    if (m_device) {
        // While the recorder is still connected, because a sanitizer may have ended the daemon after the last
        // check.
        m_device->stopDaemon();
        reports = sanitizerReports();
        if (QTest::currentTestFailed() || !reports.isEmpty()) {
            showEnd();
        }
    }
    m_recorder.reset();
    m_device.reset();
    options = DeviceOptions();
    QVERIFY2(reports.isEmpty(), qPrintable(reports.join('\n')));
}
