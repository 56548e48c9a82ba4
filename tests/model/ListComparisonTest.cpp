// SPDX-License-Identifier: MIT
#include "model/ListComparison.h"
#include "model/KeyFacts.h"
#include "model/Witness.h"
#include "tests/model/ListMaps.h"
#include "tests/model/ScriptOnDevice.h"
#include "tests/support/Seeds.h"
#include "tests/virtual/DeviceTest.h"
#include "tests/whole/random/Player.h"
#include "tests/whole/random/RandomRows.h"

#include <QSet>

#include <algorithm>

Q_DECLARE_METATYPE(KeyRow)

using namespace model;

namespace {

constexpr int seedCount = 6;
constexpr const char* seedsVariable = "MODEL_SEEDS";
constexpr int scriptsOfPair = 20;
constexpr int maxFingers = 2;
constexpr auto maxScript = std::chrono::hours(24);

Environment person()
{
    Environment environment = Environment::person();
    environment.devices = 1;
    return environment;
}

bool isNoticed(const Output& output)
{
    return output.kind != Output::Kind::Log;
}

KeyRow row(KeyRow::Kind kind, const QString& action, const QStringList& keys, const QString& state,
           int seconds = 0)
{
    return {kind, action, QStringLiteral("UserMenu"), state, seconds, keys};
}

QStringList textsOf(const QVector<Output>& outputs)
{
    QStringList texts;
    for (const Output& output : outputs) {
        texts.append(output.toText({}));
    }
    return texts;
}

QStringList sorted(QStringList texts)
{
    texts.sort();
    return texts;
}

/// What makes two differences alike. Speech passes the event loop, so the order of outputs does not count.
QStringList kindOf(const QString& state, const QStringList& oldTexts, const QStringList& newTexts)
{
    return QStringList(state) + sorted(oldTexts) + QStringList(QString()) + sorted(newTexts);
}

QStringList kindOf(const Difference& difference)
{
    return kindOf(Alphabet::nameOf(difference.state), textsOf(difference.oldOutputs),
                  textsOf(difference.newOutputs));
}

QSet<QStringList> kindsOf(const QVector<Difference>& differences)
{
    QSet<QStringList> kinds;
    for (const Difference& difference : differences) {
        kinds.insert(kindOf(difference));
    }
    return kinds;
}

/// Two random lists, of which the second is often a changed copy of the first.
struct RandomPair
{
    explicit RandomPair(quint64 seed);

    QVector<KeyRow> oldRows;
    QVector<KeyRow> newRows;
    bool isOrvane = false;
};

RandomPair::RandomPair(quint64 seed)
{
    Dice dice(seed);
    isOrvane = dice.oneIn(2);
    oldRows = RandomRows::roll(dice);
    newRows = dice.oneIn(3) ? RandomRows::roll(dice) : oldRows;
    const int changed = dice.below(newRows.size());
    newRows[changed].keys = QStringList{RandomRows::commonKey(dice), RandomRows::commonKey(dice)};
    std::rotate(newRows.begin(), newRows.begin() + dice.below(newRows.size()), newRows.end());
}

/// The random pairs of a test, by their seeds.
QVector<quint64> chosenPairs()
{
    const Seeds seeds = chosenSeeds(seedsVariable, {1, seedCount}).value_or(Seeds{0, 0});
    QVector<quint64> chosen;
    for (int i = 0; i < seeds.count; ++i) {
        chosen.append(seeds.first + static_cast<quint64>(i));
    }
    return chosen;
}

/// Plays the keys and commands of `steps` again.
Playback playAgain(const KeyModel& keyModel, const QVector<PlayedStep>& steps, std::chrono::milliseconds end)
{
    Playback playback(keyModel, steps.first().before.state);
    for (const PlayedStep& step : steps) {
        if (step.origin == PlayedStep::Origin::Time) {
            continue;
        }
        playback.wait(step.at - playback.now());
        if (step.origin == PlayedStep::Origin::Given) {
            playback.take(step.input);
        } else if (step.input.kind == Input::Kind::Press) {
            playback.press(step.input.key(), step.input.device);
        } else {
            playback.release(step.input.key(), step.input.device);
        }
    }
    playback.wait(end - playback.now());
    return playback;
}

/// The daemon's classes must do with `lists` what one side of a difference says.
void checkSide(const KeyLists& lists, const QVector<PlayedStep>& steps, const QVector<Output>& outputs,
               std::chrono::milliseconds end)
{
    const KeyModel keyModel(lists);
    const Playback playback = playAgain(keyModel, steps, end);
    QStringList last;
    for (const PlayedStep& step : playback.steps()) {
        for (const Output& output : step.outputs) {
            if (step.at == end && isNoticed(output)) {
                last.append(output.toText({}));
            }
        }
    }
    QCOMPARE(last, textsOf(outputs));
    if (end < maxScript) { // a script lasts no longer
        QCOMPARE(ScriptOnDevice::difference(Witness::toScript(playback, lists), lists), QString());
    }
}

/// What a person with two fingers does at one device, while the state stays as it is.
class PersonScript
{
public:
    /// Most keys are those of the rows.
    PersonScript(quint64 seed, const RandomPair& pair) : m_dice(seed)
    {
        m_script.model = pair.isOrvane ? QStringLiteral("Orvane") : QStringLiteral("Pellit");
        for (const KeyRow& row : pair.oldRows + pair.newRows) {
            m_keys += row.keys;
        }
        m_keys.erase(std::remove_if(m_keys.begin(), m_keys.end(),
                                    [](const QString& key) { return !KeyId::meta.contains(key); }),
                     m_keys.end());
    }

