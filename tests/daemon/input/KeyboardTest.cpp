// SPDX-License-Identifier: MIT
#include "input/Keyboard.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/ProcessFigures.h"

#include <ls/Identifiers.h>

#include <QSocketNotifier>
#include <QTemporaryDir>
#include <QtTest>

#include <csignal>
#include <thread>

#include <fcntl.h>
#include <pthread.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

QVector<LogLine> criticalLine(const QString& text)
{
    return {{QtCriticalMsg, "default", text}};
}

/// Waits until the thread sleeps in a system call.
void awaitSleep(pid_t thread)
{
    for (char state = 'R'; state != 'S'; std::this_thread::yield()) {
        QFile file(QStringLiteral("/proc/self/task/%1/stat").arg(thread));
        const bool isOpen = file.open(QIODevice::ReadOnly);
        state = isOpen ? file.readAll().split(')').last().trimmed().at(0) : 'R';
    }
}

} // namespace

class KeyboardTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void recordHasTheSizeOfTheWordWidth();
    void isClosedUntilOpened();
    void openDeviceIsOpenedAgain();
    void missingDeviceIsReportedAndMayAppearLater();
    void recordsOfAllTypesAreEmitted();
    void partOfARecordIsDropped();
    void burstWithPartialRecordsLosesNoWholeRecord();
    void oneNotificationDrainsTheDevice();
    void oneReadTakes32Records();
    void interruptedReadIsRetried();
    void filterDropsRecords();
    void readErrorIsReportedAndTheDeviceStaysWatched();
    void endOfFileIsReported();
    void writtenRecordIsReportedAsPartial();
    void writeErrorIsReported();
    void simulatedKeysAreEmitted_data();
    void simulatedKeysAreEmitted();
    void simulatedKeyWithoutValueIsRefused();
    void simulatedKeyBypassesFilterAndDevice();
    void keysAreNamed_data();
    void keysAreNamed();
    void lastEventIsTheStoredOne();
    void descriptorIsClosedOnDestruction();
    void descriptorIsNotInherited();
    void emptyNameKeepsThePreviousError();
    void simulatedKeyHasNoTime();

private:
    static input_event record(int type, int code, int value);
    void write(const QByteArray& bytes);
    /// Makes these packets readable in one notification; each read takes one and truncates it.
    void read(const QList<QByteArray>& packets);
    static QByteArray bytes(const input_event& event);
    QString path(const char* name) const { return folder->filePath(name); }

    std::unique_ptr<QTemporaryDir> folder;
    std::unique_ptr<Keyboard> keyboard;
    int writer = -1;
    QStringList events; // "type code value"
};

void KeyboardTest::init()
{
    folder = std::make_unique<QTemporaryDir>();
    ::mkfifo(qPrintable(path("event0")), 0600);
    writer = ::open(qPrintable(path("event0")), O_RDWR | O_NONBLOCK | O_CLOEXEC);
    keyboard = std::make_unique<Keyboard>(path("event0"));
    events.clear();
    connect(keyboard.get(), &Keyboard::event, this, [this](const ls::KeyEvent& event) {
        const input_event& read = event.event();
        events.append(QStringLiteral("%1 %2 %3").arg(read.type).arg(read.code).arg(read.value));
    });
}

void KeyboardTest::cleanup()
{
    keyboard.reset();
    ::close(writer);
}

input_event KeyboardTest::record(int type, int code, int value)
{
    input_event event{};
    event.type = static_cast<quint16>(type);
    event.code = static_cast<quint16>(code);
    event.value = value;
    return event;
}

QByteArray KeyboardTest::bytes(const input_event& event)
{
    return QByteArray(reinterpret_cast<const char*>(&event), sizeof event);
}

void KeyboardTest::write(const QByteArray& data)
{
    QCOMPARE(::write(writer, data.constData(), static_cast<size_t>(data.size())),
             static_cast<ssize_t>(data.size()));
    QCoreApplication::processEvents();
}

