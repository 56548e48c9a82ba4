// SPDX-License-Identifier: MIT
#include "tests/support/BusPeer.h"
#include "tests/support/PrivateBus.h"
#include "tests/support/Waiting.h"

#include <configurationmanager/ConfigurationManager.h>

#include <QtTest>

using libconfigurationmanager::detail::ConfigurationManager;

namespace {

const QString service = QStringLiteral("com.vantre.ConfigurationManager");

void writeModel(const QByteArray& model)
{
    QDir().mkpath("/var/lib/configuration-manager");
    QFile file("/var/lib/configuration-manager/configuration.json");
    if (!file.open(QIODevice::WriteOnly) || file.write("{\"model\": \"" + model + "\"}") == -1) {
        qFatal("no configuration file");
    }
}

} // namespace

class ConfigurationServiceTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { writeModel("Orvane"); }
    void cleanup() { m_bus.report(); }
    void connectionIsCheckedByDefault();
    void modelIsReadWhileTheServiceIsRunning();
    void onlyTheFileIsReadWithoutCheck();
    void serviceIsNotCalled();

private:
    PrivateBus m_bus;
};

void ConfigurationServiceTest::connectionIsCheckedByDefault()
{
    const ConfigurationManager manager;
    QVERIFY(!manager.isOrvane());
    {
        const BusPeer peer(m_bus, service);
        QVERIFY(manager.isOrvane());
    }
    WAIT_FOR(!manager.isOrvane());
}

void ConfigurationServiceTest::modelIsReadWhileTheServiceIsRunning()
{
    const BusPeer peer(m_bus, service);
    const ConfigurationManager manager;

    QVERIFY(manager.isOrvane());
    writeModel("Pellit");
    QVERIFY(!manager.isOrvane());
}

void ConfigurationServiceTest::onlyTheFileIsReadWithoutCheck()
{
    ConfigurationManager manager;

    manager.setCheckConnection(false);
    QVERIFY(manager.isOrvane());
    manager.setCheckConnection(true);
    QVERIFY(!manager.isOrvane());
}

void ConfigurationServiceTest::serviceIsNotCalled()
{
    const BusPeer peer(m_bus, service, &BusPeer::hang);

    QVERIFY(ConfigurationManager().isOrvane());
    peer.synchronise();
    QVERIFY(peer.calls().isEmpty());
}

QTEST_GUILESS_MAIN(ConfigurationServiceTest)
#include "ConfigurationServiceTest.moc"