    KeyScript roll()
    {
        m_script.initialState = m_dice.oneIn(2) ? StateId::Idle : m_dice.pick(StateId::meta.keys());
        for (int count = 3 + m_dice.below(20); count > 0; --count) {
            move();
            const int gap = m_dice.pick({20, 50, 120, 300, 1100, 1600, 2300, 3300});
            m_script.end += std::chrono::milliseconds(gap + m_dice.below(30));
        }
        m_script.end += 5s;
        return m_script;
    }

private:
    void move()
    {
        const bool mayPress = m_down.isEmpty() || (m_down.size() < maxFingers && !m_dice.oneIn(3));
        ScriptStep step;
        step.at = m_script.end;
        step.text = mayPress ? key() : m_dice.pick(m_down);
        step.kind = m_down.removeOne(step.text) ? ScriptStep::Kind::Release : ScriptStep::Kind::Press;
        if (step.kind == ScriptStep::Kind::Press) {
            m_down.append(step.text);
        }
        m_script.steps.append(step);
    }

    QString key()
    {
        return m_keys.isEmpty() || m_dice.oneIn(4) ? RandomRows::anyKey(m_dice) : m_dice.pick(m_keys);
    }

    Dice m_dice;
    KeyScript m_script;
    QStringList m_keys; // of the rows
    QStringList m_down;
};

/// What the daemon's classes do, by the moments, without log lines, answers and senders.
QMap<qint64, QStringList> playedWith(const QVector<KeyRow>& rows, KeyScript script)
{
    script.rows = rows;
    QMap<qint64, QStringList> texts;
    const Play play = Player::play(script);
    for (const PlayEvent& event : play.events) {
        QStringList words = event.text.split(QLatin1Char(' '));
        if (words.first() == QLatin1String("announce")) {
            words[3] = QStringLiteral("-");
        } else if (words.first() != QLatin1String("speak") && words.first() != QLatin1String("cancel")) {
            continue;
        }
        texts[event.at.count()].append(words.join(QLatin1Char(' ')));
    }
    return texts;
}

/// The kind of the first difference between two plays of a script; nothing if there is none.
QStringList firstKind(const KeyScript& script, const QMap<qint64, QStringList>& oldTexts,
                      const QMap<qint64, QStringList>& newTexts)
{
    QVector<qint64> moments = oldTexts.keys().toVector() + newTexts.keys().toVector();
    std::sort(moments.begin(), moments.end());
    for (const qint64 moment : qAsConst(moments)) {
        if (sorted(oldTexts.value(moment)) != sorted(newTexts.value(moment))) {
            return kindOf(script.initialState, oldTexts.value(moment), newTexts.value(moment));
        }
    }
    return {};
}

} // namespace

