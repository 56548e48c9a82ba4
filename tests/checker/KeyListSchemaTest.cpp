// SPDX-License-Identifier: MIT
#include "checker/KeyListSchema.h"
#include "tests/checker/JsonSchema.h"

#include <ls/Identifiers.h>

#include <QFile>
#include <QtTest>

using namespace checker;

namespace {

QByteArray contentOf(const QString& name)
{
    QFile file(QStringLiteral(PROJECT_FOLDER "/data/") + name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QByteArray longPress(const char* member, const char* value)
{
    QByteArray text(R"({ "LongKeys": [ { "keys": ["Help"], "eAction": "KeyDescription", )"
                    R"("receiverService": "UserMenu", "timeout": 2, "validOnState": "Idle" } ] })");
    return text.replace(member, value);
}

QByteArray shortcut(const char* member, const char* value)
{
    QByteArray text(R"({ "ShortcutKeys": [ { "keys": ["Feed", "Ok"], "eAction": "LoadPaper", )"
                    R"("receiverService": "PrintManager", "validOnState": "PrintOff" } ] })");
    return text.replace(member, value);
}

} // namespace

/// Checks the schema that editors use for key lists.
class KeyListSchemaTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theInstalledFileIsCurrent();
    void installedListsMatch_data();
    void installedListsMatch();
    void validRowsMatch_data();
    void validRowsMatch();
    void faultsAreRejected_data();
    void faultsAreRejected();
};

void KeyListSchemaTest::theInstalledFileIsCurrent()
{
    QVERIFY2(contentOf("key-list.schema.json") == KeyListSchema::text(),
             "renew it: build/dev/checker/keyboard-handler-keys schema >data/key-list.schema.json");
}

void KeyListSchemaTest::installedListsMatch_data()
{
    QTest::addColumn<QString>("name");
    for (const char* name : {"longKeyList.json", "modifierKeyList.json", "shortcutKeyList.json"}) {
        QTest::newRow(name) << name;
    }
}

void KeyListSchemaTest::installedListsMatch()
{
    QFETCH(QString, name);
    QVERIFY(!contentOf(name).isEmpty());
    QCOMPARE(JsonSchema::faultsOf(contentOf(name), KeyListSchema::text()), QString());
}

void KeyListSchemaTest::validRowsMatch_data()
{
    QTest::addColumn<QByteArray>("list");
    QTest::newRow("no rows") << QByteArray(R"({ "LongKeys": [] })");
    QTest::newRow("joined states") << longPress("\"Idle\"", "\" Idle|  Error | Print\"");
    QTest::newRow("longest time") << longPress("2,", "2147483,");
    QTest::newRow("one key on both devices") << shortcut(", \"Ok\"", "");
    for (const QString& key : ls::KeyId::meta.keys()) {
        if (key != ls::KeyId::Unknown) {
            QTest::newRow(qPrintable(key)) << shortcut("Feed", qPrintable(key));
        }
    }
}

void KeyListSchemaTest::validRowsMatch()
{
    QFETCH(QByteArray, list);
    QCOMPARE(JsonSchema::faultsOf(list, KeyListSchema::text()), QString());
}

void KeyListSchemaTest::faultsAreRejected_data()
{
    QTest::addColumn<QByteArray>("list");
    QTest::newRow("section") << longPress("LongKeys", "longKeys");
    QTest::newRow("two sections") << QByteArray(R"({ "LongKeys": [], "ShortcutKeys": [] })");
    QTest::newRow("list in a list") << QByteArray("[]");
    QTest::newRow("element") << QByteArray(R"({ "LongKeys": [ "Help" ] })");
    QTest::newRow("misspelt member") << longPress("receiverService", "recieverService");
    QTest::newRow("missing time") << longPress("\"timeout\": 2,", "");
    QTest::newRow("time 0") << longPress("2,", "0,");
    QTest::newRow("time 0.4") << longPress("2,", "0.4,");
    QTest::newRow("time as a text") << longPress("2,", "\"2\",");
    QTest::newRow("time too long") << longPress("2,", "2147484,");
    QTest::newRow("time of a shortcut") << shortcut("\"keys\"", "\"timeout\": 2, \"keys\"");
    QTest::newRow("unknown key") << longPress("\"Help\"", "\"help\"");
    QTest::newRow("keys as a text") << longPress("[\"Help\"]", "\"Help\"");
    QTest::newRow("no keys") << longPress("\"Help\"", "");
    QTest::newRow("two keys of a long press") << longPress("\"Help\"", "\"Help\", \"Ok\"");
    QTest::newRow("three keys of a shortcut") << shortcut("\"Ok\"", "\"Ok\", \"Up\"");
    QTest::newRow("unknown service") << longPress("UserMenu", "UserMenue");
    QTest::newRow("unknown state") << longPress("\"Idle\"", "\"idle\"");
    QTest::newRow("unknown joined state") << longPress("\"Idle\"", "\"Idle | error\"");
    QTest::newRow("blank around a single state") << longPress("\"Idle\"", "\"Idle \"");
    QTest::newRow("empty joined state") << longPress("\"Idle\"", "\"Idle|\"");
    QTest::newRow("joined states of a shortcut") << shortcut("PrintOff", "PrintOff|Idle");
}

void KeyListSchemaTest::faultsAreRejected()
{
    QFETCH(QByteArray, list);
    QVERIFY(!JsonSchema::faultsOf(list, KeyListSchema::text()).isEmpty());
}

QTEST_GUILESS_MAIN(KeyListSchemaTest)
#include "KeyListSchemaTest.moc"
