// SPDX-License-Identifier: MIT
#include "tests/target/TargetTest.h"

#include <algorithm>

namespace {

constexpr int leastScripts = 30;
constexpr std::chrono::milliseconds coarseness{50};

/// Its steps come at the very moment at which a long press is complete.
const QString scriptOfALimit = QStringLiteral("state-change-in-a-hold");
const QString scriptFolder = QStringLiteral("/usr/lib/keyboard-handler-tests/scripts");

bool isKey(const ScriptStep& step)
{
    return step.kind == ScriptStep::Kind::Press || step.kind == ScriptStep::Kind::Release;
}

bool keepTheirOrder(const ScriptStep& step, const ScriptStep& next)
{
    return step.at != next.at || step.kind == ScriptStep::Kind::Heading ||
           (isKey(step) && isKey(next) && step.device == next.device);
}

/// Odd records, limits to the millisecond, and things that happen at one moment on different ways are for the
/// virtual clock: a keyboard of the kernel's reports no odd records, and a real clock decides the rest by
/// chance.
bool isForARealClock(const KeyScript& script)
{
    const QVector<ScriptStep>& steps = script.steps;
    const bool coarse = std::all_of(steps.begin(), steps.end(), [](const ScriptStep& step) {
        return step.kind != ScriptStep::Kind::Record && step.at % coarseness == coarseness.zero();
    });
    return coarse &&
           std::adjacent_find(steps.begin(), steps.end(), [](const ScriptStep& a, const ScriptStep& b) {
               return !keepTheirOrder(a, b);
           }) == steps.end();
}

} // namespace

/// Plays the key scripts on the panel of the target system, each on a daemon of its own.
class TargetScriptsTest : public TargetTest
{
    Q_OBJECT

private Q_SLOTS:
    void theConsoleIsWithinReach();
    void scriptGoesAsExpected_data();
    void scriptGoesAsExpected();
};

void TargetScriptsTest::theConsoleIsWithinReach()
{
    QVERIFY(TargetDevice::giveDaemonConsole());
    QVERIFY(restartDaemon());
    QCOMPARE(playSteps(QStringLiteral("console HELP 7\n"
                                      "expect +0 log \"SimulateKey\" params: [KeyActionId id] [KeyId id]\n")),
             QStringList());
}

void TargetScriptsTest::scriptGoesAsExpected_data()
{
    QTest::addColumn<QString>("path");
    const QFileInfoList scripts = QDir(scriptFolder).entryInfoList({"*.keys"}, QDir::Files, QDir::Name);
    int count = 0;
    for (const QFileInfo& script : scripts) {
        if (script.completeBaseName() != scriptOfALimit &&
            isForARealClock(loadKeyScript(script.filePath()).script)) {
            QTest::newRow(qPrintable(script.completeBaseName())) << script.filePath();
            ++count;
        }
    }
    QVERIFY(count >= leastScripts);
}

void TargetScriptsTest::scriptGoesAsExpected()
{
    QFETCH(QString, path);
    const ParsedScript parsed = loadKeyScript(path);
    QVERIFY(parsed.faults.isEmpty());
    QVERIFY(restartDaemon(parsed.script.keyLists(), parsed.script.initialState, parsed.script.model));
    const QStringList difference = play(parsed.script);
    QVERIFY2(difference.isEmpty(), qPrintable(difference.join('\n')));
}

QTEST_GUILESS_MAIN(TargetScriptsTest)
#include "TargetScriptsTest.moc"
