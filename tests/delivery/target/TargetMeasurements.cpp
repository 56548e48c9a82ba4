// SPDX-License-Identifier: MIT
#include "tests/delivery/target/Command.h"
#include "tests/delivery/target/TargetTest.h"
#include "tests/support/ProcessFigures.h"
#include "tests/support/Waiting.h"

#include <algorithm>
#include <functional>

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr int keyCount = 100;
constexpr int startCount = 5;
constexpr int actionTimeoutMs = 2000;
constexpr int idleMs = 60'000;
const QString actionFifo = QStringLiteral("/run/target-test/action");
const QString other = QStringLiteral("other-key-daemon.service");
// Replaces the daemon with a test program, under all settings and restrictions of the unit.
const QString programInUnit =
    QStringLiteral("folder=/run/systemd/system/keyboard-handler.service.d; mkdir -p $folder && "
                   "printf '[Service]\\nExecStart=\\nExecStart=%1\\n' >$folder/program.conf && "
                   "systemctl daemon-reload");

/// The figures of a program, measured with `keyCount` keys. Times in ms, memory in KiB; -1 if not measured.
struct Figures
{
    /// From start to readiness.
    double start = -1;
    /// From a key to the program's reaction, sorted; -1 without a reaction.
    QVector<double> times;
    /// Per key.
    double processorTime = -1;
    int pss = -1;
    int anonymous = -1;
};

double ms(qint64 microseconds)
{
    return double(microseconds) / 1000;
}

QString inMs(double value)
{
    return QString::number(value, 'f', 2) + QStringLiteral(" ms");
}

QString inKib(int value)
{
    return QStringLiteral("%1 KiB").arg(value);
}

double median(const QVector<double>& sorted)
{
    return sorted.at(sorted.size() / 2);
}

bool isComplete(const Figures& figures)
{
    return figures.times.first() > 0 && figures.processorTime > 0 && figures.pss > 0 && figures.anonymous > 0;
}

qint64 timestamp(const QString& name)
{
    return Unit::property(Unit::daemon, name + QStringLiteral("TimestampMonotonic")).toLongLong();
}

/// From the start of the program in the daemon's unit to its readiness, in ms.
double startTime()
{
    return ms(timestamp(QStringLiteral("ActiveEnter")) - timestamp(QStringLiteral("ExecMainStart")));
}

/// The median of several starts; -1 if one fails.
double medianStartTime()
{
    QVector<double> times;
    while (times.size() < startCount) {
        times << (Unit::restart(Unit::daemon) ? startTime() : -1);
    }
    std::sort(times.begin(), times.end());
    return times.first() > 0 ? median(times) : -1;
}

/// Measures `keyCount` calls of `timeOfKey`, which presses a key and returns its time in ms.
Figures measure(const QString& unit, const std::function<double()>& timeOfKey)
{
    Figures figures;
    const qint64 before = Unit::processorTimeUs(unit);
    for (int i = 0; i < keyCount; ++i) {
        figures.times << timeOfKey();
        QTest::qWait(100);
    }
    std::sort(figures.times.begin(), figures.times.end());
    figures.processorTime = ms(Unit::processorTimeUs(unit) - before) / keyCount;
    const int process = Unit::mainProcess(unit);
    figures.pss = ProcessFigures::memoryKib(process, QStringLiteral("Pss"));
    figures.anonymous = ProcessFigures::memoryKib(process, QStringLiteral("Pss_Anon"));
    return figures;
}

} // namespace

/// Measures the daemon, the references of the benchmarks and other key daemons on the target system, and
/// prints two tables. Each figure of the daemon has a limit; times are those of the guest's clock.
class TargetMeasurements : public TargetTest
{
    Q_OBJECT

private Q_SLOTS:
    void start();
    void keys();
    void idleness();
    void size();
    void references_data();
    void references();
    void otherDaemons_data();
    void otherDaemons();
    void cleanupTestCase();

private:
    void row(const QString& what, const QString& value);
    void programRow(const QString& program, const Figures& figures);
    /// The figures of the program in the daemon's unit.
    Figures measureUnit();
    /// The time from the release of a key, in ms; -1 if nothing is announced.
    double timeToAnnouncement();
    /// The time from a press, or from its release, in ms; -1 without an action.
    double timeToAction(const QString& key, bool released);

    QStringList m_table;
    QStringList m_programs;
};

void TargetMeasurements::row(const QString& what, const QString& value)
{
    m_table << QStringLiteral("| %1 | %2 |").arg(what, value);
}

void TargetMeasurements::programRow(const QString& program, const Figures& figures)
{
    const QStringList cells{program,
                            figures.start > 0 ? inMs(figures.start) : QString(),
                            inMs(median(figures.times)),
                            inMs(figures.processorTime),
                            inKib(figures.pss),
                            inKib(figures.anonymous)};
    m_programs << QStringLiteral("| %1 |").arg(cells.join(QStringLiteral(" | ")));
}

