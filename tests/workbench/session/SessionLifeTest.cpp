// SPDX-License-Identifier: MIT
#include "tests/support/Waiting.h"
#include "tests/workbench/session/SessionTest.h"
#include "workbench/web/SessionJson.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <signal.h>
#include <unistd.h>

using Status = Session::Status;

namespace {

const QString longFile = QStringLiteral("longKeyList.json");
const QByteArray oneLongRow =
    R"({"LongKeys": [{"keys": ["Up"], "eAction": "Rise", "receiverService": "WwwApi", "timeout": 1, "validOnState": "Idle"}]})";

/// Restricts PATH to a private folder.
class SearchPath
{
public:
    SearchPath() { qputenv("PATH", m_folder.path().toLocal8Bit()); }
    ~SearchPath() { qputenv("PATH", m_before); }
    SearchPath(const SearchPath&) = delete;
    SearchPath& operator=(const SearchPath&) = delete;

    void add(const QString& name, const QByteArray& script)
    {
        QFile file(m_folder.filePath(name));
        file.open(QIODevice::WriteOnly);
        file.write("#!/bin/sh\n" + script + '\n');
        file.close();
        file.setPermissions(QFile::ReadOwner | QFile::ExeOwner);
    }
    void link(const QString& name, const QString& target) { QFile::link(target, m_folder.filePath(name)); }

private:
    QTemporaryDir m_folder;
    QByteArray m_before = qgetenv("PATH");
};

bool mentions(const QString& file, const QByteArray& text)
{
    QFile source(file);
    return source.open(QIODevice::ReadOnly) && source.readAll().contains(text);
}

/// The process id of this process's bus; 0 if there is none.
pid_t busProcess()
{
    const QByteArray parent = "\nPPid:\t" + QByteArray::number(getpid()) + '\n';
    const QStringList processes =
        QDir(QStringLiteral("/proc")).entryList({QStringLiteral("[0-9]*")}, QDir::Dirs);
    for (const QString& process : processes) {
        const QString path = QStringLiteral("/proc/%1/").arg(process);
        if (mentions(path + "status", parent) && mentions(path + "cmdline", "dbus-daemon")) {
            return process.toInt();
        }
    }
    return 0;
}

} // namespace

/// Starts, restarts, changes and crashes of a session's device.
class SessionLifeTest : public SessionTest
{
    Q_OBJECT

private Q_SLOTS:
    void aDeviceStarts();
    void statementsNeedAReadyDevice();
    void aRestartKeepsModelStateAndLists();
    void aRestartAppliesChanges();
    void installedListsCanBeRestored();
    void missingListsAreOmitted();
    void unknownNamesAreRefused_data();
    void unknownNamesAreRefused();
    void aRestartClearsHeldKeysAndPendingSteps();
    void restartsDuringAStartAreMerged();
    void aReceiverOfEntriesMayRestart_data();
    void aReceiverOfEntriesMayRestart();
    void aCrashEndsTheDevice();
    void aRestartAfterACrashRestoresTheDevice();
    void theEndOfTheBusEndsTheDevice();
    void aDaemonThatEndsDuringTheStartIsReported();
    void aDaemonThatDoesNotBecomeReadyIsStopped();
    void aFailingHelperIsReported_data();
    void aFailingHelperIsReported();
    void nothingIsLeftBehind();
};

void SessionLifeTest::aDeviceStarts()
{
    options.model = QStringLiteral("Orvane");
    options.state = ls::StateId::Print;
    QVERIFY(launch());
    QCOMPARE(members("device", "status"), QStringList({"starting", "ready"}));
    const QJsonObject description = SessionJson::description(session());
    QCOMPARE(description.value("status").toString(), QStringLiteral("ready"));
    QCOMPARE(description.value("model").toString(), QStringLiteral("Orvane"));
    QCOMPARE(description.value("state").toString(), QStringLiteral("Print"));
    QCOMPARE(description.value("models").toArray(), QJsonArray({"Orvane", "Pellit"}));
    QCOMPARE(description.value("states").toArray(),
             QJsonArray({"Startup", "Idle", "Print", "PrintOff", "Update", "Error"}));
    QCOMPARE(description.value("keys").toArray().size(), 15);
    QCOMPARE(description.value("commands").toArray().size(), 9);
    QVERIFY(!description.value("commands").toArray().contains("GetKeyList"));
    QCOMPARE(description.value("times").toObject(),
             QJsonObject({{"singleKeyMs", 1500}, {"factoryResetMs", 5000}, {"repeatDelayMs", 250}}));
    QVERIFY(description.value("recording").toBool());
    QVERIFY(!description.value("replaying").toBool());
}

