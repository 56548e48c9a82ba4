// SPDX-License-Identifier: MIT
#include "tests/support/LogRecorder.h"

#include <configurationmanager/ConfigurationManager.h>

#include <QtTest>

#include <sys/stat.h>

namespace {

const QString folder = QStringLiteral("/var/lib/configuration-manager");
const QString configurationFile = folder + QStringLiteral("/configuration.json");

void write(const QString& path, const QByteArray& text)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size()) {
        qFatal("no configuration file");
    }
}

} // namespace

class ConfigurationManagerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void fileContentDeterminesTheModel_data();
    void fileContentDeterminesTheModel();
    void missingFolderIsPellit();
    void missingFileIsPellit();
    void folderIsPellit();
    void fifoIsPellitWithoutBlocking();
    void linkToTheFileIsFollowed();
    void linkToADeviceIsPellit();
    void everyQueryReadsTheFile();

private:
    libconfigurationmanager::detail::ConfigurationManager m_manager;
};

void ConfigurationManagerTest::init()
{
    QVERIFY(QDir().mkpath(folder));
    m_manager.setCheckConnection(false);
}

void ConfigurationManagerTest::cleanup()
{
    QDir(folder).removeRecursively();
}

void ConfigurationManagerTest::fileContentDeterminesTheModel_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<bool>("isOrvane");

    QTest::newRow("Orvane") << QByteArray(R"({"model": "Orvane"})") << true;
    QTest::newRow("Orvane among others") << QByteArray(R"({"a": [1], "model": "Orvane", "z": {}})") << true;
    QTest::newRow("Pellit") << QByteArray(R"({"model": "Pellit"})") << false;
    QTest::newRow("lower case") << QByteArray(R"({"model": "orvane"})") << false;
    QTest::newRow("trailing blank") << QByteArray(R"({"model": "Orvane "})") << false;
    QTest::newRow("other key") << QByteArray(R"({"Model": "Orvane"})") << false;
    QTest::newRow("list") << QByteArray(R"({"model": ["Orvane"]})") << false;
    QTest::newRow("number") << QByteArray(R"({"model": 1})") << false;
    QTest::newRow("nested") << QByteArray(R"({"device": {"model": "Orvane"}})") << false;
    QTest::newRow("top-level array") << QByteArray(R"([{"model": "Orvane"}])") << false;
    QTest::newRow("truncated") << QByteArray(R"({"model": "Orvane")") << false;
    QTest::newRow("empty") << QByteArray() << false;
    QTest::newRow("bytes") << QByteArray("\0\xff\xfe", 3) << false;
    QTest::newRow("1 MiB") << QByteArray(R"({"model": "Orvane"})").leftJustified(1024 * 1024) << true;
    QTest::newRow("over 1 MiB") << QByteArray(R"({"model": "Orvane"})").leftJustified(1024 * 1024 + 1)
                                << false;
}

void ConfigurationManagerTest::fileContentDeterminesTheModel()
{
    QFETCH(QByteArray, text);
    write(configurationFile, text);
    const LogRecorder log;

    QTEST(m_manager.isOrvane(), "isOrvane");
    QVERIFY(log.lines().isEmpty());
}

void ConfigurationManagerTest::missingFolderIsPellit()
{
    QVERIFY(QDir().rmdir(folder));

    QVERIFY(!m_manager.isOrvane());
}

void ConfigurationManagerTest::missingFileIsPellit()
{
    QVERIFY(!m_manager.isOrvane());
}

void ConfigurationManagerTest::folderIsPellit()
{
    QVERIFY(QDir().mkpath(configurationFile));

    QVERIFY(!m_manager.isOrvane());
}

void ConfigurationManagerTest::fifoIsPellitWithoutBlocking()
{
    QCOMPARE(::mkfifo(qPrintable(configurationFile), 0600), 0);

    QVERIFY(!m_manager.isOrvane());
}

void ConfigurationManagerTest::linkToTheFileIsFollowed()
{
    write(folder + "/orvane.json", R"({"model": "Orvane"})");
    QVERIFY(QFile::link(folder + "/orvane.json", configurationFile));

    QVERIFY(m_manager.isOrvane());
}

void ConfigurationManagerTest::linkToADeviceIsPellit()
{
    QVERIFY(QFile::link("/dev/zero", configurationFile));

    QVERIFY(!m_manager.isOrvane());
}

void ConfigurationManagerTest::everyQueryReadsTheFile()
{
    write(configurationFile, R"({"model": "Orvane"})");
    QVERIFY(m_manager.isOrvane());
    write(configurationFile, R"({"model": "Pellit"})");
    QVERIFY(!m_manager.isOrvane());
}

QTEST_GUILESS_MAIN(ConfigurationManagerTest)
#include "ConfigurationManagerTest.moc"
