// SPDX-License-Identifier: MIT
#include "keys/KeyListFile.h"
#include "keys/LongKey.h"
#include "keys/ModifierKey.h"
#include "keys/ShortcutKey.h"
#include "tests/support/LogRecorder.h"
#include "tests/virtual/MapReader.h"

#include <QtTest>

#include <sys/stat.h>

using Section = EnumDetail::RowKeyList;

namespace {

const QString path = QStringLiteral("/var/lib/keyboard-handler/longKeyList.json");

LogLine errorLine(const QString& text)
{
    return {QtCriticalMsg, "default", text};
}

QVector<LogLine> loadError(const QString& text)
{
    return {errorLine("LongKey::load ERROR: " + text)};
}

} // namespace

class KeyListFileTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QVERIFY(QDir().mkpath(QFileInfo(path).path())); }
    void cleanup() { QFile::remove(path); }
    void missingFileLogsTwoLines_data();
    void missingFileLogsTwoLines();
    void missingSectionLogsOneLine();
    void sectionThatIsNotAListLogsTheConversion_data();
    void sectionThatIsNotAListLogsTheConversion();
    void otherElementsThanObjectsAreSkipped();
    void missingFieldsAreEmpty();
    void rowsAreUnchanged();
    void fieldsOfOtherTypesAreConverted();
    void timeoutIsInSecondsAndLimitedTo32Bits_data();
    void timeoutIsInSecondsAndLimitedTo32Bits();
    void timeoutIsIgnoredInOtherSections_data();
    void timeoutIsIgnoredInOtherSections();
    void contentIsTheWholeFile();
    void filesOverTheLimitAreNotRead_data();
    void filesOverTheLimitAreNotRead();
    void fifoIsNotRejectedByTheLimit();

private:
    KeyListFile loaded(const QVariantMap& content, Section section = Section::LongKeys);
    QVariant row(const QVariant& timeout)
    {
        return QVariantMap{{"keys", QStringList{"Up"}}, {"timeout", timeout}};
    }
};

KeyListFile KeyListFileTest::loaded(const QVariantMap& content, Section section)
{
    MapReader reader(content);
    return KeyListFile::load(reader, QStringLiteral("longKeyList.json"), section,
                             "void LongKey::load(ls::IReader&)");
}

void KeyListFileTest::missingFileLogsTwoLines_data()
{
    QTest::addColumn<QString>("className");
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("section");
    QTest::newRow("long press") << "LongKey"
                                << "longKeyList.json"
                                << "LongKeys";
    QTest::newRow("modifier") << "ModifierKey"
                              << "modifierKeyList.json"
                              << "ModifierKeys";
    QTest::newRow("shortcut") << "ShortcutKey"
                              << "shortcutKeyList.json"
                              << "ShortcutKeys";
}

void KeyListFileTest::missingFileLogsTwoLines()
{
    QFETCH(QString, className);
    QFETCH(QString, file);
    QFETCH(QString, section);
    const QString missing = "/var/lib/keyboard-handler/" + file;
    const QString prefix = className + "::load ERROR: ";
    const LogRecorder log;
    MapReader reader;
    const std::unique_ptr<QObject> recogniser(
        className == "LongKey"       ? static_cast<QObject*>(new LongKey(reader, nullptr))
        : className == "ModifierKey" ? static_cast<QObject*>(new ModifierKey(reader, nullptr))
                                     : new ShortcutKey(reader, nullptr));
    QCOMPARE(reader.paths, QStringList{missing});
    QCOMPARE(log.lines(), QVector<LogLine>({errorLine(prefix + "reading \"" + missing + "\" failed."),
                                            errorLine(prefix + "value list " + section + " not found!.")}));
}

void KeyListFileTest::missingSectionLogsOneLine()
{
    const LogRecorder log;
    const KeyListFile file = loaded({{"longkeys", QVariantList{row(1)}}});
    QCOMPARE(log.lines(), loadError("value list LongKeys not found!."));
    QVERIFY(file.rows.isEmpty());
    QVERIFY(file.content.isEmpty());
}