void TargetMeasurements::start()
{
    WAIT_FOR(Unit::isActive(Unit::daemon));
    const double own = startTime();
    row(QStringLiteral("start of the kernel to ready"), inMs(ms(timestamp(QStringLiteral("ActiveEnter")))));
    row(QStringLiteral("start of the daemon to ready"), inMs(own));
    row(QStringLiteral("processor time of the start"), inMs(ms(Unit::processorTimeUs(Unit::daemon))));
    QVERIFY(own > 0 && own < 2000);
}

double TargetMeasurements::timeToAnnouncement()
{
    QSignalSpy announcements(&device(), &TargetDevice::announced);
    device().press(0, ls::KeyId::Up);
    QTest::qWait(50);
    QElapsedTimer clock;
    clock.start();
    device().release(0, ls::KeyId::Up);
    return announcements.wait() ? double(clock.nsecsElapsed()) / 1e6 : -1;
}

Figures TargetMeasurements::measureUnit()
{
    const double start = medianStartTime();
    Figures figures = measure(Unit::daemon, [this] { return timeToAnnouncement(); });
    figures.start = start;
    return figures;
}

void TargetMeasurements::keys()
{
    QVERIFY(restartDaemon({}, ls::StateId::Print));
    const Figures figures = measureUnit();
    row(QStringLiteral("key to announcement, longest of %1").arg(keyCount), inMs(figures.times.last()));
    programRow(QStringLiteral("this daemon"), figures);
    QVERIFY(isComplete(figures));
    QVERIFY(figures.start > 0 && figures.start < 2000);
    QVERIFY(figures.times.last() < 50);
    QVERIFY(figures.processorTime < 10);
    QVERIFY(figures.pss < 16 * 1024);
    QVERIFY(figures.anonymous < 4 * 1024);
}

void TargetMeasurements::idleness()
{
    const int process = Unit::mainProcess(Unit::daemon);
    QTest::qWait(5000);
    const int before = ProcessFigures::voluntarySwitches(process);
    QTest::qWait(idleMs);
    const int wakeUps = ProcessFigures::voluntarySwitches(process) - before;
    row(QStringLiteral("wake-ups in an idle minute"), QString::number(wakeUps));
    QCOMPARE(wakeUps, 0);
}

void TargetMeasurements::size()
{
    const QString program =
        Command::shell(QStringLiteral("stat -c %s /usr/sbin/keyboard-handler")).output.trimmed();
    const QString package =
        Command::shell(QStringLiteral("dpkg-query -W -f '${Installed-Size}' keyboard-handler")).output;
    row(QStringLiteral("program"), inKib(program.toInt() / 1024));
    row(QStringLiteral("installed package"), package + QStringLiteral(" KiB"));
    QVERIFY(program.toInt() > 0 && program.toInt() < 1024 * 1024);
}

void TargetMeasurements::references_data()
{
    QTest::addColumn<QString>("program");
    QTest::newRow("relaying Qt") << "relaying-qt";
    QTest::newRow("minimal Qt") << "minimal-qt";
    QTest::newRow("minimal C") << "minimal-sd-bus";
}

void TargetMeasurements::references()
{
    QFETCH(QString, program);
    program.prepend(QStringLiteral("/usr/lib/keyboard-handler-tests/"));
    QCOMPARE(Command::shell(programInUnit.arg(program)).status, 0);
    const Figures figures = measureUnit();
    QCOMPARE(QFile::symLinkTarget(QStringLiteral("/proc/%1/exe").arg(Unit::mainProcess(Unit::daemon))),
             program);
    QVERIFY(isComplete(figures) && figures.start > 0);
    programRow(QLatin1String(QTest::currentDataTag()), figures);
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
    const bool done = poll(&poller, 1, actionTimeoutMs) == 1;
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
    // The daemon would react to the same keys.
    QVERIFY(Unit::stop(Unit::daemon));
    mkfifo(QFile::encodeName(actionFifo).constData(), S_IRUSR | S_IWUSR);
    QCOMPARE(Command::shell(configuration).status, 0);
    QCOMPARE(Command::shell(QStringLiteral("systemd-run --quiet --unit=%1 %2").arg(other, program)).status,
             0);
    QTest::qWait(1000);
    const Figures figures = measure(other, [&] { return timeToAction(key, released); });
    QVERIFY(isComplete(figures));
    programRow(QLatin1String(QTest::currentDataTag()), figures);
    QVERIFY(Unit::stop(other));
}

void TargetMeasurements::cleanupTestCase()
{
    qInfo().noquote() << '\n' + m_table.join('\n') + "\n\n" + m_programs.join('\n');
}

QTEST_GUILESS_MAIN(TargetMeasurements)
#include "TargetMeasurements.moc"