/// The differences of two lists. MODEL_SEEDS=FIRST:COUNT selects the pairs of random lists.
class ListComparisonTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void listsDoNotDifferFromThemselves();
    void randomListsDoNotDifferFromThemselves();
    void differences_data();
    void differences();
    void longPressesOfOneRepetitionEndInTheirOrder();
    void longPressThatEndsInAnotherStateIsFound();
    void differencesAreMirrored();
    void differencesHoldOnTheDaemon();
    void firstDifferenceOfAScriptIsFound();
};

void ListComparisonTest::listsDoNotDifferFromThemselves()
{
    const KeyLists lists = ListMaps::installed();
    ListComparison comparison(lists, lists, isNoticed);
    QVERIFY(comparison.find(person()).isEmpty());
    QVERIFY(comparison.proof().isComplete);
}

void ListComparisonTest::randomListsDoNotDifferFromThemselves()
{
    QVERIFY(!chosenPairs().isEmpty());
    for (const quint64 seed : chosenPairs()) {
        const RandomPair pair(seed);
        const KeyLists lists = ListMaps::ofRows(pair.newRows, pair.isOrvane);
        ListComparison comparison(lists, lists, isNoticed);
        const bool isEmpty = comparison.find(person()).isEmpty();
        QVERIFY2(isEmpty && comparison.proof().isComplete, qPrintable(QStringLiteral("seed %1").arg(seed)));
    }
}

void ListComparisonTest::differences_data()
{
    QTest::addColumn<QVector<KeyRow>>("oldRows");
    QTest::addColumn<QVector<KeyRow>>("newRows");
    QTest::addColumn<QStringList>("oldOutputs");
    QTest::addColumn<QStringList>("newOutputs");

    using Kind = KeyRow::Kind;
    const QVector<KeyRow> help{row(Kind::Long, "A", {"Help"}, "Print", 1)};
    QTest::newRow("another action") << help << QVector<KeyRow>{row(Kind::Long, "B", {"Help"}, "Print", 1)}
                                    << QStringList("announce A UserMenu - Help")
                                    << QStringList("announce B UserMenu - Help");
    QTest::newRow("another time") << help << QVector<KeyRow>{row(Kind::Long, "A", {"Help"}, "Print", 2)}
                                  << QStringList("announce A UserMenu - Help") << QStringList();
    QTest::newRow("a row more") << help
                                << help + QVector<KeyRow>{row(Kind::Shortcut, "B", {"Up", "Down"}, "Print")}
                                << QStringList() << QStringList("announce B UserMenu - Up Down");
}

void ListComparisonTest::differences()
{
    QFETCH(QVector<KeyRow>, oldRows);
    QFETCH(QVector<KeyRow>, newRows);
    QFETCH(QStringList, oldOutputs);
    QFETCH(QStringList, newOutputs);

    ListComparison comparison(ListMaps::ofRows(oldRows), ListMaps::ofRows(newRows), isNoticed);
    const QVector<Difference> differences = comparison.find(person());
    QVERIFY(comparison.proof().isComplete);
    QVERIFY(!differences.isEmpty());
    bool isFound = false;
    for (const Difference& difference : differences) {
        isFound = isFound || (textsOf(difference.oldOutputs) == oldOutputs &&
                              textsOf(difference.newOutputs) == newOutputs);
    }
    QVERIFY(isFound);
}

void ListComparisonTest::longPressesOfOneRepetitionEndInTheirOrder()
{
    const auto listsOf = [](int seconds) {
        return ListMaps::ofRows({row(KeyRow::Kind::Long, "A", {"Help"}, "Idle", seconds)});
    };
    ListComparison same(listsOf(1), listsOf(1), isNoticed);
    QVERIFY(same.find(person()).isEmpty());
    QVERIFY(same.proof().isComplete);

    // The longer one never ends first. Such a run would fit no real times, and the search would be
    // incomplete.
    ListComparison longer(listsOf(1), listsOf(2), isNoticed);
    const auto differences = longer.find(person());
    QVERIFY(longer.proof().isComplete);
    QVERIFY(std::all_of(differences.begin(), differences.end(), [](const Difference& difference) {
        return textsOf(difference.newOutputs).filter("announce A ").isEmpty();
    }));
}

