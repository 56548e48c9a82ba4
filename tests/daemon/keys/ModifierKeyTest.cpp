// SPDX-License-Identifier: MIT
#include "keys/ModifierKey.h"
#include "simulator/script/ObservationText.h"
#include "tests/fakes/FakeSpeech.h"
#include "tests/virtual/MapReader.h"

#include <QtTest>

#include <unistd.h>

namespace {

qint64 residentPages()
{
    QFile file("/proc/self/statm");
    file.open(QIODevice::ReadOnly);
    return file.readAll().split(' ').value(1).toLongLong();
}

} // namespace

/// Reports matches as "match FIRST SECOND" and speech as in key scripts; speech is sent from the event loop
/// and therefore comes after the matches of the same sequence.
class ModifierKeyTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void releasedSequencesMatch_data();
    void releasedSequencesMatch();
    void longerRowsCancelSpeechFirst();
    void functionIsSpokenAsThePlainSentence();
    void closingKeyWithoutNameIsSpokenAsSentence0();
    void resetClosesTheCombination();
    void beforeTheFirstResetNoKeyOpensARow();
    void signalCarriesTheWholeRow();
    void endlessSequenceDoesNotGrow();
    void keyListIsTheWholeFile();
    void missingFileHasAnEmptyList();

private:
    void make(MapReader reader);
    QStringList release(const QStringList& keys);

    std::unique_ptr<ModifierKey> modifiers;
    QStringList seen;
};

void ModifierKeyTest::initTestCase()
{
    FakeSpeech::onSpeak(
        [this](const QVariantMap& request) { seen.append(ObservationText::speech(request)); });
    FakeSpeech::onCancel([this] { seen.append("cancel"); });
}

void ModifierKeyTest::make(MapReader reader)
{
    modifiers = std::make_unique<ModifierKey>(reader, nullptr);
    modifiers->reset();
    connect(modifiers.get(), &ModifierKey::doubleModifier, this,
            [this](const QString& action, const QString&, const QString&, const QVariantMap& map) {
                seen.append(
                    QString("%1 %2 %3")
                        .arg(action, map.value("firstKey").toString(), map.value("secondKey").toString()));
            });
}

QStringList ModifierKeyTest::release(const QStringList& keys)
{
    seen.clear();
    for (const QString& key : keys) {
        modifiers->process(key);
    }
    QCoreApplication::processEvents();
    return seen;
}

void ModifierKeyTest::releasedSequencesMatch_data()
{
    using Rows = QList<QStringList>;
    QTest::addColumn<Rows>("rows");
    QTest::addColumn<QStringList>("released");
    QTest::addColumn<QStringList>("matches");
    const Rows pair{{"Menu", "Up"}};
    const Rows triple{{"Menu", "Up", "Down"}};
    const QString menuUp = "A0 Menu Up";
    QTest::newRow("pair") << pair << QStringList{"Menu", "Up"} << QStringList{menuUp};
    QTest::newRow("closing key again")
        << pair << QStringList{"Menu", "Up", "Up"} << QStringList{menuUp, menuUp};
    QTest::newRow("wrong order") << pair << QStringList{"Up", "Menu"} << QStringList{};
    QTest::newRow("another key between does not hurt a pair")
        << pair << QStringList{"Menu", "Ok", "Up"} << QStringList{menuUp};
    QTest::newRow("triple") << triple << QStringList{"Menu", "Up", "Down"} << QStringList{"A0 Menu Down"};
    QTest::newRow("triple again before the reset")
        << triple << QStringList{"Menu", "Up", "Down", "Menu", "Up", "Down"}
        << QStringList{"A0 Menu Down", "A0 Menu Down"};
    QTest::newRow("longer row behind a match keeps the closing key")
        << Rows{{"Help", "Up", "Help"}, {"Chs", "Ok", "Down"}}
        << QStringList{"Help", "Up", "Help", "Up", "Help"} << QStringList{"A0 Help Help", "A0 Help Help"};
    QTest::newRow("triple with a wrong middle")
        << triple << QStringList{"Menu", "Ok", "Down"} << QStringList{};
    QTest::newRow("triple too long") << triple << QStringList{"Menu", "Up", "Up", "Down"} << QStringList{};
    QTest::newRow("pair behind a longer row is hidden")
        << Rows{{"Menu", "Up", "Down"}, {"Menu", "Up"}} << QStringList{"Menu", "Up"} << QStringList{};
    QTest::newRow("pair before a longer row works")
        << Rows{{"Menu", "Up"}, {"Menu", "Ok", "Down"}} << QStringList{"Menu", "Up"} << QStringList{menuUp};
    QTest::newRow("pair that matches empties the sequence of the longer row")
        << Rows{{"Menu", "Up"}, {"Menu", "Up", "Down"}} << QStringList{"Menu", "Up", "Down"}
        << QStringList{menuUp};
    QTest::newRow("pair behind a longer row that matches is reached")
        << Rows{{"Menu", "Up", "Down"}, {"Menu", "Down"}} << QStringList{"Menu", "Up", "Down"}
        << QStringList{"A0 Menu Down", "A1 Menu Down"};
    QTest::newRow("second longer row is hidden by the first")
        << Rows{{"Menu", "Up", "Down"}, {"Menu", "Up", "Ok"}} << QStringList{"Menu", "Up", "Ok"}
        << QStringList{};
    QTest::newRow("longer row behind a match starts from the current key")
        << Rows{{"Menu", "Up", "Down"}, {"Down", "x", "y"}} << QStringList{"Menu", "Up", "Down", "x", "y"}
        << QStringList{"A0 Menu Down"};
    QTest::newRow("single key twice")
        << Rows{{"Help"}} << QStringList{"Help", "Help"} << QStringList{"A0 Help Help"};
    QTest::newRow("same key named twice")
        << Rows{{"Help", "Help"}} << QStringList{"Help", "Help"} << QStringList{"A0 Help Help"};
    QTest::newRow("single key once") << Rows{{"Help"}} << QStringList{"Help"} << QStringList{};
    QTest::newRow("two rows of the same pair both match")
        << Rows{{"Menu", "Up"}, {"Menu", "Up"}} << QStringList{"Menu", "Up"}
        << QStringList{menuUp, "A1 Menu Up"};
    QTest::newRow("row without keys is passed over")
        << Rows{{}, {"Menu", "Up"}} << QStringList{"Menu", "Up"} << QStringList{"A1 Menu Up"};
    QTest::newRow("row without keys never matches") << Rows{{}} << QStringList{"", ""} << QStringList{};
    QTest::newRow("key of no row opens nothing")
        << pair << QStringList{"Ok", "Menu", "Up"} << QStringList{menuUp};
}

