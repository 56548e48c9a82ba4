// SPDX-License-Identifier: MIT
#include "tests/support/LogRecorder.h"
#include "tests/support/ProcessFigures.h"

#include <servicewatcher/ServiceWatcher.h>

#include <QTemporaryDir>
#include <QtTest>

#include <atomic>
#include <future>
#include <thread>

#include <fcntl.h>
#include <sys/inotify.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/sysmacros.h>
#include <sys/un.h>
#include <unistd.h>

using Step = void (*)();
using Make = void (*)(const char* path);
Q_DECLARE_METATYPE(Step)
Q_DECLARE_METATYPE(Make)

namespace {

/// Called before a watch on `path` is added.
Make g_beforeWatch = nullptr;
std::atomic<int> g_watches = 0;

} // namespace

// Replaces the C library's function, so that tests can make changes during a query.
int inotify_add_watch(int fd, const char* path, uint32_t mask) noexcept
{
    ++g_watches;
    if (g_beforeWatch) {
        g_beforeWatch(path);
    }
    return int(::syscall(SYS_inotify_add_watch, fd, path, mask));
}

namespace {

const QString folder = QStringLiteral("/run/service-watcher");

QString readinessFile(const QString& name)
{
    return folder + '/' + name;
}

QVector<LogLine> criticalLine(const QString& fault)
{
    return {{QtCriticalMsg, "default", "ServiceWatcher::setReady ERROR: " + fault}};
}

/// The socket of a service manager.
class NotifySocket
{
public:
    NotifySocket()
    {
        sockaddr_un address = {};
        address.sun_family = AF_UNIX;
        qstrncpy(address.sun_path, qPrintable(m_folder.filePath("notify")), sizeof address.sun_path);
        if (::bind(m_socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
            qFatal("no notify socket");
        }
        qputenv("NOTIFY_SOCKET", address.sun_path);
    }
    ~NotifySocket()
    {
        qunsetenv("NOTIFY_SOCKET");
        ::close(m_socket);
    }

    /// The next message; empty if there is none.
    QByteArray receive() const
    {
        char message[256];
        const ssize_t size = ::recv(m_socket, message, sizeof message, MSG_DONTWAIT);
        return QByteArray(message, int(qMax<ssize_t>(size, 0)));
    }

private:
    QTemporaryDir m_folder;
    const int m_socket = ::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
};

/// The result of one query on a separate thread.
struct Answer
{
    bool ready = false;
    qint64 milliseconds = 0;
    long wakeUps = 0;
};

Answer ask(const QString& name)
{
    Answer answer;
    std::thread([&] {
        QElapsedTimer clock;
        clock.start();
        answer.ready = ServiceWatcher::isReady(name);
        answer.milliseconds = clock.elapsed();
        rusage usage = {};
        ::getrusage(RUSAGE_THREAD, &usage);
        answer.wakeUps = usage.ru_nvcsw;
    }).join();
    return answer;
}

// These functions need no descriptor; they use the readiness file of the speech daemon.
void makeFolder()
{
    ::mkdir(qPrintable(folder), S_IRWXU);
}

void makeFile()
{
    ::mknod(qPrintable(readinessFile("speechd")), S_IFREG | S_IRUSR, 0);
}

void makeFileByRenaming()
{
    ::mknod("/run/draft", S_IFREG | S_IRUSR, 0);
    ::rename("/run/draft", qPrintable(readinessFile("speechd")));
}

void removeFolder()
{
    ::unlink(qPrintable(readinessFile("speechd")));
    ::rmdir(qPrintable(folder));
    ::rmdir("/run/old-folder");
}

constexpr int maxHoldMs = 1000;
constexpr int maxWakeUpsPerSecond = 4;

/// Queries a service that `change` makes ready. True if an attempt ended because of the change, not before it
/// and not with the timeout: on a busy machine, the change may be too early or too late, but not always.
bool isNoticedDuringQuery(Step before, Step change)
{
    constexpr int maxAttempts = 10;
    for (int i = 0; i < maxAttempts; ++i) {
        removeFolder();
        before();
        g_watches = 0;
        auto service = std::async(std::launch::async, [&] {
            QThread::msleep(30);
            change();
        });
        const Answer answer = ask("speechd");
        service.wait();
        if (answer.ready && g_watches > 0 && answer.milliseconds < maxHoldMs / 2) {
            return true;
        }
    }
    return false;
}

/// Leaves no free descriptors during its lifetime.
class NoDescriptors
{
public:
    NoDescriptors()
    {
        ::getrlimit(RLIMIT_NOFILE, &m_limit);
        const int free = ::dup(STDERR_FILENO);
        ::close(free);
        const rlimit lower{rlim_t(free), m_limit.rlim_max};
        ::setrlimit(RLIMIT_NOFILE, &lower);
    }
    ~NoDescriptors() { ::setrlimit(RLIMIT_NOFILE, &m_limit); }

private:
    rlimit m_limit = {};
};

/// The mode, inode and size of the entry at a path, without following links.
QVector<quint64> entryAt(const QString& path)
{
    struct stat status = {};
    if (::lstat(qPrintable(path), &status) != 0) {
        return {};
    }
    return {status.st_mode, status.st_ino, quint64(status.st_size)};
}

} // namespace

class ServiceWatcherTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup();
    void serviceIsReadyFromDeclarationToRevocation();
    void readinessIsAFileOfThatName();
    void declarationsMayBeRepeated();
    void revocationOfAnUnknownServiceIsSilent();
    void changeDuringAQueryIsNoticed_data();
    void changeDuringAQueryIsNoticed();
    void changeJustBeforeTheWatchIsNoticed_data();
    void changeJustBeforeTheWatchIsNoticed();
    void negativeAnswerCausesFewWakeUps_data();
    void negativeAnswerCausesFewWakeUps();
    void otherFilesCauseFewWakeUps();
    void queryWorksWithoutFreeDescriptors();
    void queriesLeakNoDescriptors();
    void invalidFileNamesAreRefused_data();
    void invalidFileNamesAreRefused();
    void irregularFilesAreRefused_data();
    void irregularFilesAreRefused();
    void existingRegularFileIsUnchanged();
    void unusableFolderIsReported_data();
    void unusableFolderIsReported();
    void linkedFolderIsNotFollowed();
    void failedRemovalIsReported();
    void serviceManagerIsNotifiedOnlyOfReadiness();
    void serviceManagerIsNotifiedEvenWithoutFile();
    void unreachableServiceManagerIsReported();
};