void KeyboardTest::read(const QList<QByteArray>& packets)
{
    int ends[2];
    QCOMPARE(::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_NONBLOCK | SOCK_CLOEXEC, 0, ends), 0);
    for (const QByteArray& packet : packets) {
        QCOMPARE(::send(ends[1], packet.constData(), static_cast<size_t>(packet.size()), 0), packet.size());
    }
    QMetaObject::invokeMethod(keyboard.get(), "readEvents", Q_ARG(int, ends[0]));
    ::close(ends[0]);
    ::close(ends[1]);
}

void KeyboardTest::recordHasTheSizeOfTheWordWidth()
{
    QCOMPARE(sizeof(input_event), sizeof(long) == 4 ? 16u : 24u);
}

void KeyboardTest::isClosedUntilOpened()
{
    QVERIFY(!keyboard->isOpen());
    QVERIFY(keyboard->open());
    QVERIFY(keyboard->isOpen());
}

void KeyboardTest::openDeviceIsOpenedAgain()
{
    QVERIFY(keyboard->open());
    const LogRecorder log;
    keyboard->setDevice(path("event7"));
    QVERIFY(!keyboard->open());
    const QString error = "Unable to open device " + path("event7") + ": No such file or directory";
    QCOMPARE(log.lines(), criticalLine("Keyboard::open ERROR: " + error));
    QVERIFY(!keyboard->isOpen());
}

void KeyboardTest::missingDeviceIsReportedAndMayAppearLater()
{
    Keyboard late(path("event7"));
    const QString error = "Unable to open device " + path("event7") + ": No such file or directory";
    const LogRecorder log;
    QVERIFY(!late.open());
    QCOMPARE(log.lines(), criticalLine("Keyboard::open ERROR: " + error));
    QCOMPARE(late.errorString(), error);
    QVERIFY(!late.isOpen());
    late.setDevice(path("event0"));
    QVERIFY(late.open());
}

void KeyboardTest::recordsOfAllTypesAreEmitted()
{
    keyboard->open();
    write(bytes(record(EV_MSC, MSC_SCAN, 7)) + bytes(record(EV_KEY, KEY_UP, 1)) +
          bytes(record(EV_SYN, SYN_REPORT, 0)));
    QCOMPARE(events, (QStringList{"4 4 7", "1 103 1", "0 0 0"}));
}

void KeyboardTest::partOfARecordIsDropped()
{
    keyboard->open();
    write(QByteArray(sizeof(input_event) - 1, 'x'));
    QCOMPARE(events, QStringList{});
    write(bytes(record(EV_KEY, KEY_UP, 1)));
    QCOMPARE(events, QStringList{"1 103 1"});
}

void KeyboardTest::burstWithPartialRecordsLosesNoWholeRecord()
{
    keyboard->open();
    constexpr int maxRecords = 100; // more than in one read
    int sent = 0;
    for (int i = 0; i < 2000; ++i) {
        const int count = i % maxRecords;
        write(bytes(record(EV_KEY, KEY_UP, i % 3)).repeated(count) +
              QByteArray(i % static_cast<int>(sizeof(input_event)), 'x'));
        sent += count;
    }
    QCOMPARE(events.size(), sent);
}

void KeyboardTest::oneNotificationDrainsTheDevice()
{
    const QByteArray whole = bytes(record(EV_KEY, KEY_UP, 1));
    read({whole, whole.left(whole.size() - 1), whole + whole});
    QCOMPARE(events.size(), 3);
}

void KeyboardTest::oneReadTakes32Records()
{
    read({bytes(record(EV_KEY, KEY_UP, 1)).repeated(33)});
    QCOMPARE(events.size(), 32);
}

void KeyboardTest::interruptedReadIsRetried()
{
    struct sigaction action = {};
    action.sa_handler = [](int) {}; // without SA_RESTART
    ::sigaction(SIGUSR1, &action, nullptr);
    int ends[2];
    QCOMPARE(::pipe2(ends, O_CLOEXEC), 0);
    const QByteArray whole = bytes(record(EV_KEY, KEY_UP, 1));
    std::thread other([&, reader = ::pthread_self(), readerId = ::gettid()] {
        awaitSleep(readerId);
        ::pthread_kill(reader, SIGUSR1);
        awaitSleep(readerId);
        const ssize_t written = ::write(ends[1], whole.constData(), static_cast<size_t>(whole.size()));
        Q_UNUSED(written)
        ::close(ends[1]);
    });
    const LogRecorder log;
    QMetaObject::invokeMethod(keyboard.get(), "readEvents", Q_ARG(int, ends[0]));
    other.join();
    ::close(ends[0]);
    QCOMPARE(events, QStringList{"1 103 1"});
    QCOMPARE(log.lines(), criticalLine("Keyboard::readEvents WARN: Reading from device returned 0."));
}

