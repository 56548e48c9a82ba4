// SPDX-License-Identifier: MIT
#include "tests/target/Command.h"
#include "tests/target/ProcessCost.h"
#include "tests/target/TargetTest.h"

#include <algorithm>

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr int keyCount = 100;
constexpr int actionPatienceMs = 2000;
constexpr int idleMs = 60'000;
const QString actionFifo = QStringLiteral("/run/target-test/action");
const QString other = QStringLiteral("other-key-daemon.service");

double ms(qint64 microseconds)
{
    return double(microseconds) / 1000;
}

QString inMs(double value)
{
    return QString::number(value, 'f', 1) + QStringLiteral(" ms");
}

} // namespace

/// Measures the daemon on the target system, beside other daemons that act on keys, and prints a table. Each
/// figure has a limit that it must keep; the times are those of the guest's clock.
class TargetMeasurements : public TargetTest
{
    Q_OBJECT

private Q_SLOTS:
    void start();
    void presses();
    void memory();
    void idleness();
    void size();
    void otherDaemons_data();
    void otherDaemons();
    void cleanupTestCase();

private:
    void row(const QString& what, const QString& value);
    /// From a press or from the release after it, in ms; -1 when nothing is done.
    double timeToAction(const QString& key, bool released);

    QStringList m_table;
};

void TargetMeasurements::row(const QString& what, const QString& value)
{
    m_table << QStringLiteral("| %1 | %2 |").arg(what, value);
}