void ServiceWatcherTest::cleanup()
{
    QDir(folder).removeRecursively();
    QFile::remove(folder);
}

void ServiceWatcherTest::serviceIsReadyFromDeclarationToRevocation()
{
    QVERIFY(!ServiceWatcher::isReady("speechd"));
    ServiceWatcher::setReady("speechd", true);
    QVERIFY(ServiceWatcher::isReady("speechd"));
    QVERIFY(!ServiceWatcher::isReady("state-handler"));
    ServiceWatcher::setReady("speechd", false);
    QVERIFY(!ServiceWatcher::isReady("speechd"));
}

void ServiceWatcherTest::readinessIsAFileOfThatName()
{
    QVERIFY(!QFile::exists(folder));

    ServiceWatcher::setReady("keyboard-handler", true);

    QCOMPARE(QDir(folder).entryList(QDir::Files), QStringList("keyboard-handler"));
}

void ServiceWatcherTest::declarationsMayBeRepeated()
{
    const LogRecorder log;

    ServiceWatcher::setReady("speechd", true);
    ServiceWatcher::setReady("speechd", true);
    QVERIFY(ServiceWatcher::isReady("speechd"));
    ServiceWatcher::setReady("speechd", false);
    ServiceWatcher::setReady("speechd", false);

    QVERIFY(log.lines().isEmpty());
}

