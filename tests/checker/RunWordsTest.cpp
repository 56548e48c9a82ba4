// SPDX-License-Identifier: MIT
#include "checker/RunWords.h"
#include "checker/ScriptArgument.h"
#include "checker/ScriptPlayback.h"
#include "model/KeyFacts.h"
#include "tests/model/ListMaps.h"

#include <QtTest>

using namespace model;

class RunWordsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void movementsAreWords_data();
    void movementsAreWords();
    void runOfASearchHasTheTimesOfItsWitness();
};

void RunWordsTest::movementsAreWords_data()
{
    QTest::addColumn<QString>("statements");
    QTest::addColumn<QString>("words");
    QTest::newRow("nothing") << QString() << QString();
    QTest::newRow("a tap") << "tap Up"
                           << "Up";
    QTest::newRow("one key after another") << "tap Help Feed"
                                           << "Help, then Feed";
    QTest::newRow("a hold") << "hold Back 2250"
                            << "hold Back for 2.25 s";
    QTest::newRow("a hold without an end") << "press Back; wait 3000"
                                           << "hold Back for 3 s";
    QTest::newRow("a press without an end") << "press Back"
                                            << "press Back";
    QTest::newRow("the longest tap") << "hold Up 249"
                                     << "Up";
    QTest::newRow("the shortest hold") << "hold Up 250"
                                       << "hold Up for 0.25 s";
    QTest::newRow("a chord") << "press Function; wait 100; press Up"
                             << "hold Function, then press Up";
    QTest::newRow("a released chord") << "press Feed; wait 50; tap Ok; wait 50; release Feed"
                                      << "hold Feed, then tap Ok, then release Feed";
    QTest::newRow("a long chord") << "press Feed; wait 700; press Ok"
                                  << "hold Feed, then wait 0.7 s, then press Ok";
    QTest::newRow("two keys at once") << "press Feed; press Ok"
                                      << "press Feed and Ok together";
    QTest::newRow("a long pause") << "tap Up; wait 1500; tap Up"
                                  << "Up, then wait 1.5 s, then Up";
    QTest::newRow("a short pause") << "tap Up; wait 499; tap Up"
                                   << "Up, then Up";
    QTest::newRow("a wait at the end") << "tap Up; wait 1500"
                                       << "Up, then wait 1.5 s";
    QTest::newRow("the other device") << "press Up; wait 50; device 1; press Up"
                                      << "hold Up, then press Up on device 1";
    QTest::newRow("a change of the state") << "tap Help; state Print; tap Feed"
                                           << "Help, then the state becomes Print, then Feed";
    QTest::newRow("records")
        << "record 1 103 1; record 1 103 2; record 1 103 0"
        << "a record that Up is pressed, then a record that Up repeats, then a record that "
           "Up is released";
    QTest::newRow("commands")
        << "command StartTestMode; command SimulateModifier Help; command SimulateShortcut Feed"
        << "the keyboard test begins, then a service simulates Help for combinations, then a service "
           "simulates "
           "Feed for shortcuts";
}

void RunWordsTest::movementsAreWords()
{
    QFETCH(QString, statements);
    QFETCH(QString, words);
    const checker::ScriptArgument argument = checker::ScriptArgument::ofStatements(statements);
    QCOMPARE(argument.faults, QStringList());
    const KeyModel keyModel(ListMaps::installed());
    const checker::ScriptPlayback playback(keyModel, argument.script);
    QCOMPARE(checker::RunWords::of(playback.playback().steps(), playback.playback().now()), words);
}

void RunWordsTest::runOfASearchHasTheTimesOfItsWitness()
{
    const KeyModel keyModel(ListMaps::installed());
    const Key help = KeyFacts::help;
    const Run run{KeyFacts::idle,
                  {Input::press(help), Input::repeat(help), Input::of(Input::Kind::LongPressTime)}};
    Environment person;
    person.kind = Environment::Kind::Person;
    QCOMPARE(checker::RunWords::of(keyModel, person, run), QString("hold Help for 2.25 s"));
}

QTEST_GUILESS_MAIN(RunWordsTest)
#include "RunWordsTest.moc"
