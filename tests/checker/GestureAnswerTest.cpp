// SPDX-License-Identifier: MIT
#include "checker/GestureAnswer.h"

#include "checker/ScriptArgument.h"
#include "model/Alphabet.h"
#include "tests/model/ListMaps.h"
#include "tests/virtual/DeviceTest.h"
#include "tests/whole/random/Player.h"

using checker::GestureAnswer;
using model::KeyLists;
using model::List;
using model::RowId;

namespace {

constexpr int tapTime = 50;
constexpr int window = 1500;

KeyScript scriptOf(const QString& statements, const QString& state = "Idle")
{
    KeyScript script = checker::ScriptArgument::ofStatements(statements).script;
    script.initialState = state;
    return script;
}

QString sentenceOf(const QString& statements, const QString& state = "Idle")
{
    return GestureAnswer::of(ListMaps::installed(), scriptOf(statements, state)).sentence;
}

/// The gesture of a row with `pause` ms between its movements.
QString statementsOf(const KeyLists& lists, RowId id, int pause)
{
    const KeyEntry& row = lists.row(id);
    const QString wait = QStringLiteral("wait %1; ").arg(pause);
    if (id.list == List::LongPresses) {
        return QStringLiteral("hold %1 %2").arg(row.firstKey()).arg(row.timeout() + 300 + pause);
    }
    if (id.list == List::Shortcuts) {
        return QStringLiteral("press %1; %3tap %2; %3release %1").arg(row.firstKey(), row.lastKey(), wait);
    }
    return "tap " + row.keys().join("; " + wait + "tap ");
}

/// All gestures: those of the rows, at two paces and too slow, each key alone, and the factory reset.
QStringList gesturesOf(const KeyLists& lists)
{
    QStringList gestures{"hold FactoryReset 5100"};
    for (const RowId id : lists.ids()) {
        for (const int pause : {tapTime, 900, window + tapTime}) {
            gestures.append(statementsOf(lists, id, pause));
        }
    }
    for (const QString& key : ls::KeyId::meta.keys()) {
        if (key != ls::KeyId::Unknown) {
            gestures.append("tap " + key);
        }
    }
    return gestures;
}

QStringList described(const GestureAnswer& answer)
{
    QStringList texts;
    for (const GestureAnswer::Announcement& announcement : answer.announcements) {
        texts.append(QStringLiteral("%1 %2 to %3, with %4")
                         .arg(QString::number(announcement.at.count()), announcement.action,
                              announcement.receiver, announcement.keys.join(' ')));
    }
    return texts;
}

/// What the daemon's classes announce.
QStringList announced(KeyScript script, const QString& model)
{
    script.model = model;
    script.end += 2s;
    QStringList texts;
    const Play play = Player::play(script);
    for (const PlayEvent& event : play.events) {
        const QStringList words = event.text.split(' '); // announce ACTION RECEIVER SENDER KEY...
        if (words.first() == "announce") {
            texts.append(QStringLiteral("%1 %2 to %3, with %4")
                             .arg(QString::number(event.at.count()), words.value(1), words.value(2),
                                  words.mid(4).join(' ')));
        }
    }
    return texts;
}

} // namespace

class GestureAnswerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void gestureIsDescribed_data();
    void gestureIsDescribed();
    void describedIsWhatTheDaemonAnnounces_data();
    void describedIsWhatTheDaemonAnnounces();
    void keysMatterUntilTheyAreForgotten_data();
    void keysMatterUntilTheyAreForgotten();
};