void ServiceWatcherTest::revocationOfAnUnknownServiceIsSilent()
{
    const LogRecorder log;

    ServiceWatcher::setReady("keyboard-handler", false);

    QVERIFY(log.lines().isEmpty());
    QVERIFY(!QFile::exists(folder));
}

void ServiceWatcherTest::changeDuringAQueryIsNoticed_data()
{
    QTest::addColumn<Step>("before");
    QTest::addColumn<Step>("change");

    QTest::newRow("file made") << Step(makeFolder) << Step(makeFile);
    QTest::newRow("file renamed") << Step(makeFolder) << Step(makeFileByRenaming);
    QTest::newRow("folder and file made") << Step([] {}) << Step([] {
        makeFolder();
        makeFile();
    });
    QTest::newRow("file made shortly after the folder") << Step([] {}) << Step([] {
        makeFolder();
        QThread::msleep(30);
        makeFile();
    });
    QTest::newRow("folder removed and made again") << Step(makeFolder) << Step([] {
        removeFolder();
        makeFolder();
        makeFile();
    });
    QTest::newRow("folder replaced by another one") << Step(makeFolder) << Step([] {
        ::rename(qPrintable(folder), "/run/old-folder");
        makeFolder();
        QThread::msleep(30);
        makeFile();
    });
}

void ServiceWatcherTest::changeDuringAQueryIsNoticed()
{
    QFETCH(Step, before);
    QFETCH(Step, change);

    QVERIFY(isNoticedDuringQuery(before, change));
}

void ServiceWatcherTest::changeJustBeforeTheWatchIsNoticed_data()
{
    QTest::addColumn<Step>("before");
    QTest::addColumn<Make>("beforeWatch");
    QTest::addColumn<Step>("change");

    QTest::newRow("file") << Step(makeFolder) << Make([](const char*) { makeFile(); }) << Step([] {});
    QTest::newRow("folder, and the file later") << Step([] {}) << Make([](const char* watched) {
        if (QByteArray(watched) == "/run") {
            makeFolder();
        }
    }) << Step(makeFile);
}

void ServiceWatcherTest::changeJustBeforeTheWatchIsNoticed()
{
    QFETCH(Step, before);
    QFETCH(Make, beforeWatch);
    QFETCH(Step, change);

    g_beforeWatch = beforeWatch;
    const bool isNoticed = isNoticedDuringQuery(before, change);
    g_beforeWatch = nullptr;

    QVERIFY(isNoticed);
}

void ServiceWatcherTest::negativeAnswerCausesFewWakeUps_data()
{
    QTest::addColumn<bool>("hasFolder");
    QTest::newRow("folder there") << true;
    QTest::newRow("no folder") << false;
}

void ServiceWatcherTest::negativeAnswerCausesFewWakeUps()
{
    QFETCH(bool, hasFolder);
    if (hasFolder) {
        makeFolder();
    }

    const Answer answer = ask("speechd");

    QVERIFY(!answer.ready);
    QVERIFY2(answer.wakeUps * 1000 <= answer.milliseconds * maxWakeUpsPerSecond,
             qPrintable(QString::number(answer.wakeUps)));
}

void ServiceWatcherTest::otherFilesCauseFewWakeUps()
{
    makeFolder();
    std::atomic<bool> isOver = false;
    std::thread others([&] {
        while (!isOver) {
            ::mknod(qPrintable(readinessFile("other")), S_IFREG | S_IRUSR, 0);
            QFile::remove(readinessFile("other"));
        }
    });

    const Answer answer = ask("speechd");
    isOver = true;
    others.join();

    QVERIFY(!answer.ready);
    // Two for each change that is noticed; changes are checked at most every 2 ms.
    QVERIFY2(answer.wakeUps <= answer.milliseconds, qPrintable(QString::number(answer.wakeUps)));
}