void ListComparisonTest::longPressThatEndsInAnotherStateIsFound()
{
    const KeyLists none = ListMaps::ofRows({KeyRow{}});
    const KeyLists lists = ListMaps::ofRows({row(KeyRow::Kind::Long, "A", {"Help"}, "Startup", 1)});
    const auto isFound = [&](int changes) {
        Environment environment = person();
        environment.maxStateChanges = changes;
        ListComparison comparison(none, lists, isNoticed);
        const auto differences = comparison.find(environment);
        return std::any_of(differences.begin(), differences.end(), [&](const Difference& difference) {
            checkSide(lists, difference.newSteps, difference.newOutputs, difference.end);
            return difference.state == KeyFacts::startup &&
                   textsOf(difference.newOutputs) == QStringList("announce A UserMenu - Help");
        });
    };
    QVERIFY(!isFound(0));
    QVERIFY(isFound(1));
}

/// What one direction finds, the other finds as well.
void ListComparisonTest::differencesAreMirrored()
{
    QVERIFY(!chosenPairs().isEmpty());
    for (const quint64 seed : chosenPairs()) {
        const RandomPair pair(seed);
        const KeyLists a = ListMaps::ofRows(pair.oldRows, pair.isOrvane);
        const KeyLists b = ListMaps::ofRows(pair.newRows, pair.isOrvane);
        QSet<QStringList> mirrored;
        const auto differences = ListComparison(b, a, isNoticed).find(person());
        for (const Difference& difference : differences) {
            mirrored.insert(kindOf(Alphabet::nameOf(difference.state), textsOf(difference.newOutputs),
                                   textsOf(difference.oldOutputs)));
        }
        QVERIFY2(kindsOf(ListComparison(a, b, isNoticed).find(person())) == mirrored,
                 qPrintable(QStringLiteral("seed %1").arg(seed)));
    }
}

void ListComparisonTest::differencesHoldOnTheDaemon()
{
    int played = 0;
    for (const quint64 seed : chosenPairs()) {
        const RandomPair pair(seed);
        const KeyLists a = ListMaps::ofRows(pair.oldRows, pair.isOrvane);
        const KeyLists b = ListMaps::ofRows(pair.newRows, pair.isOrvane);
        const auto differences = ListComparison(a, b, isNoticed).find(person());
        for (const Difference& difference : differences) {
            checkSide(a, difference.oldSteps, difference.oldOutputs, difference.end);
            checkSide(b, difference.newSteps, difference.newOutputs, difference.end);
            if (QTest::currentTestFailed()) {
                qWarning("seed %llu", seed);
                return;
            }
            ++played;
        }
    }
    QVERIFY(played > 0);
}

/// The kind of the first difference of each random script must be among those of the comparison.
void ListComparisonTest::firstDifferenceOfAScriptIsFound()
{
    int found = 0;
    for (const quint64 seed : chosenPairs()) {
        const RandomPair pair(seed);
        const auto kinds = kindsOf(ListComparison(ListMaps::ofRows(pair.oldRows, pair.isOrvane),
                                                  ListMaps::ofRows(pair.newRows, pair.isOrvane), isNoticed)
                                       .find(person()));
        for (int i = 0; i < scriptsOfPair; ++i) {
            const KeyScript script =
                PersonScript(seed * scriptsOfPair + static_cast<quint64>(i), pair).roll();
            const QStringList kind =
                firstKind(script, playedWith(pair.oldRows, script), playedWith(pair.newRows, script));
            QVERIFY2(kind.isEmpty() || kinds.contains(kind),
                     qPrintable(QStringLiteral("seed %1:%2: %3").arg(seed).arg(i).arg(kind.join("; "))));
            found += kind.isEmpty() ? 0 : 1;
        }
    }
    qInfo("%d first differences", found);
    QVERIFY(found > 0);
}

VIRTUAL_TIME_TEST_MAIN(ListComparisonTest)
#include "ListComparisonTest.moc"