void ModifierKeyTest::releasedSequencesMatch()
{
    QFETCH(QList<QStringList>, rows);
    QFETCH(QStringList, released);
    make(MapReader::ofKeys("ModifierKeys", rows));
    QStringList matches = release(released);
    matches = matches.filter(QRegularExpression("^A"));
    QTEST(matches, "matches");
}

void ModifierKeyTest::longerRowsCancelSpeechFirst()
{
    make(MapReader::ofKeys("ModifierKeys", {{"Menu", "Up"}, {"Menu", "Ok", "Down"}}));
    QCOMPARE(release({"Menu", "Up"}), (QStringList{"A0 Menu Up", "speak EmbosserCore 24"}));
    modifiers->reset();
    QCOMPARE(release({"Menu", "Ok", "Down"}),
             (QStringList{"A1 Menu Down", "cancel", "speak EmbosserCore 25"}));
}

void ModifierKeyTest::functionIsSpokenAsThePlainSentence()
{
    make(MapReader::ofKeys("ModifierKeys", {{"Menu", "Function"}}));
    QCOMPARE(release({"Menu", "Function"}), (QStringList{"A0 Menu Function", "speak EmbosserCore 31"}));
}

void ModifierKeyTest::closingKeyWithoutNameIsSpokenAsSentence0()
{
    make(MapReader::ofKeys("ModifierKeys", {{"Menu", "FactoryReset"}}));
    QCOMPARE(release({"Menu", "FactoryReset"}),
             (QStringList{"A0 Menu FactoryReset", "speak EmbosserCore 0"}));
}

void ModifierKeyTest::resetClosesTheCombination()
{
    make(MapReader::ofKeys("ModifierKeys", {{"Menu", "Up", "Down"}}));
    release({"Menu", "Up"});
    modifiers->reset();
    QCOMPARE(release({"Down"}), QStringList{});
    QCOMPARE(release({"Menu", "Up", "Down"}).size(), 3);
}

void ModifierKeyTest::beforeTheFirstResetNoKeyOpensARow()
{
    MapReader reader = MapReader::ofKeys("ModifierKeys", {{"Menu", "Up"}});
    ModifierKey untouched(reader, nullptr);
    QSignalSpy spy(&untouched, &ModifierKey::doubleModifier);
    untouched.process("Menu");
    untouched.process("Up");
    QCOMPARE(spy.size(), 0);
}

void ModifierKeyTest::signalCarriesTheWholeRow()
{
    make(MapReader({{"ModifierKeys", QVariantList{QVariantMap{{"keys", QStringList{"Menu", "Up"}},
                                                              {"eAction", "Act"},
                                                              {"receiverService", "WwwApi"},
                                                              {"validOnState", "Idle|Print"}}}}}));
    QVariantList carried;
    connect(modifiers.get(), &ModifierKey::doubleModifier, this,
            [&carried](const QString& action, const QString& receiver, const QString& states,
                       const QVariantMap& parameters) {
                carried = QVariantList{action, receiver, states, parameters};
            });
    release({"Menu", "Up"});
    const QVariantMap parameters{{"firstKey", "Menu"}, {"secondKey", "Up"}};
    QCOMPARE(carried, (QVariantList{"Act", "WwwApi", "Idle|Print", parameters}));
}

void ModifierKeyTest::endlessSequenceDoesNotGrow()
{
    make(MapReader::ofKeys("ModifierKeys", {{"Menu", "Up", "Down"}}));
    const QString key = QStringLiteral("Ok");
    modifiers->process("Menu");
    const qint64 before = residentPages();
    for (int i = 0; i < 2000000; ++i) { // 16 MB of pointers, if each were kept
        modifiers->process(key);
    }
    QVERIFY((residentPages() - before) * ::sysconf(_SC_PAGESIZE) < 2000000);
    modifiers->reset();
    QCOMPARE(release({"Menu", "Up", "Down"}).first(), QString("A0 Menu Down"));
}

void ModifierKeyTest::keyListIsTheWholeFile()
{
    const QVariantMap content{{"ModifierKeys", QVariantList{}}, {"extra", "kept"}};
    make(MapReader(content));
    QCOMPARE(modifiers->keyList(), content);
}

void ModifierKeyTest::missingFileHasAnEmptyList()
{
    QTest::ignoreMessage(QtCriticalMsg, QRegularExpression("^ModifierKey::load ERROR: reading"));
    QTest::ignoreMessage(QtCriticalMsg, QRegularExpression("^ModifierKey::load ERROR: value list"));
    make(MapReader());
    QCOMPARE(modifiers->keyList(), QVariantMap{});
    QCOMPARE(release({"Menu", "Up"}), QStringList{});
}

QTEST_GUILESS_MAIN(ModifierKeyTest)
#include "ModifierKeyTest.moc"