void KeyboardTest::filterDropsRecords()
{
    keyboard->setFilter([](const ls::KeyEvent& event) { return event.isKey(); });
    keyboard->open();
    write(bytes(record(EV_KEY, KEY_UP, 1)) + bytes(record(EV_SYN, SYN_REPORT, 0)));
    QCOMPARE(events, QStringList{"1 103 1"});
    QVERIFY(keyboard->filter());
    keyboard->setFilter({});
    write(bytes(record(EV_SYN, SYN_REPORT, 0)));
    QCOMPARE(events.size(), 2);
}

void KeyboardTest::readErrorIsReportedAndTheDeviceStaysWatched()
{
    keyboard->open();
    const int unreadable = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
    const LogRecorder log;
    QMetaObject::invokeMethod(keyboard.get(), "readEvents", Q_ARG(int, unreadable));
    const QString error = "Error reading from device " + path("event0") + ": Bad file descriptor";
    QCOMPARE(log.lines(), criticalLine("Keyboard::readEvents ERROR: " + error));
    QCOMPARE(keyboard->errorString(), error);
    QVERIFY(keyboard->findChild<QSocketNotifier*>()->isEnabled());
    ::close(unreadable);
    write(bytes(record(EV_KEY, KEY_UP, 1)));
    QCOMPARE(events, QStringList{"1 103 1"});
}

void KeyboardTest::endOfFileIsReported()
{
    keyboard->open();
    const int empty = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
    const LogRecorder log;
    QMetaObject::invokeMethod(keyboard.get(), "readEvents", Q_ARG(int, empty));
    ::close(empty);
    QCOMPARE(log.lines(), criticalLine("Keyboard::readEvents WARN: Reading from device returned 0."));
    QCOMPARE(keyboard->errorString(), QString());
    write(bytes(record(EV_KEY, KEY_UP, 1)));
    QCOMPARE(events, QStringList{"1 103 1"});
}

void KeyboardTest::writtenRecordIsReportedAsPartial()
{
    keyboard->open();
    const LogRecorder log;
    QVERIFY(!keyboard->write(ls::KeyEvent(record(EV_KEY, KEY_UP, 1))));
    QCOMPARE(log.lines(),
             criticalLine("Keyboard::write ERROR: Partial write to device " + path("event0") + "."));
    QCOMPARE(keyboard->errorString(), QString());
    QCoreApplication::processEvents();
    QCOMPARE(events, QStringList{"1 103 1"}); // completely written, and read back from the FIFO
}

void KeyboardTest::writeErrorIsReported()
{
    const QString error = "Error writing to device " + path("event0") + ": Bad file descriptor";
    const LogRecorder log;
    QVERIFY(!keyboard->write(ls::KeyEvent(record(EV_KEY, KEY_UP, 1)))); // not open
    QCOMPARE(log.lines(), criticalLine("Keyboard::write ERROR: " + error));
    QCOMPARE(keyboard->errorString(), error);
}

void KeyboardTest::simulatedKeysAreEmitted_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("action");
    QTest::addColumn<QString>("event");
    QTest::newRow("press") << "Menu"
                           << "Pressed"
                           << "1 139 1";
    QTest::newRow("release") << "Ok"
                             << "Released"
                             << "1 352 0";
    QTest::newRow("repeat") << "FactoryReset"
                            << "Repeated"
                            << "1 408 2";
    QTest::newRow("gesture") << "Up"
                             << "Shortcut"
                             << "1 103 5";
    QTest::newRow("unknown key") << "NoSuchKey"
                                 << "Pressed"
                                 << "1 0 1";
    QTest::newRow("unknown action") << "Up"
                                    << "NoSuchAction"
                                    << "1 103 -2147483648";
    QTest::newRow("neither known") << ""
                                   << ""
                                   << "1 0 -2147483648";
}