void TargetMeasurements::start()
{
    const auto at = [](const char* name) {
        return Unit::property(Unit::daemon, QLatin1String(name)).toLongLong();
    };
    QTRY_VERIFY_WITH_TIMEOUT(Unit::isActive(Unit::daemon), 30'000);
    const qint64 ready = at("ActiveEnterTimestampMonotonic");
    const qint64 own = ready - at("ExecMainStartTimestampMonotonic");
    row(QStringLiteral("start of the kernel to ready"), inMs(ms(ready)));
    row(QStringLiteral("start of the daemon to ready"), inMs(ms(own)));
    row(QStringLiteral("processor time of the start"), inMs(ms(ProcessCost::cpuTimeUs(Unit::daemon))));
    QVERIFY(own > 0 && own < 2'000'000);
}

void TargetMeasurements::presses()
{
    QVERIFY(restartDaemon({}, ls::StateId::Print));
    QVector<double> times;
    const qint64 before = ProcessCost::cpuTimeUs(Unit::daemon);
    for (int i = 0; i < keyCount; ++i) {
        QSignalSpy announcements(&device(), &TargetDevice::announced);
        device().press(0, ls::KeyId::Up);
        QTest::qWait(50);
        QElapsedTimer clock;
        clock.start();
        device().release(0, ls::KeyId::Up);
        QVERIFY(announcements.wait());
        times << double(clock.nsecsElapsed()) / 1e6;
    }
    const double cost = ms(ProcessCost::cpuTimeUs(Unit::daemon) - before) / keyCount;
    std::sort(times.begin(), times.end());
    row(QStringLiteral("key to announcement, median of %1").arg(keyCount), inMs(times.at(keyCount / 2)));
    row(QStringLiteral("key to announcement, longest"), inMs(times.last()));
    row(QStringLiteral("processor time of a key"), inMs(cost));
    QVERIFY(times.last() < 50);
    QVERIFY(cost < 10);
}

void TargetMeasurements::memory()
{
    const int process = Unit::mainProcess(Unit::daemon);
    const int pss = ProcessCost::memoryKib(process, QStringLiteral("Pss"));
    const int anonymous = ProcessCost::memoryKib(process, QStringLiteral("Pss_Anon"));
    row(QStringLiteral("memory (PSS)"), QStringLiteral("%1 KiB").arg(pss));
    row(QStringLiteral("of it anonymous"), QStringLiteral("%1 KiB").arg(anonymous));
    QVERIFY(pss > 0 && pss < 16 * 1024);
    QVERIFY(anonymous > 0 && anonymous < 4 * 1024);
}

void TargetMeasurements::idleness()
{
    const int process = Unit::mainProcess(Unit::daemon);
    QTest::qWait(5000);
    const int before = ProcessCost::voluntarySwitches(process);
    QTest::qWait(idleMs);
    const int wakeUps = ProcessCost::voluntarySwitches(process) - before;
    row(QStringLiteral("wake-ups in an idle minute"), QString::number(wakeUps));
    QCOMPARE(wakeUps, 0);
}

void TargetMeasurements::size()
{
    const QString program =
        Command::shell(QStringLiteral("stat -c %s /usr/sbin/keyboard-handler")).output.trimmed();
    const QString package =
        Command::shell(QStringLiteral("dpkg-query -W -f '${Installed-Size}' keyboard-handler")).output;
    row(QStringLiteral("program"), QStringLiteral("%1 KiB").arg(program.toInt() / 1024));
    row(QStringLiteral("installed package"), package + QStringLiteral(" KiB"));
    QVERIFY(program.toInt() > 0 && program.toInt() < 1024 * 1024);
}

void TargetMeasurements::otherDaemons_data()
{
    QTest::addColumn<QString>("configuration");
    QTest::addColumn<QString>("program");
    QTest::addColumn<QString>("key");
    QTest::addColumn<bool>("released");
    QTest::newRow("triggerhappy")
        << QStringLiteral("printf 'KEY_UP 0 echo >%1\\n' >/run/target-test/keys.conf").arg(actionFifo)
        << "/usr/sbin/thd --triggers /run/target-test/keys.conf /dev/input/event0" << ls::KeyId::Up << true;
    QTest::newRow("acpid") << QStringLiteral(
                                  "mkdir -p /run/target-test/acpi && printf 'event=button/sleep.*\\naction="
                                  "/bin/sh -c \"echo >%1\"\\n' >/run/target-test/acpi/key")
                                  .arg(actionFifo)
                           << "/usr/sbin/acpid -f -c /run/target-test/acpi" << ls::KeyId::Off << false;
}

double TargetMeasurements::timeToAction(const QString& key, bool released)
{
    const int action = open(QFile::encodeName(actionFifo).constData(), O_RDWR | O_NONBLOCK);
    QElapsedTimer clock;
    clock.start();
    device().press(0, key);
    if (released) {
        QTest::qWait(50);
        clock.restart();
        device().release(0, key);
    }
    pollfd poller{action, POLLIN, 0};
    const bool done = poll(&poller, 1, actionPatienceMs) == 1;
    const double time = double(clock.nsecsElapsed()) / 1e6;
    close(action);
    if (!released) {
        device().release(0, key);
    }
    return done ? time : -1;
}

void TargetMeasurements::otherDaemons()
{
    QFETCH(QString, configuration);
    QFETCH(QString, program);
    QFETCH(QString, key);
    QFETCH(bool, released);
    const QString name = QLatin1String(QTest::currentDataTag());
    mkfifo(QFile::encodeName(actionFifo).constData(), S_IRUSR | S_IWUSR);
    QCOMPARE(Command::shell(configuration).status, 0);
    QCOMPARE(Command::shell(QStringLiteral("systemd-run --quiet --unit=%1 %2").arg(other, program)).status,
             0);
    QTest::qWait(1000);
    const int process = Unit::mainProcess(other);
    const qint64 before = ProcessCost::cpuTimeUs(other);
    QVector<double> times;
    for (int i = 0; i < keyCount; ++i) {
        const double time = timeToAction(key, released);
        QTest::qWait(100);
        QVERIFY(time >= 0);
        times << time;
    }
    std::sort(times.begin(), times.end());
    row(name + QStringLiteral(": key to action, median"), inMs(times.at(keyCount / 2)));
    row(name + QStringLiteral(": processor time of a key"),
        inMs(ms(ProcessCost::cpuTimeUs(other) - before) / keyCount));
    row(name + QStringLiteral(": memory (PSS), of it anonymous"),
        QStringLiteral("%1 KiB, %2 KiB")
            .arg(ProcessCost::memoryKib(process, QStringLiteral("Pss")))
            .arg(ProcessCost::memoryKib(process, QStringLiteral("Pss_Anon"))));
    QVERIFY(Unit::stop(other));
}

void TargetMeasurements::cleanupTestCase()
{
    qInfo().noquote() << '\n' + m_table.join('\n');
}

QTEST_GUILESS_MAIN(TargetMeasurements)
#include "TargetMeasurements.moc"
