// SPDX-License-Identifier: MIT
#include <translation/Sid.h>

#include <QMetaEnum>
#include <QtTest>

namespace Sid = libtranslation::Sid;

using Numbers = QMap<QString, int>;

class SidTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void translationFileHasExactlyTheseSentences_data();
    void translationFileHasExactlyTheseSentences();
    void unknownSentenceHasNoName();

private:
    static QMetaEnum translationFile(const QString& name);
};

QMetaEnum SidTest::translationFile(const QString& name)
{
    const QMetaObject& sentences = Sid::staticMetaObject;
    return sentences.enumerator(sentences.indexOfEnumerator(name.toLatin1().constData()));
}

void SidTest::translationFileHasExactlyTheseSentences_data()
{
    QTest::addColumn<Numbers>("sentences");

    QTest::newRow("EmbosserCore") << Numbers{
        {"KeyOn", 17},   {"KeyOff", 18},   {"KeyFeed", 19}, {"KeyHelp", 20},           {"KeyMenu", 21},
        {"KeyBack", 22}, {"KeyRight", 23}, {"KeyUp", 24},   {"KeyDown", 25},           {"KeyOk", 26},
        {"KeyChs", 27},  {"KeyOne", 28},   {"KeyTen", 29},  {"KeyFunctionOrvane", 30}, {"KeyFunction", 31}};
    QTest::newRow("EmbosserError") << Numbers{{"StartingUp", 69}};
    QTest::newRow("EmbosserMenu") << Numbers{{"FactoryReset", 487}};
}

void SidTest::translationFileHasExactlyTheseSentences()
{
    const QMetaEnum file = translationFile(QTest::currentDataTag());
    Numbers numbers;
    for (int i = 0; i < file.keyCount(); ++i) {
        numbers.insert(file.key(i), file.value(i));
    }
    QTEST(numbers, "sentences");
}

void SidTest::unknownSentenceHasNoName()
{
    QVERIFY(!translationFile("EmbosserCore").valueToKey(16));
}

QTEST_GUILESS_MAIN(SidTest)
#include "SidTest.moc"
