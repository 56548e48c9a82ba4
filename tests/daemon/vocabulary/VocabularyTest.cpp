// SPDX-License-Identifier: MIT
#include "vocabulary/Vocabulary.h"

#include "tests/support/LogRecorder.h"

#include <ls/Identifiers.h>
#include <ls/MessageKeys.h>

#include <QMetaEnum>
#include <QtTest>

#include <limits>

using libtranslation::Sid::EmbosserCore;

class VocabularyTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void membershipIsExact_data();
    void membershipIsExact();
    void smallestOrdinalMeansNoMember();
    void emptyFamilyHasNoMembers();
    void responseHoldsExactlyResultAndError();
    void successHasTheNoErrorMarker();
    void keyIsNamedByItsSentence_data();
    void keyIsNamedByItsSentence();
    void keyNamesReturnsIndependentCopies();
    void logPrefixIsExtractedFromTheSignature_data();
    void logPrefixIsExtractedFromTheSignature();
    void logLineQuotesIdentifiersButNotThePrefix();
    void failedLineEndsWithTheTag();
    void keyListFileNamesAreExact();
};

void VocabularyTest::membershipIsExact_data()
{
    QTest::addColumn<QString>("identifier");
    QTest::addColumn<bool>("isMember");
    QTest::newRow("first member") << "Back" << true;
    QTest::newRow("last member") << "Up" << true;
    QTest::newRow("other case") << "menu" << false;
    QTest::newRow("upper case") << "MENU" << false;
    QTest::newRow("with a blank") << "Menu " << false;
    QTest::newRow("empty") << "" << false;
    QTest::newRow("of another family") << "Idle" << false;
}

void VocabularyTest::membershipIsExact()
{
    QFETCH(QString, identifier);
    QTEST(vocabulary::isMember(ls::KeyId::meta, identifier), "isMember");
}

void VocabularyTest::smallestOrdinalMeansNoMember()
{
    const QMap<QString, int> meta{{QStringLiteral("Gone"), std::numeric_limits<int>::min()},
                                  {QStringLiteral("Lowest"), std::numeric_limits<int>::min() + 1}};
    QVERIFY(!vocabulary::isMember(meta, QStringLiteral("Gone")));
    QVERIFY(vocabulary::isMember(meta, QStringLiteral("Lowest")));
}

void VocabularyTest::emptyFamilyHasNoMembers()
{
    QVERIFY(!vocabulary::isMember({}, QStringLiteral("Menu")));
    QVERIFY(!vocabulary::isMember({}, QString()));
}

void VocabularyTest::responseHoldsExactlyResultAndError()
{
    const QVariantMap expected{{QStringLiteral("resultId"), QStringLiteral("Failure")},
                               {QStringLiteral("errorId"), QStringLiteral("InvalidValue")}};
    QCOMPARE(vocabulary::response(ls::ResultId::Failure, ls::ErrorId::InvalidValue), expected);
}

void VocabularyTest::successHasTheNoErrorMarker()
{
    const QVariantMap expected{{QStringLiteral("resultId"), QStringLiteral("Success")},
                               {QStringLiteral("errorId"), QStringLiteral("Undefined")}};
    QCOMPARE(vocabulary::response(ls::ResultId::Success), expected);
}

void VocabularyTest::keyIsNamedByItsSentence_data()
{
    QTest::addColumn<QString>("key");
    for (const QString& key : ls::KeyId::meta.keys()) {
        QTest::newRow(qPrintable(key)) << key;
    }
}

void VocabularyTest::keyIsNamedByItsSentence()
{
    QFETCH(QString, key);
    const QMetaEnum sentences = QMetaEnum::fromType<EmbosserCore>();
    const int number = int(vocabulary::keyNames().value(key));
    const bool isNameless = key == ls::KeyId::FactoryReset || key == ls::KeyId::Unknown;
    QCOMPARE(QString(sentences.valueToKey(number)), isNameless ? QString() : "Key" + key);
}

void VocabularyTest::keyNamesReturnsIndependentCopies()
{
    vocabulary::KeyNames mine = vocabulary::keyNames();
    mine.insert(ls::KeyId::Function, EmbosserCore::KeyFunctionOrvane);
    QCOMPARE(vocabulary::keyNames().value(ls::KeyId::Function), EmbosserCore::KeyFunction);
}

void VocabularyTest::logPrefixIsExtractedFromTheSignature_data()
{
    QTest::addColumn<QString>("shortName");
    QTest::addColumn<QString>("signature");
    QTest::addColumn<QString>("prefix");
    QTest::newRow("member function") << "simulateKey"
                                     << "QVariantMap KeyboardHandler::simulateKey(const ls::Command&)"
                                     << "KeyboardHandler::simulateKey FAILED!";
    QTest::newRow("virtual function") << "process"
                                      << "virtual QVariantMap KeyboardHandler::process(const QVariantMap&)"
                                      << "KeyboardHandler::process FAILED!";
    QTest::newRow("constructor") << "Console"
                                 << "Console::Console(KeyboardHandler*)"
                                 << "Console::Console FAILED!";
    QTest::newRow("const function") << "getState"
                                    << "const EnumKey StateHandler::getState() const"
                                    << "StateHandler::getState FAILED!";
    QTest::newRow("lambda of the long-press recogniser")
        << "operator()"
        << "LongKey::LongKey(ls::IReader&, QObject*)::<lambda()>"
        << "QObject*)::<lambda()> FAILED!";
    QTest::newRow("lambda of the console")
        << "operator()"
        << "Console::Console(KeyboardHandler*)::<lambda(const QVariantMap&)>"
        << "QVariantMap&)> FAILED!";
    QTest::newRow("bare name") << "f"
                               << ""
                               << " FAILED!";
}

void VocabularyTest::logPrefixIsExtractedFromTheSignature()
{
    QFETCH(QString, shortName);
    QFETCH(QString, signature);
    QTEST(vocabulary::logPrefix(shortName, signature, QStringLiteral("FAILED!")), "prefix");
}

void VocabularyTest::logLineQuotesIdentifiersButNotThePrefix()
{
    const LogRecorder log;
    LOG_ERROR() << ls::KeyId::Menu << "is gone";
    LOG_WARNING() << "once";
    const QString prefix = "VocabularyTest::logLineQuotesIdentifiersButNotThePrefix ";
    const QVector<LogLine> expected{{QtCriticalMsg, "default", prefix + "ERROR: \"Menu\" is gone"},
                                    {QtCriticalMsg, "default", prefix + "WARN: once"}};
    QCOMPARE(log.lines(), expected);
}

void VocabularyTest::failedLineEndsWithTheTag()
{
    const LogRecorder log;
    LOG_FAILED();
    const QVector<LogLine> expected{
        {QtCriticalMsg, "default", "VocabularyTest::failedLineEndsWithTheTag FAILED!"}};
    QCOMPARE(log.lines(), expected);
}

void VocabularyTest::keyListFileNamesAreExact()
{
    QCOMPARE(vocabulary::dataDirectory, QStringLiteral("/var/lib/keyboard-handler"));
    QCOMPARE(vocabulary::keyListFile, QStringLiteral("keyList.json"));
    QCOMPARE(vocabulary::modifierKeyListFile, QStringLiteral("modifierKeyList.json"));
    QCOMPARE(vocabulary::longKeyListFile, QStringLiteral("longKeyList.json"));
    QCOMPARE(vocabulary::shortcutKeyListFile, QStringLiteral("shortcutKeyList.json"));
}

QTEST_GUILESS_MAIN(VocabularyTest)
#include "VocabularyTest.moc"
