// SPDX-License-Identifier: MIT
#include "tests/delivery/target/TargetTest.h"

#include "simulator/script/KeyScriptText.h"
#include "simulator/script/ObservationText.h"
#include "simulator/script/ScriptPlayer.h"
#include "simulator/script/Transcript.h"
#include "tests/delivery/target/Command.h"
#include "tests/support/Waiting.h"

#include <algorithm>

namespace {

constexpr int timeoutMs = 30'000;
constexpr int journalTimeoutMs = 2000;
constexpr int tapMs = 50;
constexpr int maxShownObservations = 40;

QStringList logLines(const Observations& observations)
{
    QStringList lines;
    for (const Observation& observation : observations) {
        if (ObservationText::isLogLine(observation.text)) {
            lines << observation.text;
        }
    }
    return lines;
}

bool usesConsole(const KeyScript& script)
{
    return std::any_of(script.steps.begin(), script.steps.end(),
                       [](const ScriptStep& step) { return step.kind == ScriptStep::Kind::Console; });
}

} // namespace

void TargetTest::initTestCase()
{
    WAIT_FOR(reconnect()); // the panel may start late
    WAIT_FOR(TargetDevice::isReady());
}

void TargetTest::init()
{
    for (const int inputDevice : {0, 1}) {
        if (!TargetDevice::isPlugged(inputDevice)) {
            device().plug(inputDevice);
            WAIT_FOR(TargetDevice::isPlugged(inputDevice));
        }
    }
}

bool TargetTest::reconnect()
{
    m_device.reset();
    m_device = std::make_unique<TargetDevice>();
    return m_device->connectAll();
}

bool TargetTest::restartDaemon(const QMap<QString, QByteArray>& keyLists, const QString& state,
                               const QString& model)
{
    device().setInitialState(state);
    const bool restarted =
        device().setKeyLists(keyLists) && device().setModel(model) && Unit::restart(Unit::daemon);
    QTest::qWait(tapMs); // lets the journal receive the last lines of the start
    device().restartObserving();
    return restarted && TargetDevice::isReady();
}

QStringList TargetTest::play(const KeyScript& script)
{
    device().restartObserving();
    ScriptPlayer player(script, device());
    QSignalSpy finished(&player, &ScriptPlayer::finished);
    player.start();
    if (!finished.wait(int(script.duration().count()) + timeoutMs)) {
        return {QStringLiteral("The script did not end.")};
    }
    const QStringList expectedLog = logLines(script.expectations);
    const auto logged = [&] { return logLines(device().observations()); };
    (void)QTest::qWaitFor([&] { return logged().size() >= expectedLog.size(); }, journalTimeoutMs);
    QStringList difference = Transcript::difference(script, device().observations(), Transcript::Clock::Real);
    // The transcript accepts additional log lines, but only the console's help, which scripts omit, may cause
    // them.
    if (difference.isEmpty() && !usesConsole(script) && logged() != expectedLog) {
        difference << QStringLiteral("the journal has:") << logged();
    }
    return difference;
}

QStringList TargetTest::playSteps(const QString& lines)
{
    const ParsedScript parsed = parseKeyScriptSteps(lines);
    return parsed.faults.isEmpty() ? play(parsed.script) : QStringList{parsed.faults.first().text};
}

QStringList TargetTest::logWith(const QString& part)
{
    const auto lines = [this] {
        return logLines(device().observations())
            .replaceInStrings(QRegularExpression(QStringLiteral("^log ")), QString());
    };
    (void)QTest::qWaitFor([&] { return !lines().filter(part).isEmpty(); }, journalTimeoutMs);
    return lines();
}

bool TargetTest::nextKeyWorks(int inputDevice)
{
    QSignalSpy announcements(&device(), &TargetDevice::announced);
    device().press(inputDevice, ls::KeyId::Menu);
    QTest::qWait(tapMs);
    device().release(inputDevice, ls::KeyId::Menu);
    return QTest::qWaitFor(
        [&] {
            return !announcements.isEmpty() &&
                   announcements.first().first().toMap().value(ls::firstKeyKey) == ls::KeyId::Menu;
        },
        timeoutMs);
}

void TargetTest::verifyServing()
{
    // udev has requested all jobs of the service manager when it has settled, and they are done when none is
    // left.
    QCOMPARE(Command::shell(QStringLiteral("udevadm settle")).status, 0);
    WAIT_FOR(Command::shell(QStringLiteral("systemctl list-jobs --no-legend keyboard-handler.service"))
                 .output.isEmpty() &&
             TargetDevice::isReady() && Unit::isActive(Unit::daemon));
    QVERIFY(nextKeyWorks(0));
    QVERIFY(nextKeyWorks(1));
}

void TargetTest::cleanup()
{
    if (!QTest::currentTestFailed()) {
        return;
    }
    // The last observations show the fault.
    const Observations all = device().observations();
    const Observations last = all.mid(std::max(0, all.size() - maxShownObservations));
    for (const Observation& observation : last) {
        qInfo("%6lld ms  %s", static_cast<long long>(observation.at.count()), qPrintable(observation.text));
    }
    qInfo().noquote()
        << Command::shell(QStringLiteral("systemctl --no-pager status keyboard-handler | tail -8")).output;
}
