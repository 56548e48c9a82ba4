// SPDX-License-Identifier: MIT
#include <translation/Sid.h>

#include <QMetaEnum>
#include <QtTest>

namespace Sid = libtranslation::Sid;

class SidTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void sentenceHasNumberAndName_data();
    void sentenceHasNumberAndName();
    void translationFileHasNoOtherSentences_data();
    void translationFileHasNoOtherSentences();
    void unknownSentenceHasNoName();

private:
    static QMetaEnum translationFile(const QString& name);
};

QMetaEnum SidTest::translationFile(const QString& name)
{
    const QMetaObject& sentences = Sid::staticMetaObject;
    return sentences.enumerator(sentences.indexOfEnumerator(name.toLatin1().constData()));
}

void SidTest::sentenceHasNumberAndName_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<int>("number");

    QTest::newRow("KeyOn") << "EmbosserCore" << 17;
    QTest::newRow("KeyOff") << "EmbosserCore" << 18;
    QTest::newRow("KeyFeed") << "EmbosserCore" << 19;
    QTest::newRow("KeyHelp") << "EmbosserCore" << 20;
    QTest::newRow("KeyMenu") << "EmbosserCore" << 21;
    QTest::newRow("KeyBack") << "EmbosserCore" << 22;
    QTest::newRow("KeyRight") << "EmbosserCore" << 23;
    QTest::newRow("KeyUp") << "EmbosserCore" << 24;
    QTest::newRow("KeyDown") << "EmbosserCore" << 25;
    QTest::newRow("KeyOk") << "EmbosserCore" << 26;
    QTest::newRow("KeyChs") << "EmbosserCore" << 27;
    QTest::newRow("KeyOne") << "EmbosserCore" << 28;
    QTest::newRow("KeyTen") << "EmbosserCore" << 29;
    QTest::newRow("KeyFunctionOrvane") << "EmbosserCore" << 30;
    QTest::newRow("KeyFunction") << "EmbosserCore" << 31;
    QTest::newRow("StartingUp") << "EmbosserError" << 69;
    QTest::newRow("FactoryReset") << "EmbosserMenu" << 487;
}

void SidTest::sentenceHasNumberAndName()
{
    QFETCH(QString, file);
    QFETCH(int, number);

    QCOMPARE(translationFile(file).valueToKey(number), QTest::currentDataTag());
}

void SidTest::translationFileHasNoOtherSentences_data()
{
    QTest::addColumn<int>("sentences");

    QTest::newRow("EmbosserCore") << 15;
    QTest::newRow("EmbosserError") << 1;
    QTest::newRow("EmbosserMenu") << 1;
}

void SidTest::translationFileHasNoOtherSentences()
{
    QTEST(translationFile(QTest::currentDataTag()).keyCount(), "sentences");
}

void SidTest::unknownSentenceHasNoName()
{
    QVERIFY(!translationFile("EmbosserCore").valueToKey(16));
}

QTEST_GUILESS_MAIN(SidTest)
#include "SidTest.moc"