void ServiceWatcherTest::queryWorksWithoutFreeDescriptors()
{
    const NoDescriptors none;

    QVERIFY(isNoticedDuringQuery(makeFolder, makeFile));
    removeFolder();
    const Answer no = ask("speechd");

    QVERIFY(!no.ready);
    QVERIFY(no.milliseconds >= maxHoldMs);
    // One poll every 50 ms.
    QVERIFY2(no.wakeUps <= 2 * maxHoldMs / 50 + 2, qPrintable(QString::number(no.wakeUps)));
}

void ServiceWatcherTest::queriesLeakNoDescriptors()
{
    makeFolder();
    QVERIFY(!ServiceWatcher::isReady("speechd")); // creates this thread's watch
    const int before = ProcessFigures::ownDescriptors();

    ask("speechd");
    QCOMPARE(ProcessFigures::ownDescriptors(), before);
    for (int i = 0; i < 1000; ++i) {
        removeFolder();
        makeFolder();
        std::thread service(makeFile);
        QVERIFY(ServiceWatcher::isReady("speechd"));
        service.join();
        QVERIFY(ServiceWatcher::isReady("speechd"));
    }
    QCOMPARE(ProcessFigures::ownDescriptors(), before);
}

void ServiceWatcherTest::invalidFileNamesAreRefused_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("quoted");

    QTest::newRow("empty") << ""
                           << "\"\"";
    QTest::newRow("folder itself") << "."
                                   << "\".\"";
    QTest::newRow("folder above") << ".."
                                  << "\"..\"";
    QTest::newRow("path") << "../escaped"
                          << "\"../escaped\"";
    QTest::newRow("NUL character") << QString("a") + QChar::Null << "\"a\\u0000\"";
}

void ServiceWatcherTest::invalidFileNamesAreRefused()
{
    QFETCH(QString, name);
    QFETCH(QString, quoted);
    const LogRecorder log;

    ServiceWatcher::setReady(name, true);

    QVERIFY(!ServiceWatcher::isReady(name));
    QCOMPARE(log.lines(), criticalLine("invalid service name " + quoted));
    QVERIFY(!QFile::exists(folder));
}

void ServiceWatcherTest::irregularFilesAreRefused_data()
{
    QTest::addColumn<Make>("make");
    const auto add = [](const char* name, Make make) { QTest::newRow(name) << make; };
    add("FIFO", [](const char* path) { ::mkfifo(path, S_IRUSR | S_IWUSR); });
    add("link to a file", [](const char* path) { ::symlink("/run/target", path); });
    add("link to nothing", [](const char* path) { ::symlink("/run/nothing", path); });
    add("link to a folder", [](const char* path) { ::symlink("/run/service-watcher", path); });
    add("folder", [](const char* path) { ::mkdir(path, S_IRWXU); });
    // The only device that needs no privileges.
    add("device", [](const char* path) { ::mknod(path, S_IFCHR, makedev(0, 0)); });
}

void ServiceWatcherTest::irregularFilesAreRefused()
{
    QFETCH(Make, make);
    const QString path = readinessFile("keyboard-handler");
    QFile target("/run/target");
    QVERIFY(target.open(QIODevice::WriteOnly) && target.write("kept") == 4 && target.flush());
    makeFolder();
    make(qPrintable(path));
    const QVector<quint64> entry = entryAt(path);
    QVERIFY(!entry.isEmpty());
    const NotifySocket manager;
    const LogRecorder log;

    ServiceWatcher::setReady("keyboard-handler", true);

    QCOMPARE(log.lines(), criticalLine("creating \"" + path + "\" failed: \"File exists\""));
    QCOMPARE(manager.receive(), QByteArray("READY=1"));
    QCOMPARE(entryAt(path), entry);
    QCOMPARE(QFileInfo("/run/target").size(), 4);
    QVERIFY(!QFile::exists("/run/nothing"));
}

void ServiceWatcherTest::existingRegularFileIsUnchanged()
{
    makeFolder();
    QFile file(readinessFile("keyboard-handler"));
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write("kept") == 4 && file.flush());
    QVERIFY(file.setPermissions(QFileDevice::Permissions()));
    const QVector<quint64> entry = entryAt(file.fileName());
    const LogRecorder log;

    ServiceWatcher::setReady("keyboard-handler", true);

    QCOMPARE(log.lines(), {});
    QCOMPARE(entryAt(file.fileName()), entry);
    QVERIFY(ServiceWatcher::isReady("keyboard-handler"));
}

