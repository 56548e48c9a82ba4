// SPDX-License-Identifier: MIT
#include "simulator/script/KeyListJson.h"
#include "simulator/script/KeyScriptText.h"
#include "tests/delivery/target/TargetTest.h"

#include <algorithm>

namespace {

constexpr int minScripts = 30;
constexpr std::chrono::milliseconds timeGrid{50};

const QString scriptOfALimit = QStringLiteral("state-change-in-a-hold");
const QString scriptFolder = QStringLiteral("/usr/lib/keyboard-handler-tests/scripts");

bool isKey(const ScriptStep& step)
{
    return step.kind == ScriptStep::Kind::Press || step.kind == ScriptStep::Kind::Release;
}

bool isRecord(const ScriptStep& step)
{
    return step.kind == ScriptStep::Kind::Record;
}

bool isPrecise(const ScriptStep& step)
{
    return step.at % timeGrid != timeGrid.zero();
}

bool mayBeReordered(const ScriptStep& step, const ScriptStep& next)
{
    return step.at == next.at && step.kind != ScriptStep::Kind::Heading &&
           !(isKey(step) && isKey(next) && step.keyboard == next.keyboard);
}

/// Why the script needs the virtual clock; null if it does not. The kernel's keyboards report no unusual
/// records, and on a real clock, simultaneous events and events at a limit occur in random order.
const char* virtualOnlyReason(const KeyScript& script)
{
    const auto begin = script.steps.begin();
    const auto end = script.steps.end();
    if (std::any_of(begin, end, isRecord)) {
        return "unusual records";
    }
    if (std::any_of(begin, end, isPrecise)) {
        return "limits to the millisecond";
    }
    return std::adjacent_find(begin, end, mayBeReordered) == end ? nullptr : "simultaneous steps";
}

} // namespace

/// Plays the key scripts on the panel of the target system, each with a new daemon.
class TargetScriptsTest : public TargetTest
{
    Q_OBJECT

private Q_SLOTS:
    void theConsoleCanBeReached();
    void scriptGoesAsExpected_data();
    void scriptGoesAsExpected();
};

void TargetScriptsTest::theConsoleCanBeReached()
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
        const QString name = script.completeBaseName();
        const char* reason = name == scriptOfALimit
                                 ? "steps at the moment of a long press"
                                 : virtualOnlyReason(loadKeyScript(script.filePath()).script);
        if (reason == nullptr) {
            QTest::newRow(qPrintable(name)) << script.filePath();
            ++count;
        } else {
            qInfo("left to the virtual clock for %s: %s", reason, qPrintable(name));
        }
    }
    qInfo("%d of %d scripts are for a real clock, too", count, int(scripts.size()));
    QVERIFY(count >= minScripts);
}

void TargetScriptsTest::scriptGoesAsExpected()
{
    QFETCH(QString, path);
    const ParsedScript parsed = loadKeyScript(path);
    QVERIFY(parsed.faults.isEmpty());
    QVERIFY(
        restartDaemon(KeyListJson::filesOf(parsed.script), parsed.script.initialState, parsed.script.model));
    const QStringList difference = play(parsed.script);
    QVERIFY2(difference.isEmpty(), qPrintable(difference.join('\n')));
}

QTEST_GUILESS_MAIN(TargetScriptsTest)
#include "TargetScriptsTest.moc"