void SessionLifeTest::statementsNeedAReadyDevice()
{
    QCOMPARE(execute("press Up"), QStringLiteral("The device has not been started."));
    session().start();
    QCOMPARE(execute("press Up"), QStringLiteral("The device is starting."));
    QVERIFY(awaitStatus(Status::Ready));
    QCOMPARE(execute("press Up"), QString());
}

void SessionLifeTest::aRestartKeepsModelStateAndLists()
{
    options.model = QStringLiteral("Orvane");
    options.keyLists.insert(longFile, oneLongRow);
    QVERIFY(launch());
    QCOMPARE(execute("state Update"), QString());
    const auto lists = session().keyLists();
    const qint64 before = session().daemonProcess();
    QCOMPARE(session().restart({}), QString());
    QVERIFY(awaitStatus(Status::Ready));
    QVERIFY(session().daemonProcess() != before);
    QCOMPARE(session().model(), QStringLiteral("Orvane"));
    QCOMPARE(session().state(), QStringLiteral("Update"));
    QCOMPARE(session().keyLists(), lists);
    QCOMPARE(execute("tap Up"), QString());
    QVERIFY(awaitEntry("announcement", "receiver", "UpdateManager"));
}

void SessionLifeTest::aRestartAppliesChanges()
{
    QVERIFY(launch());
    Session::Changes changes;
    changes.model = QStringLiteral("Orvane");
    changes.state = ls::StateId::Error;
    changes.keyLists.insert(longFile, oneLongRow);
    QCOMPARE(session().restart(changes), QString());
    QVERIFY(awaitStatus(Status::Ready));
    QCOMPARE(session().model(), QStringLiteral("Orvane"));
    QCOMPARE(session().keyLists().value(longFile), oneLongRow);
    QCOMPARE(session().keyLists().size(), 3);
    QCOMPARE(execute("state Idle; command GetLongKeysTimeout; wait 100; hold Up 1400"), QString());
    QVERIFY(
        awaitEntry("answer", "text", "answer errorId=Undefined keyTimeouts={\"Up\":1000} resultId=Success"));
    QVERIFY(awaitEntry("announcement", "action", "Rise"));
}

void SessionLifeTest::installedListsCanBeRestored()
{
    options.keyLists.insert(longFile, oneLongRow);
    QVERIFY(launch());
    Session::Changes changes;
    changes.keyLists.insert(longFile, "{}");
    QCOMPARE(session().restart(changes), QString());
    QCOMPARE(session().keyLists().value(longFile), QByteArray("{}"));
    changes = {};
    changes.defaultKeyLists = true;
    QCOMPARE(session().restart(changes), QString());
    QCOMPARE(session().keyLists().value(longFile), oneLongRow);
    QVERIFY(awaitStatus(Status::Ready));
}

void SessionLifeTest::missingListsAreOmitted()
{
    options.keyListFolder.clear();
    options.keyLists.insert(longFile, oneLongRow);
    QVERIFY(launch());
    QCOMPARE(session().keyLists().keys(), QStringList(longFile));
    QVERIFY(awaitEntry("log", "text", "ModifierKey::load ERROR: value list ModifierKeys not found!."));
}

void SessionLifeTest::unknownNamesAreRefused_data()
{
    QTest::addColumn<QString>("model");
    QTest::addColumn<QString>("state");
    QTest::addColumn<QString>("list");
    QTest::addColumn<QString>("sentence");
    QTest::newRow("a model") << "Moo"
                             << ""
                             << ""
                             << "Unknown model \"Moo\"; known models: Orvane, Pellit.";
    QTest::newRow("a state") << ""
                             << "Sleep"
                             << ""
                             << "Unknown state \"Sleep\"; known states: Error, Idle, Print, "
                                "PrintOff, Startup, Update.";
    QTest::newRow("a key list") << ""
                                << ""
                                << "../../escape.json"
                                << "Unknown key list \"../../escape.json\".";
}

void SessionLifeTest::unknownNamesAreRefused()
{
    QFETCH(QString, model);
    QFETCH(QString, state);
    QFETCH(QString, list);
    Session::Changes changes{model, {}, false, state};
    if (!list.isEmpty()) {
        changes.keyLists.insert(list, "{}");
    }
    QVERIFY(launch());
    QTEST(session().restart(changes), "sentence");
    QCOMPARE(session().status(), Status::Ready);
    QCOMPARE(session().keyLists().size(), 3);
}

