// SPDX-License-Identifier: MIT
#include "tests/support/LogRecorder.h"

#include <ls/JFile.h>

#include <QTemporaryDir>
#include <QtTest>

#include <sys/stat.h>

class JFileTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void topLevelObjectIsRead_data();
    void topLevelObjectIsRead();
    void otherContentIsRefused_data();
    void otherContentIsRefused();
    void pathsWithoutRegularFileAreRefused_data();
    void pathsWithoutRegularFileAreRefused();
    void fifoIsRefusedWithoutBlocking();
    void linkToItselfIsRefused();
    void linkToARegularFileIsFollowed();
    void contentIsReplacedCompletely();
    void tenMebibytesAreRead();
    void filesUpTo16MebibytesAreRead_data();
    void filesUpTo16MebibytesAreRead();

private:
    QString path(const QString& name) const { return m_folder->filePath(name); }
    QString fileWith(const QByteArray& text) const;
    void verifyRefused(const QString& file);

    QScopedPointer<QTemporaryDir> m_folder;
    ls::JFile m_reader;
};

void JFileTest::init()
{
    m_folder.reset(new QTemporaryDir);
}

void JFileTest::cleanup()
{
    m_folder.reset();
}

QString JFileTest::fileWith(const QByteArray& text) const
{
    QFile file(path("test.json"));
    if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size()) {
        qFatal("no test file");
    }
    return file.fileName();
}

void JFileTest::verifyRefused(const QString& file)
{
    const QVariantMap before{{"left", "alone"}};
    QVariantMap content = before;
    const LogRecorder log;

    QVERIFY(!m_reader.read(file, content));
    QCOMPARE(content, before);
    QVERIFY(log.lines().isEmpty());
}

void JFileTest::topLevelObjectIsRead_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QVariantMap>("expected");

    const QVariantMap inner{{"b", QVariantList{1.5, "x", QVariantMap()}}};
    QTest::newRow("empty object") << QByteArray("{}") << QVariantMap();
    QTest::newRow("string") << QByteArray(R"({"a": "b"})") << QVariantMap{{"a", "b"}};
    QTest::newRow("number") << QByteArray(R"({"a": 42})") << QVariantMap{{"a", 42}};
    QTest::newRow("number above 32 bits")
        << QByteArray(R"({"a": 4294967296})") << QVariantMap{{"a", 4294967296LL}};
    QTest::newRow("boolean") << QByteArray(R"({"a": true})") << QVariantMap{{"a", true}};
    QTest::newRow("nested") << QByteArray(R"({"a": {"b": [1.5, "x", {}]}})") << QVariantMap{{"a", inner}};
    QTest::newRow("duplicate keys") << QByteArray(R"({"a": 1, "b": 5, "a": 2, "a": 3})")
                                    << QVariantMap{{"a", 3}, {"b", 5}};
    QTest::newRow("surrounding white space") << QByteArray("\r\n {} \n\t") << QVariantMap();
    QTest::newRow("UTF-8") << QByteArray("{\"ä\": \"€\"}") << QVariantMap{{"ä", "€"}};
}

void JFileTest::topLevelObjectIsRead()
{
    QFETCH(QByteArray, text);
    QVariantMap content;
    const LogRecorder log;

    QVERIFY(m_reader.read(fileWith(text), content));
    QTEST(content, "expected");
    QVERIFY(log.lines().isEmpty());
}

void JFileTest::otherContentIsRefused_data()
{
    QTest::addColumn<QByteArray>("text");

    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("white space") << QByteArray(" \n");
    QTest::newRow("array") << QByteArray("[{}]");
    QTest::newRow("string") << QByteArray("\"{}\"");
    QTest::newRow("null") << QByteArray("null");
    QTest::newRow("truncated object") << QByteArray("{\"a\": [1, 2");
    QTest::newRow("truncated string") << QByteArray("{\"a");
    QTest::newRow("text after the object") << QByteArray("{} x");
    QTest::newRow("two objects") << QByteArray("{}{}");
    QTest::newRow("NUL bytes") << QByteArray(4096, '\0');
    QTest::newRow("NUL byte after the object") << QByteArray("{}\0", 3);
    QTest::newRow("invalid UTF-8") << QByteArray("{\"a\": \"\xff\xfe\"}");
    QTest::newRow("nested too deep") << "{\"a\":" + QByteArray(2000, '[') + QByteArray(2000, ']') + "}";
    QTest::newRow("opened a million times") << QByteArray(1000000, '{');
}

void JFileTest::otherContentIsRefused()
{
    QFETCH(QByteArray, text);

    verifyRefused(fileWith(text));
}

void JFileTest::pathsWithoutRegularFileAreRefused_data()
{
    QTest::addColumn<QString>("file");

    QTest::newRow("no path") << "";
    QTest::newRow("missing file") << "/tmp/missing.json";
    QTest::newRow("missing folder") << "/missing/test.json";
    QTest::newRow("folder") << "/tmp";
    QTest::newRow("/dev/null") << "/dev/null";
    QTest::newRow("/dev/zero") << "/dev/zero";
    QTest::newRow("path too long") << "/tmp/" + QString(5000, 'x');
}

void JFileTest::pathsWithoutRegularFileAreRefused()
{
    QFETCH(QString, file);

    verifyRefused(file);
}

void JFileTest::fifoIsRefusedWithoutBlocking()
{
    QCOMPARE(::mkfifo(QFile::encodeName(path("fifo")).constData(), 0600), 0);
    QVERIFY(QFile::link(path("fifo"), path("link")));

    verifyRefused(path("fifo"));
    verifyRefused(path("link"));
}

void JFileTest::linkToItselfIsRefused()
{
    QVERIFY(QFile::link(path("link"), path("link")));

    verifyRefused(path("link"));
}

void JFileTest::linkToARegularFileIsFollowed()
{
    QVERIFY(QFile::link(fileWith("{\"a\": 1}"), path("link")));
    QVariantMap content;

    QVERIFY(m_reader.read(path("link"), content));
    QCOMPARE(content, QVariantMap({{"a", 1}}));
}

void JFileTest::contentIsReplacedCompletely()
{
    ls::IReader& reader = m_reader;
    QVariantMap content{{"old", 1}};

    QVERIFY(reader.read(fileWith("{\"new\": 2}"), content));
    QCOMPARE(content, QVariantMap({{"new", 2}}));
}

void JFileTest::tenMebibytesAreRead()
{
    const QByteArray row = R"({"keys": ["Menu", "Ok"], "eAction": "Shortcut", "timeout": 3},)";
    const int rows = 10 * 1024 * 1024 / row.size();
    QVariantMap content;

    QVERIFY(m_reader.read(fileWith("{\"LongKeys\": [" + row.repeated(rows) + "1]}"), content));
    QCOMPARE(content.value("LongKeys").toList().size(), rows + 1);
    QCOMPARE(content.value("LongKeys").toList().at(rows - 1).toMap().value("timeout").toInt(), 3);
}

void JFileTest::filesUpTo16MebibytesAreRead_data()
{
    QTest::addColumn<int>("excess");
    QTest::addColumn<bool>("isRead");

    QTest::newRow("one byte less") << -1 << true;
    QTest::newRow("exactly") << 0 << true;
    QTest::newRow("one byte more") << 1 << false;
}

void JFileTest::filesUpTo16MebibytesAreRead()
{
    QFETCH(int, excess);
    QVariantMap content;

    QTEST(m_reader.read(fileWith(QByteArray("{}").leftJustified(16 * 1024 * 1024 + excess)), content),
          "isRead");
}

QTEST_GUILESS_MAIN(JFileTest)
#include "JFileTest.moc"
