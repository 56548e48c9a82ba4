// SPDX-License-Identifier: MIT
#include "workbench/braille/BrailleCard.h"
#include "card/CardJson.h"
#include "card/CardSentences.h"
#include "tests/card/CardKeyLists.h"
#include "tests/card/RandomJson.h"
#include "tests/workbench/braille/BrailleText.h"
#include "workbench/braille/BraillePages.h"
#include "workbench/braille/BrailleWords.h"

#include <QtTest>

#include <liblouis/liblouis.h>

namespace {

/// A fault in the format of a BRF file; empty if there is none.
QString formatFault(const QByteArray& brf)
{
    const QByteArray lineEnds = QByteArray(brf).replace("\r\n", "");
    if (lineEnds.contains('\r') || lineEnds.contains('\n') || !brf.endsWith("\r\n")) {
        return "line ends";
    }
    for (const QByteArrayList& page : BrailleText::pages(brf)) {
        if (page.isEmpty() || page.size() > 25) {
            return "number of lines";
        }
        for (const QByteArray& line : page) {
            const auto isCell = [](char c) { return c >= 0x20 && c <= 0x5f; };
            if (line.size() > 40 || !std::all_of(line.cbegin(), line.cend(), isCell) || line.endsWith(' ')) {
                return "line: " + line;
            }
        }
    }
    return {};
}

QByteArray brfOf(const KeyLists& lists, const QString& model = "Pellit")
{
    QString error;
    const QByteArray brf = brailleCard(KeyCard::from(lists, model), &error);
    return error.isEmpty() ? brf : QByteArray();
}

/// The pages of `paragraphs`.
QVector<QByteArrayList> layOut(const QVector<QByteArrayList>& paragraphs)
{
    BraillePages pages;
    pages.beginSection({"HEAD"});
    for (const QByteArrayList& words : paragraphs) {
        pages.addParagraph(words);
    }
    return BrailleText::pages(pages.bytes());
}

/// A paragraph of `lines` lines.
QByteArrayList linesOfWords(int lines)
{
    QByteArrayList words{QByteArray(40, 'A')};
    while (words.size() < lines) {
        words.append(QByteArray(38, 'B'));
    }
    return words;
}

QVector<int> sizesOf(const QVector<QByteArrayList>& pages)
{
    QVector<int> sizes;
    for (const QByteArrayList& page : pages) {
        sizes.append(page.size());
    }
    return sizes;
}

} // namespace

class BrailleCardTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void wordsAreTranslatedExactly_data();
    void wordsAreTranslatedExactly();
    void unknownCharactersAreHandled_data();
    void unknownCharactersAreHandled();
    void continuationLinesAreIndented();
    void shortWordsAreNotSplit();
    void longWordsAreSplitWithASign();
    void shortParagraphsAreNotSplit();
    void longParagraphsAreSplit();
    void headsShowSectionAndPage();
    void longHeadsAreTruncated();
    void allListsHaveAValidFormat_data() { lists(); }
    void allListsHaveAValidFormat();
    void brailleContainsTheWholeCard_data() { lists(); }
    void brailleContainsTheWholeCard();
    void eachStateStartsAPage();
    void deadRowsAndUnreadableFilesAreListed();
    void randomListsAreHandled();
    void missingTablesAreReported();

private:
    void lists();
    static QString singleKeyPattern(const KeyCardEntry& entry);
};

void BrailleCardTest::wordsAreTranslatedExactly_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QByteArray>("cells");
    QTest::newRow("capitals") << "Help" << QByteArray(",HELP");
    QTest::newRow("inner capitals") << "KeyDescription" << QByteArray(",KEY,DESCRIPTION");
    QTest::newRow("digits") << "2.25" << QByteArray("#B4BE");
    QTest::newRow("letters after digits") << "2a" << QByteArray("#B;A");
    QTest::newRow("all capitals") << "OK" << QByteArray(",,OK");
    QTest::newRow("stop and comma") << "a, b." << QByteArray("A1 B4");
    QTest::newRow("underscore and bar") << "a_b|c" << QByteArray("A.-B_\\C");
    QTest::newRow("blanks") << " \t a \n b " << QByteArray("A B");
    QTest::newRow("nothing") << "" << QByteArray();
}

void BrailleCardTest::wordsAreTranslatedExactly()
{
    QFETCH(QString, text);
    QFETCH(QByteArray, cells);
    QCOMPARE(BrailleWords().translate(text).join(' '), cells);
}