void ServiceWatcherTest::unusableFolderIsReported_data()
{
    QTest::addColumn<Make>("make");
    const auto add = [](const char* name, Make make) { QTest::newRow(name) << make; };
    add("file", [](const char* path) { ::mknod(path, S_IFREG | S_IRUSR, 0); });
    add("FIFO", [](const char* path) { ::mkfifo(path, S_IRUSR | S_IWUSR); });
    add("link to nothing", [](const char* path) { ::symlink("/run/nothing", path); });
}

void ServiceWatcherTest::unusableFolderIsReported()
{
    QFETCH(Make, make);
    make(qPrintable(folder));
    const QVector<quint64> entry = entryAt(folder);
    QVERIFY(!entry.isEmpty());
    const LogRecorder log;

    ServiceWatcher::setReady("speechd", false);
    ServiceWatcher::setReady("speechd", true);

    QCOMPARE(log.lines(),
             criticalLine("creating \"/run/service-watcher/speechd\" failed: \"Not a directory\""));
    QCOMPARE(entryAt(folder), entry);
    QVERIFY(!QFile::exists("/run/nothing"));
}

void ServiceWatcherTest::linkedFolderIsNotFollowed()
{
    QVERIFY(QDir().mkpath("/run/elsewhere"));
    QVERIFY(QFile("/run/elsewhere/speechd").open(QIODevice::WriteOnly));
    QVERIFY(::symlink("/run/elsewhere", qPrintable(folder)) == 0);
    const LogRecorder log;

    ServiceWatcher::setReady("speechd", false);
    ServiceWatcher::setReady("state-handler", true);

    QCOMPARE(QDir("/run/elsewhere").entryList(QDir::Files), QStringList("speechd"));
    QCOMPARE(log.lines(),
             criticalLine("creating \"/run/service-watcher/state-handler\" failed: \"Not a directory\""));
}

void ServiceWatcherTest::failedRemovalIsReported()
{
    QVERIFY(QDir().mkpath(readinessFile("speechd/inner")));
    const LogRecorder log;

    ServiceWatcher::setReady("speechd", false);

    QCOMPARE(log.lines(),
             criticalLine("removing \"/run/service-watcher/speechd\" failed: \"Is a directory\""));
}

void ServiceWatcherTest::serviceManagerIsNotifiedOnlyOfReadiness()
{
    const NotifySocket manager;

    ServiceWatcher::setReady("keyboard-handler", false);
    QCOMPARE(manager.receive(), QByteArray());
    ServiceWatcher::setReady("keyboard-handler", true);
    QCOMPARE(manager.receive(), QByteArray("READY=1"));
    QCOMPARE(manager.receive(), QByteArray());
}

void ServiceWatcherTest::serviceManagerIsNotifiedEvenWithoutFile()
{
    QVERIFY(QFile(folder).open(QIODevice::WriteOnly));
    const NotifySocket manager;
    const LogRecorder log;

    ServiceWatcher::setReady("keyboard-handler", true);

    QCOMPARE(manager.receive(), QByteArray("READY=1"));
    QCOMPARE(log.lines().size(), 1);
}

void ServiceWatcherTest::unreachableServiceManagerIsReported()
{
    qputenv("NOTIFY_SOCKET", "/tmp/no-such-socket");
    const LogRecorder log;

    ServiceWatcher::setReady("keyboard-handler", true);
    qunsetenv("NOTIFY_SOCKET");

    QVERIFY(ServiceWatcher::isReady("keyboard-handler"));
    QCOMPARE(log.lines(),
             criticalLine("notifying the service manager failed: \"No such file or directory\""));
}

QTEST_GUILESS_MAIN(ServiceWatcherTest)
#include "ServiceWatcherTest.moc"
