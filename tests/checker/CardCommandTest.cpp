// SPDX-License-Identifier: MIT
#include "card/CardJson.h"
#include "tests/checker/CommandRun.h"

#include <QJsonDocument>
#include <QTemporaryDir>
#include <QXmlStreamReader>
#include <QtTest>

namespace {

/// The card of one list of shortcuts.
CommandRun cardOf(const QByteArray& rows, const QStringList& options = {})
{
    const QTemporaryDir folder;
    QFile file(folder.filePath("shortcutKeyList.json"));
    if (!file.open(QIODevice::WriteOnly)) {
        qFatal("The list cannot be written.");
    }
    file.write("{\"ShortcutKeys\": [" + rows + "]}");
    file.close();
    return {checker::Commands::card, QStringList{"card"} + options + QStringList{folder.path()}};
}

const QByteArray volume = R"({"keys": ["Function", "Up"], "eAction": "<Louder> & more",
    "receiverService": "UserMenu", "validOnState": "Error"})";
const QByteArray dead = R"({"keys": ["Up", "Bell"], "eAction": "Ri\u001b[2Jng", "receiverService": "UserMenu",
    "validOnState": "Error"})";

} // namespace

/// Checks the key card that the program prints.
class CardCommandTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void textSaysWhatKeysDo();
    void keysAreInTheOrderOfPressing();
    void jsonIsThatOfThePage();
    void htmlIsAnAccessibleDocument();
    void rowsThatNeverWorkAreListed();
    void modelDecides();
    void unusableArgumentsAreNamed_data();
    void unusableArgumentsAreNamed();
    void unprovedRowsHaveAStatus();
};

void CardCommandTest::textSaysWhatKeysDo()
{
    const CommandRun run = cardOf(volume, {"--state", "Error"});
    QCOMPARE(run.status, int(checker::Clean));
    const QStringList lines = run.lines();
    QCOMPARE(lines.first(), QString("Key card for the model Pellit"));
    QVERIFY(lines.contains("Error") && !lines.contains("Idle"));
    const int at = lines.indexOf("  Hold Function and press Up.");
    QVERIFY2(at > 0, qPrintable(run.out));
    QCOMPARE(lines.value(at + 1),
             QString("      <Louder> & more to UserMenu. Each release is also announced as a single key."));
    QVERIFY(cardOf(volume).lines().contains("Idle"));
}

void CardCommandTest::keysAreInTheOrderOfPressing()
{
    const QByteArray swapped = QByteArray(volume).replace(R"("Function", "Up")", R"("Up", "Function")");
    QVERIFY(cardOf(swapped).lines().contains("  Hold Up and press Function."));
}

void CardCommandTest::jsonIsThatOfThePage()
{
    const CommandRun run(checker::Commands::card, {"card", "--format", "json", KEY_LISTS});
    QMap<QString, QByteArray> lists;
    for (const QString& name : QDir(KEY_LISTS).entryList({"*KeyList.json"})) {
        QFile file(KEY_LISTS "/" + name);
        QVERIFY(file.open(QIODevice::ReadOnly));
        lists.insert(name, file.readAll());
    }
    QCOMPARE(lists.size(), 3);
    QCOMPARE(QJsonDocument::fromJson(run.out.toUtf8()).object(), toJson(KeyCard::from(lists, "Pellit")));
}

/// As XML, so that each element is closed.
void CardCommandTest::htmlIsAnAccessibleDocument()
{
    const CommandRun run = cardOf(volume + ',' + dead, {"--format", "html"});
    QMap<QString, int> counts;
    QXmlStreamReader reader(run.out);
    QString heading;
    while (!reader.atEnd()) {
        if (reader.readNext() == QXmlStreamReader::StartElement) {
            ++counts[reader.name().toString()];
            heading += reader.name() == QLatin1String("html") ? reader.attributes().value("lang").toString()
                                                              : QString();
            QVERIFY(reader.name() != QLatin1String("th") || reader.attributes().hasAttribute("scope"));
        } else if (reader.isCharacters()) {
            heading += reader.text().contains("<Louder> & more") ? reader.text().toString() : QString();
        }
    }
    QVERIFY2(!reader.hasError(), qPrintable(reader.errorString()));
    QCOMPARE(heading, QString("en<Louder> & more"));
    QCOMPARE(counts["title"], 1);
    QCOMPARE(counts["h1"], 1);
    QCOMPARE(counts["h2"], 7); // six states and the rows that never work
    QCOMPARE(counts["caption"], counts["table"]);
    QVERIFY(counts["table"] > 1 && counts["script"] == 0);
}

void CardCommandTest::rowsThatNeverWorkAreListed()
{
    for (const char* format : {"text", "html", "json"}) {
        const QString out = cardOf(dead, {"--format", format}).out;
        QVERIFY2(out.contains("The panel has no key"), format);
        QVERIFY2(!out.contains(QChar(0x1b)), format);
    }
}

void CardCommandTest::modelDecides()
{
    QCOMPARE(cardOf(volume, {"--model", "Orvane"}).lines().first(), QString("Key card for the model Orvane"));
}

void CardCommandTest::unusableArgumentsAreNamed_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QString>("fault");
    QTest::newRow("braille") << QStringList{"--format", "brf"} << "keyboard-handler-simulator --data FOLDER";
    QTest::newRow("format") << QStringList{"--format", "pdf"} << "must be text, html or json";
    QTest::newRow("state") << QStringList{"--state", "Idel"} << "Idel";
    QTest::newRow("model") << QStringList{"--model", "Palit"} << "Palit";
    QTest::newRow("option") << QStringList{"--colour"} << "colour";
}

void CardCommandTest::unusableArgumentsAreNamed()
{
    QFETCH(QStringList, options);
    QFETCH(QString, fault);
    const CommandRun run = cardOf(volume, options);
    QCOMPARE(run.status, int(checker::Unusable));
    QVERIFY2(run.out.isEmpty() && run.err.contains(fault), qPrintable(run.err));
}

void CardCommandTest::unprovedRowsHaveAStatus()
{
    const QTemporaryDir folder;
    QFile file(folder.filePath("modifierKeyList.json"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(R"({"ModifierKeys": [{"keys": ["Up")" + QByteArray(R"(, "Ok")").repeated(100000) +
               R"(], "eAction": "A", "receiverService": "UserMenu", "validOnState": "Idle"}]})");
    file.close();
    const CommandRun run(checker::Commands::card, {"card", folder.path()});
    QCOMPARE(run.status, int(checker::NotProved));
    QVERIFY(run.out.contains("is not proved, because the search reached its limit."));
}

QTEST_GUILESS_MAIN(CardCommandTest)
#include "CardCommandTest.moc"