void BrailleCardTest::unknownCharactersAreHandled_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("Cyrillic") << QString::fromUtf8("\xD0\x96");
    QTest::newRow("emoji") << QString::fromUtf8("\xF0\x9F\x94\x91");
    QTest::newRow("NUL") << QString(QChar(0));
    QTest::newRow("control") << QString(QChar(0x1b));
    QTest::newRow("half a surrogate pair") << QString(QChar(0xd83d));
    QTest::newRow("zero width") << QString(QChar(0x200b));
    QTest::newRow("braille blank") << QString(QChar(0x2800));
    QTest::newRow("braille cell of eight dots") << QString(QChar(0x28ff));
    QTest::newRow("very long") << QString(100000, 'x');
}

void BrailleCardTest::unknownCharactersAreHandled()
{
    QFETCH(QString, text);
    const QByteArrayList words = BrailleWords().translate("a" + text + "b c");
    QCOMPARE(words.size(), 2);
    QVERIFY(words.first().size() > 2); // more than the letter a
    for (const char cell : words.join()) {
        QVERIFY(cell > 0x20 && cell <= 0x5f);
    }
    QCOMPARE(words.last(), QByteArray("C"));
}

void BrailleCardTest::continuationLinesAreIndented()
{
    const QByteArrayList page = layOut({{QByteArray(30, 'A'), QByteArray(9, 'B'), "C", "D"}}).first();
    QCOMPARE(page.mid(1), (QByteArrayList{QByteArray(30, 'A') + ' ' + QByteArray(9, 'B'), "  C D"}));
}

void BrailleCardTest::shortWordsAreNotSplit()
{
    const QByteArrayList page =
        layOut({{QByteArray(30, 'A'), QByteArray(10, 'B'), QByteArray(38, 'C')}}).first();
    QCOMPARE(page.mid(1),
             (QByteArrayList{QByteArray(30, 'A'), "  " + QByteArray(10, 'B'), "  " + QByteArray(38, 'C')}));
}

void BrailleCardTest::longWordsAreSplitWithASign()
{
    const QByteArrayList page = layOut({{"A", QByteArray(80, 'B'), "C"}}).first();
    QCOMPARE(page.mid(1),
             (QByteArrayList{"A", "  " + QByteArray(37, 'B') + '"', "  " + QByteArray(37, 'B') + '"',
                             "  " + QByteArray(6, 'B') + " C"}));
}

void BrailleCardTest::shortParagraphsAreNotSplit()
{
    QCOMPARE(sizesOf(layOut({linesOfWords(20), linesOfWords(4)})), (QVector<int>{25}));
    QCOMPARE(sizesOf(layOut({linesOfWords(20), linesOfWords(5)})), (QVector<int>{21, 6}));
    QCOMPARE(sizesOf(layOut({linesOfWords(1), linesOfWords(24)})), (QVector<int>{2, 25}));
}

void BrailleCardTest::longParagraphsAreSplit()
{
    QCOMPARE(sizesOf(layOut({linesOfWords(1), linesOfWords(25)})), (QVector<int>{25, 3}));
}

void BrailleCardTest::headsShowSectionAndPage()
{
    BraillePages pages;
    pages.beginSection({"CARD", "ONE"});
    pages.addParagraph(linesOfWords(30));
    pages.beginSection({"CARD", "TWO"});
    const QVector<QByteArrayList> all = BrailleText::pages(pages.bytes());
    QCOMPARE(all.size(), 3);
    QCOMPARE(all.at(0).first(), QByteArray("CARD ONE").leftJustified(38) + "#A");
    QCOMPARE(all.at(1).first(), QByteArray("CARD ONE").leftJustified(38) + "#B");
    QCOMPARE(all.at(2).first(), QByteArray("CARD TWO").leftJustified(38) + "#C");
}

void BrailleCardTest::longHeadsAreTruncated()
{
    BraillePages pages;
    for (int i = 0; i < 1024; ++i) {
        pages.beginSection({QByteArray(100, 'A')});
    }
    QCOMPARE(BrailleText::pages(pages.bytes()).last().first(), QByteArray(34, 'A') + " #AJBD");
}

void BrailleCardTest::lists()
{
    QTest::addColumn<KeyLists>("lists");
    const QMap<QString, KeyLists> all = CardKeyLists::all();
    for (auto it = all.cbegin(); it != all.cend(); ++it) {
        QTest::newRow(qPrintable(it.key())) << it.value();
    }
}

