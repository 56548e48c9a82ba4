// SPDX-License-Identifier: MIT
#include "device/Embosser.h"

#include <vantre/Singleton.h>

#include <QDir>
#include <QFile>
#include <QtTest>

class EmbosserTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void modelIsReadFromTheConfiguration_data();
    void modelIsReadFromTheConfiguration();
    void missingConfigurationMeansPellit();
};

void EmbosserTest::modelIsReadFromTheConfiguration_data()
{
    QTest::addColumn<QByteArray>("configuration");
    QTest::addColumn<bool>("isOrvane");
    QTest::newRow("Orvane") << QByteArray(R"({"model": "Orvane"})") << true;
    QTest::newRow("Pellit") << QByteArray(R"({"model": "Pellit"})") << false;
    QTest::newRow("another") << QByteArray(R"({"model": "orvane"})") << false;
    QTest::newRow("invalid") << QByteArray("Orvane") << false;
}

void EmbosserTest::modelIsReadFromTheConfiguration()
{
    QFETCH(QByteArray, configuration);
    QDir().mkpath("/var/lib/configuration-manager");
    QFile file("/var/lib/configuration-manager/configuration.json");
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(configuration);
    file.close();
    // This test has no bus, so the connection is not checked and only the file is read.
    QTEST(libvantre::Singleton<detail::Embosser>::instance()->isOrvane(), "isOrvane");
}

void EmbosserTest::missingConfigurationMeansPellit()
{
    QFile::remove("/var/lib/configuration-manager/configuration.json");
    QVERIFY(!libvantre::Singleton<detail::Embosser>::instance()->isOrvane());
}

QTEST_GUILESS_MAIN(EmbosserTest)
#include "EmbosserTest.moc"