void GestureAnswerTest::gestureIsDescribed_data()
{
    QTest::addColumn<QString>("statements");
    QTest::addColumn<QString>("state");
    QTest::addColumn<QString>("sentence");
    QTest::newRow("a combination") << "tap Help Feed"
                                   << "Idle"
                                   << "Help, then Feed: PaperStatus, to PrintManager, only in Idle.";
    QTest::newRow("a slow combination") << "press Help; wait 700; release Help; wait 700; hold Feed 600"
                                        << "Idle"
                                        << "Help, then Feed: PaperStatus, to PrintManager, only in Idle.";
    QTest::newRow("too slow") << "tap Chs; wait 1650; tap Up"
                              << "Idle"
                              << "Chs, then wait 1.65 s, then Up: the single key Chs, to UserMenu; the "
                                 "single key Up, to UserMenu.";
    QTest::newRow("released too late") << "tap Chs; wait 900; hold Up 600"
                                       << "Idle"
                                       << "Chs, then wait 0.9 s, then hold Up for 0.6 s: the single key Chs, "
                                          "to UserMenu; the single key Up, to UserMenu.";
    QTest::newRow("several states") << "hold Menu 2300"
                                    << "Error"
                                    << "Hold Menu for 2.3 s: MainMenu, to UserMenu, only in Idle and Error; "
                                       "the single key Menu, to ErrorHandler.";
    QTest::newRow("a repeated long press") << "hold Ok 3000"
                                           << "Error"
                                           << "Hold Ok for 3 s: AcknowledgeError, to ErrorHandler, only in "
                                              "Error, 2 times; the single key Ok, to ErrorHandler.";
    QTest::newRow("several receivers") << "tap Feed"
                                       << "Idle"
                                       << "Feed: the single key Feed, to PrintManager and UserMenu.";
    QTest::newRow("a refusal") << "press Feed; wait 100; tap Ok; wait 50; release Feed"
                               << "Idle"
                               << "Hold Feed, then tap Ok, then release Feed: LoadPaper is refused: it is "
                                  "valid in PrintOff and the state is Idle.";
    QTest::newRow("the factory reset") << "hold FactoryReset 5100"
                                       << "Print"
                                       << "Hold FactoryReset for 5.1 s: FactoryReset, to WwwApi; the single "
                                          "key FactoryReset, to PrintManager.";
    QTest::newRow("speech alone") << "tap Up"
                                  << "Startup"
                                  << "Up: speaks the sentence StartingUp; nothing is announced.";
    QTest::newRow("nothing") << "release Up"
                             << "Idle"
                             << "Nothing is spoken and nothing is announced.";
}

void GestureAnswerTest::gestureIsDescribed()
{
    QFETCH(QString, statements);
    QFETCH(QString, state);
    QTEST(sentenceOf(statements, state), "sentence");
}

void GestureAnswerTest::describedIsWhatTheDaemonAnnounces_data()
{
    QTest::addColumn<QString>("model");
    QTest::addColumn<QString>("state");
    for (const QString embosser : {"Pellit", "Orvane"}) {
        for (const model::State state : model::Alphabet::states()) {
            const QString name = model::Alphabet::nameOf(state);
            QTest::newRow(qPrintable(embosser + ' ' + name)) << embosser << name;
        }
    }
}

void GestureAnswerTest::describedIsWhatTheDaemonAnnounces()
{
    QFETCH(QString, model);
    QFETCH(QString, state);
    KeyLists lists = ListMaps::installed();
    lists.isOrvane = model == "Orvane";
    for (const QString& gesture : gesturesOf(lists)) {
        const KeyScript script = scriptOf(gesture, state);
        const GestureAnswer answer = GestureAnswer::of(lists, script);
        const QString text = gesture + '\n' + answer.sentence + '\n';
        QCOMPARE(text + described(answer).join('\n'), text + announced(script, model).join('\n'));
        for (const GestureAnswer::Announcement& announcement : answer.announcements) {
            const bool isSingle = announcement.action == ls::KeyboardActionId::SingleKey;
            const QString what =
                isSingle ? "the single key " + announcement.keys.join(" and ") : announcement.action;
            QVERIFY2(answer.sentence.contains(what + ", to "), qPrintable(text));
            QVERIFY2(answer.sentence.contains(announcement.receiver), qPrintable(text));
        }
    }
}

void GestureAnswerTest::keysMatterUntilTheyAreForgotten_data()
{
    QTest::addColumn<QString>("statements");
    QTest::addColumn<QString>("state");
    QTest::addColumn<int>("time");
    QTest::newRow("a key that waits") << "tap Feed"
                                      << "Idle" << window;
    QTest::newRow("a key that waits, later") << "tap Feed; wait 400"
                                             << "Idle" << window - 400;
    QTest::newRow("Menu, which is sent at once") << "tap Menu"
                                                 << "Idle" << 0;
    QTest::newRow("the used keys of a combination") << "tap Help Feed"
                                                    << "Idle" << window;
    QTest::newRow("another state") << "tap Feed"
                                   << "Print" << 0;
}

void GestureAnswerTest::keysMatterUntilTheyAreForgotten()
{
    QFETCH(QString, statements);
    QFETCH(QString, state);
    QFETCH(int, time);
    const GestureAnswer answer = GestureAnswer::of(ListMaps::installed(), scriptOf(statements, state));
    QCOMPARE(int(answer.forgottenAfter.count()), time);
}

VIRTUAL_TIME_TEST_MAIN(GestureAnswerTest)
#include "GestureAnswerTest.moc"