void KeyListFileTest::sectionThatIsNotAListLogsTheConversion_data()
{
    QTest::addColumn<QVariant>("section");
    QTest::newRow("object") << QVariant(QVariantMap{{"keys", "Up"}});
    QTest::newRow("text") << QVariant("Up");
    QTest::newRow("number") << QVariant(3.5);
    QTest::newRow("truth") << QVariant(true);
    QTest::newRow("null") << QVariant::fromValue(nullptr);
}

void KeyListFileTest::sectionThatIsNotAListLogsTheConversion()
{
    QFETCH(QVariant, section);
    const LogRecorder log;
    const KeyListFile file = loaded({{"LongKeys", section}});
    QCOMPARE(log.lines(), loadError("value list LongKeys conversion to list failed!"));
    QVERIFY(file.rows.isEmpty());
    QVERIFY(file.content.isEmpty());
}

void KeyListFileTest::otherElementsThanObjectsAreSkipped()
{
    const QVariantMap first{{"keys", QStringList{"Up"}}};
    const QVariantMap third{{"keys", QStringList{"Down"}}};
    const LogRecorder log;
    const KeyListFile file = loaded({{"LongKeys", QVariantList{first, 7, third, "x", QVariant()}}});
    QCOMPARE(file.rows.size(), 2);
    QCOMPARE(file.rows.at(0).firstKey(), QString("Up"));
    QCOMPARE(file.rows.at(1).firstKey(), QString("Down"));
    QCOMPARE(log.lines(), {});
}

void KeyListFileTest::missingFieldsAreEmpty()
{
    const QList<KeyEntry> rows = loaded({{"LongKeys", QVariantList{QVariantMap{}}}}).rows;
    QCOMPARE(rows.size(), 1);
    const KeyEntry& entry = rows.first();
    QVERIFY(!entry.isValid());
    QCOMPARE(entry.eAction(), QString());
    QCOMPARE(entry.receiverService(), QString());
    QCOMPARE(entry.validOnState(), QString());
    QCOMPARE(entry.timeout(), 0);
}

void KeyListFileTest::rowsAreUnchanged()
{
    const QVariantMap odd{{"keys", QStringList{"NoSuchKey"}},
                          {"eAction", "A"},
                          {"receiverService", "Nobody"},
                          {"validOnState", " Idle | Print "}};
    const QList<KeyEntry> rows = loaded({{"LongKeys", QVariantList{odd, odd}}}).rows;
    QCOMPARE(rows.size(), 2);
    QCOMPARE(rows.at(1).firstKey(), QString("NoSuchKey"));
    QCOMPARE(rows.at(1).eAction(), QString("A"));
    QCOMPARE(rows.at(1).receiverService(), QString("Nobody"));
    QCOMPARE(rows.at(1).validOnState(), QString(" Idle | Print "));
}

void KeyListFileTest::fieldsOfOtherTypesAreConverted()
{
    const QVariantMap odd{
        {"keys", "Menu"}, {"eAction", 7}, {"receiverService", true}, {"validOnState", QVariantList{"Idle"}}};
    const LogRecorder log;
    const KeyEntry row = loaded({{"LongKeys", QVariantList{odd}}}).rows.value(0);
    QCOMPARE(row.keys(), QStringList("Menu"));
    QCOMPARE(row.eAction(), QString("7"));
    QCOMPARE(row.receiverService(), QString("true"));
    QCOMPARE(row.validOnState(), QString());
    const QVariantMap oddKeys{{"keys", QVariantList{1, QVariant(), QVariantMap{}}}};
    QCOMPARE(loaded({{"LongKeys", QVariantList{oddKeys}}}).rows.value(0).keys(), (QStringList{"1", "", ""}));
    QCOMPARE(log.lines(), {});
}