void SessionLifeTest::aRestartClearsHeldKeysAndPendingSteps()
{
    QVERIFY(launch());
    QCOMPARE(execute("press Menu; wait 600; press Down; wait 3600000; press Up", 1), QString());
    QCOMPARE(session().restart({}), QString());
    QVERIFY(awaitStatus(Status::Ready));
    forgetEntries();
    session().releaseKeysOf(1);
    QVERIFY(tapMenuAfter(800));
    QVERIFY(awaitEntry("announcement", "observation", "announce SingleKey UserMenu - Menu"));
    QCOMPARE(keys(), QStringList({"0 Menu 1", "0 Menu 0"}));
}

void SessionLifeTest::restartsDuringAStartAreMerged()
{
    session().start();
    for (const char* state : {"Print", "Update", "Error"}) {
        Session::Changes changes;
        changes.state = QString::fromLatin1(state);
        QCOMPARE(session().restart(changes), QString());
    }
    // Restarts again as soon as the device exists, before its daemon is ready.
    QTimer watch;
    Status status = Status::Ended;
    connect(&watch, &QTimer::timeout, this, [&] {
        if (session().daemonProcess() != 0) {
            watch.stop();
            status = session().status();
            session().restart({});
        }
    });
    watch.start(0);
    WAIT_FOR(!watch.isActive());
    QCOMPARE(status, Status::Starting);
    QVERIFY(awaitStatus(Status::Ready));
    QCOMPARE(members("device", "status").filter("ready").size(), 1);
    QCOMPARE(session().state(), QStringLiteral("Error"));
    QCOMPARE(execute("tap Up"), QString());
    QVERIFY(awaitEntry("announcement", "receiver", "ErrorHandler"));
}

void SessionLifeTest::aReceiverOfEntriesMayRestart_data()
{
    QTest::addColumn<QString>("type");
    for (const char* type : {"key", "state", "answer", "announcement", "speech", "log", "command"}) {
        QTest::newRow(type) << QString::fromLatin1(type);
    }
}

void SessionLifeTest::aReceiverOfEntriesMayRestart()
{
    QFETCH(QString, type);
    QVERIFY(launch());
    bool restarted = false;
    connect(&session(), &Session::added, this, [&](const SessionEntry& entry) {
        if (!restarted && SessionJson::entry(entry).value("type").toString() == type) {
            restarted = true;
            session().restart({});
        }
    });
    QCOMPARE(
        execute("tap Up; wait 300; state Print; wait 100; tap Up; command GetLastKey; console C; tap Up Up"),
        QString());
    WAIT_FOR(restarted);
    QVERIFY(awaitStatus(Status::Ready));
    QCOMPARE(members("device", "status"), QStringList({"starting", "ready", "starting", "ready"}));
}

void SessionLifeTest::aCrashEndsTheDevice()
{
    QVERIFY(launch());
    QCOMPARE(execute("press Up; wait 3600000; press Down"), QString());
    QVERIFY(crash());
    QCOMPARE(session().reason(), QStringLiteral("The daemon was ended by the signal SIGKILL (killed)."));
    QCOMPARE(entries("device").last().value("status").toString(), QStringLiteral("ended"));
    QCOMPARE(entries("device").last().value("reason").toString(), session().reason());
    QCOMPARE(execute("press Up"), session().reason());
    QCOMPARE(session().status(), Status::Ended);
    QVERIFY(!session().isRecording());
    forgetEntries();
    session().releaseKeysOf(1);
    QVERIFY(entries().isEmpty());
    QCOMPARE(session().restart({}), QString());
    QVERIFY(awaitStatus(Status::Ready) && tapMenuAfter(400));
    QCOMPARE(keys(), QStringList({"0 Menu 1", "0 Menu 0"}));
}

void SessionLifeTest::aRestartAfterACrashRestoresTheDevice()
{
    QVERIFY(launch());
    const qint64 lastId = qint64(entries().last().value("id").toDouble());
    QVERIFY(crash());
    QCOMPARE(session().restart({}), QString());
    QVERIFY(awaitStatus(Status::Ready));
    QCOMPARE(session().reason(), QString());
    QCOMPARE(execute("tap Menu"), QString());
    QVERIFY(awaitEntry("announcement", "action", "SingleKey"));
    for (int i = 1; i < entries().size(); ++i) {
        QVERIFY(entries().at(i).value("id").toDouble() > entries().at(i - 1).value("id").toDouble());
    }
    QVERIFY(entries().last().value("id").toDouble() > double(lastId));
}

