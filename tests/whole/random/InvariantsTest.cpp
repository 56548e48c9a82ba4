// SPDX-License-Identifier: MIT
#include "tests/whole/random/Invariants.h"
#include "simulator/script/KeyScriptText.h"
#include "tests/virtual/DeviceTest.h"
#include "tests/whole/random/Epilogue.h"
#include "tests/whole/random/Player.h"
#include "tests/whole/random/RandomScript.h"
#include "tests/whole/random/Trial.h"
#include "tests/whole/random/WrongPlays.h"

namespace {

constexpr quint64 mutationSeeds = 30;

using Mutate = bool (*)(Play& play, int index);

bool startsWith(const Play& play, int index, const char* word)
{
    return play.events.at(index).text.startsWith(QLatin1String(word));
}

bool isLog(const Play& play, int index)
{
    return startsWith(play, index, "log ");
}

bool duplicate(Play& play, int index)
{
    play.events.insert(index, play.events.at(index));
    return !isLog(play, index);
}

bool moveOn(Play& play, int index)
{
    PlayEvent& event = play.events[index];
    event.at += 1ms;
    event.place.timer += event.place.isInStep() ? 0ms : 1ms;
    return !isLog(play, index);
}

bool drop(Play& play, int index)
{
    // The checks do not always know which long presses are due.
    const bool isChecked =
        startsWith(play, index, "announce SingleKey ") || play.events.at(index).place.isInStep();
    const bool isMutation = isChecked && !isLog(play, index);
    play.events.remove(index);
    return isMutation;
}

bool replaceWord(Play& play, int index, int word, const QString& other)
{
    if (!startsWith(play, index, "announce ")) {
        return false;
    }
    QStringList words = play.events.at(index).text.split(QLatin1Char(' '));
    words.replace(word, other);
    play.events[index].text = words.join(QLatin1Char(' '));
    return true;
}

bool nameOtherSender(Play& play, int index)
{
    const bool isStateHandler =
        play.events.at(index).text.split(QLatin1Char(' ')).value(3) == ServiceId::StateHandler;
    return replaceWord(play, index, 3, isStateHandler ? ServiceId::WwwApi : ServiceId::StateHandler);
}

bool nameOtherReceiver(Play& play, int index)
{
    return replaceWord(play, index, 2, QStringLiteral("Another"));
}

bool nameOtherAction(Play& play, int index)
{
    return replaceWord(play, index, 1, QStringLiteral("ActionOfNoRow"));
}

bool nameOtherKey(Play& play, int index)
{
    return replaceWord(play, index, 4, QStringLiteral("Bell"));
}

bool speakOtherKey(Play& play, int index)
{
    const QString other =
        startsWith(play, index, "speak EmbosserCore 17") ? QStringLiteral("18") : QStringLiteral("17");
    const bool isName = startsWith(play, index, "speak EmbosserCore ");
    play.events[index].text = QStringLiteral("speak EmbosserCore ") + other;
    return isName;
}

/// The play described by a script's `expect` lines. Observations at the time of a step are its effects.
Play playOf(const KeyScript& script)
{
    Play play{script, {}};
    for (const Observation& expectation : script.expectations) {
        const auto isTaken = [&](const ScriptStep& step) { return step.at <= expectation.at; };
        const int steps =
            static_cast<int>(std::count_if(script.steps.cbegin(), script.steps.cend(), isTaken));
        const bool inStep = steps > 0 && script.steps.at(steps - 1).at == expectation.at;
        play.events.append(
            {expectation.at, expectation.text, {steps, inStep ? Place::inStep : expectation.at}});
    }
    return play;
}

} // namespace

Q_DECLARE_METATYPE(Mutate)

/// The invariants detect the wrong plays of WrongPlays.h and every small change to the observations of a real
/// play.
class InvariantsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void numbersCountUp();
    void wrongPlayViolatesItsInvariant_data();
    void wrongPlayViolatesItsInvariant();
    void everyInvariantHasAWrongPlay();
    void everyChangeIsNoticed_data();
    void everyChangeIsNoticed();
};

void InvariantsTest::numbersCountUp()
{
    int number = 0;
    for (const invariants::Invariant& invariant : invariants::all()) {
        QCOMPARE(invariant.number, ++number);
    }
    QCOMPARE(invariants::all().size(), Trial::repeatabilityNumber - 1);
}

void InvariantsTest::wrongPlayViolatesItsInvariant_data()
{
    QTest::addColumn<int>("number");
    QTest::addColumn<QString>("observed");
    QTest::addColumn<bool>("holds");
    for (const WrongPlay& play : wrongPlays) {
        const QString script = QString::fromLatin1(play.script);
        QTest::addRow("%s: no", play.name) << play.invariant << script + QLatin1String(play.right) << true;
        QTest::addRow("%s: yes", play.name) << play.invariant << script + QLatin1String(play.wrong) << false;
    }
}

void InvariantsTest::wrongPlayViolatesItsInvariant()
{
    QFETCH(int, number);
    QFETCH(QString, observed);
    const ParsedScript parsed = parseKeyScript(observed);
    QVERIFY2(parsed.faults.isEmpty(), qPrintable(parsed.faults.value(0).text));
    const QString violation = invariants::all().at(number - 1).check(Facts(playOf(parsed.script)));
    QTEST(violation.isEmpty(), "holds");
}

void InvariantsTest::everyInvariantHasAWrongPlay()
{
    QSet<int> numbers;
    for (const WrongPlay& play : wrongPlays) {
        numbers.insert(play.invariant);
    }
    QCOMPARE(numbers.size(), invariants::all().size());
}

void InvariantsTest::everyChangeIsNoticed_data()
{
    QTest::addColumn<Mutate>("mutate");
    const auto row = [](const char* name, Mutate mutate) { QTest::newRow(name) << mutate; };
    row("a duplicate observation", duplicate);
    row("an observation a millisecond late", moveOn);
    row("a missing observation", drop);
    row("another sender", nameOtherSender);
    row("another receiver", nameOtherReceiver);
    row("another action", nameOtherAction);
    row("another key", nameOtherKey);
    row("another name is spoken", speakOtherKey);
}

void InvariantsTest::everyChangeIsNoticed()
{
    QFETCH(Mutate, mutate);
    int mutations = 0;
    for (quint64 seed = 1; seed <= mutationSeeds; ++seed) {
        const Play play = Player::play(Epilogue::appendedTo(RandomScript::roll(seed)));
        for (int i = 0; i < play.events.size(); ++i) {
            Play changed = play;
            if (mutate(changed, i)) {
                ++mutations;
                const QString what =
                    QStringLiteral("seed %1, ").arg(seed) + invariants::described(play.events.at(i));
                QVERIFY2(invariants::firstViolation(changed).number != 0, qPrintable(what));
            }
        }
    }
    QVERIFY(mutations > 100);
}

VIRTUAL_TIME_TEST_MAIN(InvariantsTest)
#include "InvariantsTest.moc"
