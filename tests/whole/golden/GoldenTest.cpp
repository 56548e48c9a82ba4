// SPDX-License-Identifier: MIT
#include "simulator/script/ExpectationWords.h"
#include "simulator/script/KeyScriptText.h"
#include "simulator/script/Transcript.h"
#include "tests/virtual/DeviceTest.h"

#include <QDir>

#include <algorithm>

namespace {

QStringList faultsOf(const ParsedScript& parsed)
{
    QStringList lines;
    for (const ScriptFault& fault : parsed.faults) {
        lines.append(QStringLiteral("line %1: %2").arg(fault.line).arg(fault.text));
    }
    return lines;
}

/// Uses the names of sentences, as in the scripts.
Observations withNames(Observations observations)
{
    for (Observation& observation : observations) {
        observation.text = ExpectationWords::named(observation.text);
    }
    return observations;
}

QString asExpectations(const Observations& observed)
{
    QString text;
    for (const Observation& observation : observed) {
        text += QStringLiteral("\nexpect %1 %2").arg(observation.at.count()).arg(observation.text);
    }
    return text;
}

QString noScripts(const QString& folder)
{
    return QStringLiteral(
               "%1 has no *.keys files. The test sees the files of the project and of most other folders, "
               "but not those below /tmp, /run, /var/lib and /dev.")
        .arg(folder);
}

bool changesServices(const KeyScript& script)
{
    return !script.services.isEmpty() ||
           std::any_of(script.steps.begin(), script.steps.end(),
                       [](const ScriptStep& step) { return step.kind == ScriptStep::Kind::Service; });
}

} // namespace

/// Plays each key script of this folder, or of KEY_SCRIPTS, on the virtual clock. The observations must equal
/// the expectations, to the millisecond except in recordings.
class GoldenTest : public DeviceTest
{
    Q_OBJECT

private Q_SLOTS:
    void scriptGoesAsExpected_data();
    void scriptGoesAsExpected();
};

void GoldenTest::scriptGoesAsExpected_data()
{
    QTest::addColumn<QString>("path");
    const QString folder = qEnvironmentVariable("KEY_SCRIPTS", QStringLiteral(GOLDEN_SCRIPTS));
    const QFileInfoList scripts = QDir(folder).entryInfoList({"*.keys"}, QDir::Files, QDir::Name);
    // A row without a script, because QTest aborts tests without rows.
    if (scripts.isEmpty()) {
        QTest::newRow("no scripts") << folder;
    }
    for (const QFileInfo& script : scripts) {
        QTest::newRow(qPrintable(script.completeBaseName())) << script.filePath();
    }
}

void GoldenTest::scriptGoesAsExpected()
{
    QFETCH(QString, path);
    QVERIFY2(!QFileInfo(path).isDir() && QFile::exists(path), qPrintable(noScripts(path)));
    const ParsedScript parsed = loadKeyScript(path);
    QCOMPARE(faultsOf(parsed), QStringList{});
    KeyScript script = parsed.script;
    script.expectations = withNames(script.expectations);
    QVERIFY2(!changesServices(script), "Services do not fail on the virtual clock: play the script with "
                                       "keyboard-handler-simulator.");
    device = std::make_unique<VirtualDevice>();
    device->setModel(script.model);
    device->setRows(script.rows);
    device->start(script.initialState);

    for (const ScriptStep& step : qAsConst(script.steps)) {
        device->waitUntil(step.at); // timers due at the same moment fire before the step
        device->play(step);
    }
    device->waitUntil(script.duration() + 5s);
    const Observations observed = withNames(device->takeObservations());
    const QStringList difference = Transcript::difference(script, observed, Transcript::Clock::Virtual);
    QVERIFY2(difference.isEmpty(),
             qPrintable(difference.join('\n') + "\nobserved:" + asExpectations(observed)));
}

VIRTUAL_TIME_TEST_MAIN(GoldenTest)
#include "GoldenTest.moc"