void BrailleCardTest::allListsHaveAValidFormat()
{
    QFETCH(KeyLists, lists);
    QCOMPARE(formatFault(brfOf(lists)), QString());
}

/// Single keys with the same outcome are grouped.
QString BrailleCardTest::singleKeyPattern(const KeyCardEntry& entry)
{
    return QStringLiteral("Press and release [^.]*\\b%1\\b[^.]*\\. %2 %3")
        .arg(entry.keys.first(),
             QRegularExpression::escape(CardSentences::outcome(entry.action, entry.receivers)),
             QRegularExpression::escape(CardSentences::notesOf(entry).join(' ')));
}

void BrailleCardTest::brailleContainsTheWholeCard()
{
    QFETCH(KeyLists, lists);
    const KeyCard card = KeyCard::from(lists, "Orvane");
    for (const KeyCardState& state : card.states) {
        KeyCard part;
        part.states = {state};
        const QString text = BrailleText::body(brailleCard(part, nullptr));
        for (const KeyCardEntry& entry : state.entries) {
            const QString outcome = CardSentences::outcome(entry.action, entry.receivers);
            const QString expected =
                (QStringList{CardSentences::how(entry), outcome} + CardSentences::notesOf(entry))
                    .join(' ')
                    .simplified();
            if (entry.kind == KeyCardKind::Single) {
                QVERIFY2(text.contains(QRegularExpression(singleKeyPattern(entry))),
                         qPrintable(expected + '\n' + text));
            } else if (expected.toLatin1() == expected.toUtf8()) {
                QVERIFY2(text.contains(expected), qPrintable(expected + '\n' + text));
            }
        }
    }
}

void BrailleCardTest::eachStateStartsAPage()
{
    const QByteArray brf = brfOf(CardKeyLists::installed());
    QStringList headings;
    for (const QByteArrayList& page : BrailleText::pages(brf)) {
        if (page.at(1).isEmpty()) {
            headings.append(BrailleText::textOf(page.at(2).trimmed()));
            QVERIFY(
                BrailleText::textOf(page.first()).startsWith("Key card Pellit: " + headings.last() + ' '));
        }
    }
    QCOMPARE(headings, (QStringList{"Startup", "Idle", "Print", "PrintOff", "Update", "Error"}));
}

void BrailleCardTest::deadRowsAndUnreadableFilesAreListed()
{
    const KeyCard card = KeyCard::from(CardKeyLists::odd().value("shortcuts"), "Pellit");
    QVERIFY(!card.deadRows.isEmpty());
    const QString text = BrailleText::body(brailleCard(card, nullptr));
    QVERIFY(text.contains("Rows that never work"));
    for (const KeyCardDeadRow& row : card.deadRows) {
        QVERIFY2(text.contains(row.why), qPrintable(row.why + '\n' + text));
    }
    const QString withoutLists = BrailleText::body(brfOf({}));
    QVERIFY(withoutLists.startsWith("Notes longKeyList.json has no readable list"));
}

void BrailleCardTest::randomListsAreHandled()
{
    for (int seed = 0; seed < 300; ++seed) {
        RandomJson json(static_cast<quint64>(seed));
        const KeyCard card = KeyCard::from(json.keyLists(), "Pellit");
        QVERIFY(!QJsonDocument(toJson(card)).toJson().isEmpty());
        QVERIFY2(formatFault(brailleCard(card, nullptr)).isEmpty(), qPrintable(QString::number(seed)));
    }
}

void BrailleCardTest::missingTablesAreReported()
{
    lou_free(); // unloads the tables
    qputenv("LOUIS_TABLEPATH", "/nowhere");
    QString error;
    const QByteArray brf = brailleCard(KeyCard::from({}, "Pellit"), &error);
    const QByteArray unasked = brailleCard(KeyCard::from({}, "Pellit"), nullptr);
    qunsetenv("LOUIS_TABLEPATH");
    lou_free();
    QCOMPARE(brf, QByteArray());
    QCOMPARE(unasked, QByteArray());
    QCOMPARE(error, "The tables of liblouis (en-us-brf.dis,en-ueb-g1.ctb) are missing.");
    QVERIFY(!brfOf({}).isEmpty());
}

QTEST_GUILESS_MAIN(BrailleCardTest)
#include "BrailleCardTest.moc"