void KeyboardTest::simulatedKeysAreEmitted()
{
    QFETCH(QString, key);
    QFETCH(QString, action);
    QFETCH(QString, event);
    QVERIFY(keyboard->simulateKey(key, action));
    QCOMPARE(events, QStringList{event});
}

void KeyboardTest::simulatedKeyWithoutValueIsRefused()
{
    const LogRecorder log;
    QVERIFY(!keyboard->simulateKey(ls::KeyId::Up, ls::KeyActionId::None));
    QCOMPARE(log.lines(), criticalLine("Keyboard::simulateKey ERROR: Key value is invalid!"));
    QCOMPARE(events, QStringList{});
}

void KeyboardTest::simulatedKeyBypassesFilterAndDevice()
{
    keyboard->setFilter([](const ls::KeyEvent&) { return false; });
    keyboard->open();
    QVERIFY(keyboard->simulateKey(ls::KeyId::Up, ls::KeyActionId::Pressed));
    QCoreApplication::processEvents();
    QCOMPARE(events, QStringList{"1 103 1"});
}

void KeyboardTest::keysAreNamed_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("key");
    QTest::newRow("key of the panel") << EV_KEY << KEY_MENU << "Menu";
    QTest::newRow("the unknown key") << EV_KEY << KEY_UNKNOWN << "Unknown";
    QTest::newRow("another key") << EV_KEY << KEY_A << "Undefined";
    QTest::newRow("no key") << EV_MSC << KEY_MENU << "Unknown";
}

void KeyboardTest::keysAreNamed()
{
    QFETCH(int, type);
    QFETCH(int, code);
    QTEST(Keyboard::keyOf(ls::KeyEvent(record(type, code, 1))), "key");
}

void KeyboardTest::lastEventIsTheStoredOne()
{
    QVERIFY(!keyboard->lastEvent().isKey());
    keyboard->setLastEvent(ls::KeyEvent(record(EV_KEY, KEY_DOWN, 0)));
    QVERIFY(keyboard->lastEvent().isKeyUp());
    QCOMPARE(keyboard->lastEvent().code(), quint16(KEY_DOWN));
}

void KeyboardTest::descriptorIsClosedOnDestruction()
{
    const int before = ProcessFigures::ownDescriptors();
    keyboard->open();
    QCOMPARE(ProcessFigures::ownDescriptors(), before + 1);
    keyboard.reset();
    QCOMPARE(ProcessFigures::ownDescriptors(), before);
}

void KeyboardTest::descriptorIsNotInherited()
{
    keyboard->open();
    const QDir descriptors("/proc/self/fd");
    int found = 0;
    for (const QString& name : descriptors.entryList(QDir::Files | QDir::System)) {
        if (QFile::symLinkTarget(descriptors.filePath(name)) == path("event0")) {
            ++found;
            QVERIFY(::fcntl(name.toInt(), F_GETFD) & FD_CLOEXEC);
        }
    }
    QCOMPARE(found, 2); // those of the writer and the device
}

void KeyboardTest::emptyNameKeepsThePreviousError()
{
    Keyboard late(path("event7"));
    LogRecorder log;
    late.open();
    const QString error = late.errorString();
    QCOMPARE(log.take(), criticalLine("Keyboard::open ERROR: " + error));
    late.setDevice({});
    QVERIFY(!late.open());
    QCOMPARE(log.take(), criticalLine("Keyboard::open WARN: No device specified."));
    QVERIFY(!error.isEmpty());
    QCOMPARE(late.errorString(), error);
}

void KeyboardTest::simulatedKeyHasNoTime()
{
    input_event emitted = record(0, 0, 0);
    emitted.input_event_sec = emitted.input_event_usec = 1;
    connect(keyboard.get(), &Keyboard::event, this,
            [&emitted](const ls::KeyEvent& event) { emitted = event.event(); });
    keyboard->simulateKey(ls::KeyId::Up, ls::KeyActionId::Pressed);
    QCOMPARE(emitted.input_event_sec, 0);
    QCOMPARE(emitted.input_event_usec, 0);
}

QTEST_GUILESS_MAIN(KeyboardTest)
#include "KeyboardTest.moc"
