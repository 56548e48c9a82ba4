// SPDX-License-Identifier: MIT
#include "tests/support/ProcessFigures.h"
#include "tests/whole/system/SystemTest.h"

#include <QFile>

namespace {

const QString longFile = QStringLiteral("longKeyList.json");
const QString modifierFile = QStringLiteral("modifierKeyList.json");
const QString shortcutFile = QStringLiteral("shortcutKeyList.json");

const QStringList unreadable{
    "LongKey::load ERROR: reading \"/var/lib/keyboard-handler/longKeyList.json\" failed.",
    "LongKey::load ERROR: value list LongKeys not found!.",
};
const QStringList withoutSection{unreadable.last()};
const QStringList noList{"LongKey::load ERROR: value list LongKeys conversion to list failed!"};

const QStringList overLimit =
    QStringList("LongKey::load ERROR: \"/var/lib/keyboard-handler/longKeyList.json\" is over the limit of "
                "1048576 bytes: 1048577") +
    unreadable;

#ifdef __SANITIZE_ADDRESS__
/// The sanitizer adds memory around each value and delays the reuse of freed memory.
constexpr int sanitizerFactor = 8;
#else
constexpr int sanitizerFactor = 1;
#endif

constexpr int mebibyte = 1024 * 1024;

QByteArray manyRows(int bytes)
{
    const QByteArray row =
        R"({"keys": ["Help"], "eAction": "Long", "receiverService": "UserMenu", "timeout": 2,)"
        R"( "validOnState": "Idle"})";
    QByteArray rows = row;
    while (rows.size() < bytes) {
        rows += "," + row;
    }
    return "{\"LongKeys\": [" + rows + "]}";
}

/// A list of 1 MiB, filled with these elements.
QByteArray fullOf(const QByteArray& element)
{
    constexpr int roomForTheSection = 32;
    return (element + ',').repeated((mebibyte - element.size() - roomForTheSection) / (element.size() + 1)) +
           element;
}

/// The memory limit of the unit.
int memoryMaxKib()
{
    QFile unit(QStringLiteral(KEYBOARD_HANDLER_UNIT));
    const QString text = unit.open(QIODevice::ReadOnly) ? QString::fromUtf8(unit.readAll()) : QString();
    const QRegularExpression line(QStringLiteral("^MemoryMax=(\\d+)M$"), QRegularExpression::MultilineOption);
    return line.match(text).captured(1).toInt() * 1024;
}

} // namespace

class SystemKeyListFilesTest : public SystemTest
{
    Q_OBJECT

private Q_SLOTS:
    void withoutFilesEachListIsReported();
    void theDaemonWorksWithAFaultyFile_data();
    void theDaemonWorksWithAFaultyFile();
    void anyTopLevelContentIsReturnedToTheClient_data();
    void anyTopLevelContentIsReturnedToTheClient();
    void theLargestListsFitIntoTheUnit_data();
    void theLargestListsFitIntoTheUnit();

private:
    QStringList loadFaults() { return completeLog().filter(QStringLiteral("::load ")); }
};

void SystemKeyListFilesTest::withoutFilesEachListIsReported()
{
    options.keyListFolder.clear();
    QVERIFY(launch());
    QVERIFY(nextKeyWorks());
    const QString text = QStringLiteral("%1::load ERROR: reading \"/var/lib/keyboard-handler/%2\" failed.");
    const QString absent = QStringLiteral("%1::load ERROR: value list %2 not found!.");
    QCOMPARE(loadFaults(),
             QStringList({text.arg("ModifierKey", modifierFile), absent.arg("ModifierKey", "ModifierKeys"),
                          text.arg("ShortcutKey", shortcutFile), absent.arg("ShortcutKey", "ShortcutKeys"),
                          text.arg("LongKey", longFile), absent.arg("LongKey", "LongKeys")}));
    QCOMPARE(command("GetLongKeysTimeout").value(ls::resultIdKey).toString(), QStringLiteral("Success"));
    QCOMPARE(command("GetModifierKeyList").value(ls::modifierKeyListKey).toMap(),
             QVariantMap({{ls::keyTimeouts, 1500}}));
}

void SystemKeyListFilesTest::theDaemonWorksWithAFaultyFile_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QStringList>("faults");
    QTest::newRow("truncated") << manyRows(1000).left(700) << unreadable;
    QTest::newRow("an empty object") << QByteArray("{}") << withoutSection;
    QTest::newRow("a number as list") << QByteArray(R"({"LongKeys": 7})") << noList;
    QTest::newRow("1 MiB") << manyRows(1'000'000).leftJustified(mebibyte) << QStringList();
    QTest::newRow("over 1 MiB") << manyRows(1'000'000).leftJustified(mebibyte + 1) << overLimit;
}

