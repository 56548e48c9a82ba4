// SPDX-License-Identifier: MIT
#include "tests/whole/random/Shrinker.h"
#include "simulator/script/KeyScriptText.h"
#include "tests/virtual/DeviceTest.h"
#include "tests/whole/random/RandomScript.h"
#include "tests/whole/random/Trial.h"

namespace {

KeyScript parsed(const char* text)
{
    return parseKeyScript(QString::fromLatin1(text)).script;
}

bool hasKey(const KeyScript& script, const QString& key)
{
    return std::any_of(script.steps.cbegin(), script.steps.cend(), [&key](const ScriptStep& step) {
        return step.kind == ScriptStep::Kind::Press && step.text == key;
    });
}

/// Shows a fault if Menu is pressed, and Up at least 700 ms later, with a row for Help.
bool showsFault(const KeyScript& script)
{
    std::chrono::milliseconds menu = 1h;
    bool isShown = false;
    for (const ScriptStep& step : script.steps) {
        const bool isPress = step.kind == ScriptStep::Kind::Press;
        menu = isPress && step.text == KeyId::Menu ? std::min(menu, step.at) : menu;
        isShown = isShown || (isPress && step.text == KeyId::Up && step.at >= menu + 700ms);
    }
    const auto isHelp = [](const KeyRow& row) { return row.keys.contains(KeyId::Help); };
    return isShown && std::any_of(script.rows.cbegin(), script.rows.cend(), isHelp);
}

} // namespace

class ShrinkerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void removesEverythingThatTheFaultDoesNotNeed();
    void keepsAShortScript();
    void oneRowStays();
    void reportIsAScriptWithTheObservations();
};

void ShrinkerTest::removesEverythingThatTheFaultDoesNotNeed()
{
    const KeyScript script = parsed("row long A UserMenu Idle 1 Up\n"
                                    "row modifier B UserMenu Idle Feed Help Menu\n"
                                    "row shortcut C UserMenu Idle Feed Up\n"
                                    "tap Feed Ok\nhold Menu 300\nstate Print\nwait 1234\ntap Back Up\n"
                                    "command StartTestMode\nwait 500\n");
    QVERIFY(showsFault(script));
    QCOMPARE(writeKeyScript(Shrinker::shrink(script, showsFault)),
             QStringLiteral("model Pellit\nstate Idle\nrow modifier B UserMenu Idle Help\ndevice 0\n"
                            "press Menu\nwait 700\npress Up\n"));
}

void ShrinkerTest::keepsAShortScript()
{
    const KeyScript script = parsed("row long A UserMenu Idle 1 Help\npress Menu\nwait 700\npress Up\n");
    QCOMPARE(writeKeyScript(Shrinker::shrink(script, showsFault)), writeKeyScript(script));
}

void ShrinkerTest::oneRowStays()
{
    const KeyScript script = Shrinker::shrink(RandomScript::roll(1), [](const KeyScript&) { return true; });
    QCOMPARE(script.rows.size(), 1);
    QCOMPARE(script.steps.size(), 0);
    QCOMPARE(script.end.count(), 0);
}

void ShrinkerTest::reportIsAScriptWithTheObservations()
{
    // No invariant has this number, so nothing can be removed.
    const KeyScript script = parsed("row long A UserMenu Idle 1 Help\ntap Menu\nwait 100\n");
    const QString text = Trial::report(script, 7, {99, QStringLiteral("made up")});
    QVERIFY2(text.startsWith(QStringLiteral("# seed 7, invariant 99, made up\nmodel Pellit\n")),
             qPrintable(text));
    const ParsedScript again = parseKeyScript(text);
    QVERIFY(again.faults.isEmpty());
    QVERIFY(hasKey(again.script, KeyId::Menu));
    QCOMPARE(again.script.expectations.first().text, QStringLiteral("announce SingleKey UserMenu - Menu"));
}

VIRTUAL_TIME_TEST_MAIN(ShrinkerTest)
#include "ShrinkerTest.moc"