void SessionLifeTest::theEndOfTheBusEndsTheDevice()
{
    QVERIFY(launch());
    const pid_t bus = busProcess();
    QVERIFY(bus != 0);
    QCOMPARE(kill(bus, SIGKILL), 0);
    QVERIFY(awaitEntry("device", "status", "ended"));
    QCOMPARE(session().reason(), QStringLiteral("The bus has ended."));
    WAIT_FOR_EQUAL(session().daemonProcess(), 0);
    QCOMPARE(session().restart({}), QString());
    QVERIFY(awaitStatus(Status::Ready));
    QCOMPARE(execute("tap Menu"), QString());
    QVERIFY(awaitEntry("announcement", "action", "SingleKey"));
    QCOMPARE(members("device", "status"), QStringList({"starting", "ready", "ended", "starting", "ready"}));
}

void SessionLifeTest::aDaemonThatEndsDuringTheStartIsReported()
{
    options.daemon = QStringLiteral("/bin/false");
    session().start();
    QVERIFY(awaitStatus(Status::Ended) && awaitEntry("device", "status", "ended"));
    QCOMPARE(session().reason(), QStringLiteral("The daemon has ended with status 1."));
}

void SessionLifeTest::aDaemonThatDoesNotBecomeReadyIsStopped()
{
    options.daemon = QStringLiteral("/bin/sleep");
    options.daemonArguments = QStringList("3600");
    session().start();
    QVERIFY(awaitEntry("device", "status", "ended"));
    QCOMPARE(session().reason(), QStringLiteral("The daemon did not become ready."));
    WAIT_FOR_EQUAL(session().daemonProcess(), 0);
}

void SessionLifeTest::aFailingHelperIsReported_data()
{
    QTest::addColumn<QString>("helper");
    QTest::addColumn<QString>("other");
    QTest::addColumn<QString>("begin");
    QTest::addColumn<QByteArray>("script");
    const QByteArray hangsMutely = R"(exec /bin/bash -c 'while [ "$1" != --info-fd ]; do shift; done
eval "exec $2>&-"; exec /bin/sleep 3600' bash "$@")";
    QTest::newRow("the sandbox") << "bwrap"
                                 << "dbus-daemon"
                                 << "bwrap did not start the daemon: " << QByteArray("exit 1");
    QTest::newRow("a sandbox that hangs") << "bwrap"
                                          << "dbus-daemon"
                                          << "bwrap did not start the daemon: " << hangsMutely;
    QTest::newRow("the bus") << "dbus-daemon"
                             << "bwrap"
                             << "dbus-daemon did not start: " << QByteArray("exit 1");
}

void SessionLifeTest::aFailingHelperIsReported()
{
    QFETCH(QString, helper);
    QFETCH(QString, other);
    QFETCH(QString, begin);
    QFETCH(QByteArray, script);
    {
        SearchPath path;
        path.add(helper, script);
        path.link(other, "/usr/bin/" + other);
        session().start();
        QVERIFY(awaitEntry("device", "status", "ended"));
    }
    QVERIFY2(session().reason().startsWith(begin), qPrintable(session().reason()));
    QCOMPARE(session().restart({}), QString());
    QVERIFY(awaitStatus(Status::Ready));
}

void SessionLifeTest::nothingIsLeftBehind()
{
    const QTemporaryDir folder;
    qputenv("TMPDIR", folder.path().toLocal8Bit());
    qint64 first = 0;
    qint64 second = 0;
    {
        Session own{DeviceOptions()};
        own.start();
        WAIT_FOR_EQUAL(own.status(), Status::Ready);
        first = own.daemonProcess();
        own.restart({});
        WAIT_FOR_EQUAL(own.status(), Status::Ready);
        second = own.daemonProcess();
        QCOMPARE(QDir(folder.path()).entryList(QDir::Dirs | QDir::NoDotAndDotDot).size(), 1);
        own.restart({});
    }
    qunsetenv("TMPDIR");
    QVERIFY(first != second && kill(pid_t(first), 0) == -1 && kill(pid_t(second), 0) == -1);
    QVERIFY(QDir(folder.path()).isEmpty());
}

QTEST_GUILESS_MAIN(SessionLifeTest)
#include "SessionLifeTest.moc"