void SystemKeyListFilesTest::theDaemonWorksWithAFaultyFile()
{
    QFETCH(QByteArray, content);
    options.keyLists.insert(longFile, content);
    QVERIFY(launch());
    QVERIFY(nextKeyWorks());
    QTEST(loadFaults(), "faults");
    QCOMPARE(command("GetLongKeysTimeout").value(ls::resultIdKey).toString(), QStringLiteral("Success"));
}

void SystemKeyListFilesTest::anyTopLevelContentIsReturnedToTheClient_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QVariantMap>("list");
    QTest::newRow("extra fields") << QByteArray(R"({"ModifierKeys": [], "version": 3, "on": true})")
                                  << QVariantMap{{"ModifierKeys", QVariantList()},
                                                 {"version", 3.0},
                                                 {"on", true},
                                                 {ls::keyTimeouts, 1500}};
    QTest::newRow("null") << QByteArray(R"({"ModifierKeys": [null], "none": null})")
                          << QVariantMap{{"ModifierKeys", QVariantList{QString()}},
                                         {"none", QString()},
                                         {ls::keyTimeouts, 1500}};
}

void SystemKeyListFilesTest::anyTopLevelContentIsReturnedToTheClient()
{
    QFETCH(QByteArray, content);
    options.keyLists.insert(modifierFile, content);
    QVERIFY(launch());
    const QVariantMap answer = command(ls::KeyboardHandlerCmdId::GetModifierKeyList);
    QTEST(answer.value(ls::modifierKeyListKey).toMap(), "list");
    QVERIFY(nextKeyWorks());
}

void SystemKeyListFilesTest::theLargestListsFitIntoTheUnit_data()
{
    QTest::addColumn<QByteArray>("elements");
    QTest::addColumn<int>("count");
    const auto add = [](const char* name, const QByteArray& elements, int count) {
        QVERIFY2(elements.size() > mebibyte * 9 / 10, name);
        QTest::newRow(name) << elements << count;
    };
    const QByteArray nestedMaps = QByteArray("{\"a\":").repeated(1000) + "1" + QByteArray("}").repeated(1000);
    const QByteArray nestedLists = QByteArray("[").repeated(1000) + QByteArray("]").repeated(1000);
    const QByteArray plain =
        R"({"keys": ["Help", "Ok"], "eAction": "Both", "receiverService": "UserMenu", "validOnState": "Print"})";
    const auto addFull = [&](const char* name, const QByteArray& element) {
        const QByteArray elements = fullOf(element);
        add(name, elements, (elements.size() + 1) / (element.size() + 1));
    };
    addFull("ordinary rows", plain);
    addFull("empty rows", "{}");
    addFull("rows of one key", R"({"keys":["Up"]})");
    addFull("rows of a short member", R"({"a":1})");
    addFull("numbers", "1");
    addFull("empty lists", "[]");
    addFull("nested maps", nestedMaps);
    addFull("nested lists", nestedLists);
    add("one row of 200,000 keys", R"({"keys":[)" + fullOf(R"("Up")") + "]}", 1);
    add("a validOnState of 1 MiB",
        R"({"keys":["Up"],"timeout":1,"validOnState":")" + QByteArray("a|").repeated(mebibyte / 2 - 64) +
            "\"}",
        1);
}

/// Starts the daemon with three such lists and requests them.
void SystemKeyListFilesTest::theLargestListsFitIntoTheUnit()
{
    QFETCH(QByteArray, elements);
    QFETCH(int, count);
    const QMap<QString, QByteArray> sections{
        {longFile, "LongKeys"}, {modifierFile, "ModifierKeys"}, {shortcutFile, "ShortcutKeys"}};
    for (auto section = sections.cbegin(); section != sections.cend(); ++section) {
        options.keyLists.insert(section.key(), "{\"" + section.value() + "\":[" + elements + "]}");
        QVERIFY(options.keyLists.value(section.key()).size() <= mebibyte);
    }
    QVERIFY(launch());
    for (int i = 0; i < 2; ++i) {
        QVERIFY(command("GetLongKeysTimeout").contains(ls::keyTimeouts));
        QCOMPARE(
            command("GetModifierKeyList")[ls::modifierKeyListKey].toMap()["ModifierKeys"].toList().size(),
            count);
        QCOMPARE(
            command("GetShortcutKeyList")[ls::shortcutKeyListKey].toMap()["ShortcutKeys"].toList().size(),
            count);
    }
    QVERIFY(nextKeyWorks());
    QCOMPARE(loadFaults(), QStringList());
    const int peak = ProcessFigures::peakKib(device().daemon().processId());
    qInfo("the daemon has used up to %d of %d KiB", peak, memoryMaxKib());
    QVERIFY(peak > 0 && peak < memoryMaxKib() * sanitizerFactor);
}

QTEST_GUILESS_MAIN(SystemKeyListFilesTest)
#include "SystemKeyListFilesTest.moc"
