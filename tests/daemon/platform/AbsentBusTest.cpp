// SPDX-License-Identifier: MIT
#include "tests/support/LogRecorder.h"

#include <configurationmanager/ConfigurationManager.h>
#include <ls/DBusService.h>
#include <ls/Identifiers.h>
#include <speech/Speech.h>

#include <QSignalSpy>
#include <QtTest>

class AbsentBusTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void commandIsReported();
    void everyCommandIsReportedOnce();
    void speechIsSilent();
    void checkedModelIsPellit();
    void uncheckedModelIsRead();
};

void AbsentBusTest::initTestCase()
{
    qputenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/run/no-such-socket");
    QVERIFY(QDir().mkpath("/var/lib/configuration-manager"));
    QFile file("/var/lib/configuration-manager/configuration.json");
    QVERIFY(file.open(QIODevice::WriteOnly));
    QVERIFY(file.write(R"({"model": "Orvane"})") != -1);
}

void AbsentBusTest::commandIsReported()
{
    const LogRecorder log;
    ls::DBusService service(ls::ServiceId::StateHandler);
    QVERIFY(log.lines().isEmpty());

    QCOMPARE(service.process({{"commandId", "GetState"}}), QVariantMap());

    QCOMPARE(log.texts(QtCriticalMsg),
             QStringList("ls::DBusService::process ERROR: \"com.vantre.StateHandler\" gave no answer: "
                         "\"org.freedesktop.DBus.Error.Disconnected\" \"Not connected to D-Bus server\""));
    QCOMPARE(log.lines().size(), 1);
}

void AbsentBusTest::everyCommandIsReportedOnce()
{
    ls::DBusService service(ls::ServiceId::StateHandler);
    const LogRecorder log;

    for (int i = 0; i < 3; ++i) {
        QCOMPARE(service.process({}), QVariantMap());
    }

    QCOMPARE(log.lines().size(), 3);
}

void AbsentBusTest::speechIsSilent()
{
    const LogRecorder log;
    libspeech::detail::Speech speech;
    const QSignalSpy connected(&speech, &libspeech::detail::Speech::connected);
    const QSignalSpy disconnected(&speech, &libspeech::detail::Speech::disconnected);

    for (int i = 0; i < 100; ++i) {
        speech.speakFromId({{"serviceId", 0}, {"sentenceId", 21}});
    }
    speech.cancelAll();
    QCoreApplication::processEvents();

    QVERIFY(connected.isEmpty());
    QVERIFY(disconnected.isEmpty());
    QVERIFY(log.lines().isEmpty());
}

void AbsentBusTest::checkedModelIsPellit()
{
    const LogRecorder log;

    QVERIFY(!libconfigurationmanager::detail::ConfigurationManager().isOrvane());
    QVERIFY(log.lines().isEmpty());
}

void AbsentBusTest::uncheckedModelIsRead()
{
    libconfigurationmanager::detail::ConfigurationManager manager;

    manager.setCheckConnection(false);

    QVERIFY(manager.isOrvane());
}

QTEST_GUILESS_MAIN(AbsentBusTest)
#include "AbsentBusTest.moc"