void KeyListFileTest::timeoutIsInSecondsAndLimitedTo32Bits_data()
{
    QTest::addColumn<QVariant>("timeout");
    QTest::addColumn<int>("milliseconds");
    QTest::newRow("three seconds") << QVariant(3) << 3000;
    QTest::newRow("missing") << QVariant() << 0;
    QTest::newRow("null") << QVariant::fromValue(nullptr) << 0;
    QTest::newRow("as text") << QVariant("4") << 4000;
    QTest::newRow("not a number") << QVariant("soon") << 0;
    QTest::newRow("list") << QVariant(QVariantList{3}) << 0;
    QTest::newRow("fraction is rounded") << QVariant(1.6) << 2000;
    QTest::newRow("negative") << QVariant(-5) << -5000;
    QTest::newRow("largest") << QVariant(2147483LL) << 2147483000;
    QTest::newRow("one more") << QVariant(2147484LL) << 2147483000;
    QTest::newRow("beyond 32 bits") << QVariant(5000000000LL) << 2147483000;
    QTest::newRow("beyond 64 bits") << QVariant(1e300) << 2147483000;
    QTest::newRow("far below") << QVariant(-1e300) << -2147483000;
}

void KeyListFileTest::timeoutIsInSecondsAndLimitedTo32Bits()
{
    QFETCH(QVariant, timeout);
    const KeyListFile file = loaded({{"LongKeys", QVariantList{row(timeout)}}});
    QTEST(file.rows.value(0).timeout(), "milliseconds");
}

void KeyListFileTest::timeoutIsIgnoredInOtherSections_data()
{
    QTest::addColumn<Section>("section");
    QTest::newRow("ModifierKeys") << Section::ModifierKeys;
    QTest::newRow("ShortcutKeys") << Section::ShortcutKeys;
}

void KeyListFileTest::timeoutIsIgnoredInOtherSections()
{
    QFETCH(Section, section);
    const QVariantMap content{{QTest::currentDataTag(), QVariantList{row(3)}}};
    const KeyListFile file = loaded(content, section);
    QCOMPARE(file.rows.value(0).timeout(), 0);
    QCOMPARE(file.content, content);
}

void KeyListFileTest::contentIsTheWholeFile()
{
    const QVariantMap content{{"LongKeys", QVariantList{row(3)}}, {"comment", "kept"}, {"version", 2}};
    QCOMPARE(loaded(content).content, content);
}

void KeyListFileTest::filesOverTheLimitAreNotRead_data()
{
    QTest::addColumn<qint64>("size");
    QTest::addColumn<bool>("isLink");
    QTest::addColumn<bool>("isRead");
    constexpr qint64 mebibyte = 1024 * 1024;
    QTest::newRow("1 MiB") << mebibyte << false << true;
    QTest::newRow("one byte more") << mebibyte + 1 << false << false;
    QTest::newRow("more than 32 bits can say") << 5000 * mebibyte << false << false;
    QTest::newRow("link to 1 MiB") << mebibyte << true << true;
    QTest::newRow("link to one byte more") << mebibyte + 1 << true << false;
}

void KeyListFileTest::filesOverTheLimitAreNotRead()
{
    QFETCH(qint64, size);
    QFETCH(bool, isLink);
    QFETCH(bool, isRead);
    const QTemporaryDir folder;
    QFile file(isLink ? folder.filePath("list.json") : path);
    QVERIFY(file.open(QIODevice::WriteOnly) && file.resize(size));
    QVERIFY(!isLink || QFile::link(file.fileName(), path));
    const QString prefix = QStringLiteral("LongKey::load ERROR: ");
    const QStringList refused{
        prefix + "\"" + path + "\" is over the limit of 1048576 bytes: " + QString::number(size),
        prefix + "reading \"" + path + "\" failed.", prefix + "value list LongKeys not found!."};
    const LogRecorder log;
    QCOMPARE(loaded({{"LongKeys", QVariantList{row(1)}}}).rows.size(), isRead ? 1 : 0);
    QCOMPARE(log.texts(QtCriticalMsg), isRead ? QStringList() : refused);
    QCOMPARE(log.lines().size(), isRead ? 0 : refused.size());
}

void KeyListFileTest::fifoIsNotRejectedByTheLimit()
{
    QCOMPARE(::mkfifo(qPrintable(path), S_IRUSR | S_IWUSR), 0);
    QCOMPARE(loaded({{"LongKeys", QVariantList{row(1)}}}).rows.size(), 1);
}

QTEST_GUILESS_MAIN(KeyListFileTest)
#include "KeyListFileTest.moc"
