// SPDX-License-Identifier: MIT
#include "control/input/InputNode.h"
#include "tests/support/Waiting.h"

#include <QAbstractEventDispatcher>
#include <QTemporaryDir>

#include <cerrno>

#include <fcntl.h>
#include <linux/input.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

using namespace control;

namespace {

QByteArray bytes(quint16 type, quint16 code, qint32 value)
{
    input_event event{};
    event.type = type;
    event.code = code;
    event.value = value;
    return {reinterpret_cast<const char*>(&event), int(sizeof event)};
}

const QByteArray press = bytes(EV_KEY, KEY_UP, 1);
const QByteArray release = bytes(EV_KEY, KEY_UP, 0);
const QByteArray report = bytes(EV_SYN, SYN_REPORT, 0);
const QByteArray dropped = bytes(EV_SYN, SYN_DROPPED, 0);

std::chrono::microseconds monotonic()
{
    timespec time{};
    clock_gettime(CLOCK_MONOTONIC, &time);
    return std::chrono::microseconds(time.tv_sec * 1'000'000 + time.tv_nsec / 1000);
}

} // namespace

/// Tests the reader of an input node on a FIFO. That the kernel stamps records, and that a plugged device is
/// read next to the daemon, is tested on the target.
class InputNodeTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void recordsArriveInOrderWithTheTimeOfReading();
    void recordsMayComeInPieces();
    void manyRecordsArriveAll();
    void droppedRecordsAreAGapUpToTheEndOfTheReport();
    void aNodeThatVanishesAndReturnsIsMarked();
    void theSearchForAVanishedNodeDoesNotSpin();
    void theNodeIsOnlyRead();
    void aNodeThatCannotBeOpenedHasAnError();
    void aFifoDoesNotKnowItsKeys();

private:
    void openWriter();
    void closeWriter();
    void write(const QByteArray& all);
    QString path() const { return m_folder->filePath(QStringLiteral("event0")); }

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<InputNode> m_node;
    int m_writer = -1;
    QStringList m_events;
    std::vector<std::chrono::microseconds> m_times;
};

void InputNodeTest::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    m_events.clear();
    m_times.clear();
    QCOMPARE(::mkfifo(qPrintable(path()), 0600), 0);
    m_node = std::make_unique<InputNode>(1, path());
    connect(m_node.get(), &InputNode::recorded, this, [this](const InputRecord& record) {
        QCOMPARE(record.keyboard, 1);
        m_events << QStringLiteral("%1 %2 %3").arg(record.type).arg(record.code).arg(record.value);
        m_times.push_back(record.at);
    });
    connect(m_node.get(), &InputNode::gapFound, this, [this](const InputGap& gap) {
        const char* const names[] = {"dropped", "vanished", "returned"};
        m_events << QLatin1String(names[static_cast<int>(gap.reason)]);
        m_times.push_back(gap.at);
    });
    QCOMPARE(m_node->open(), 0);
    openWriter();
}

void InputNodeTest::cleanup()
{
    m_node.reset();
    closeWriter();
}

void InputNodeTest::openWriter()
{
    m_writer = ::open(qPrintable(path()), O_WRONLY | O_NONBLOCK | O_CLOEXEC);
    QVERIFY(m_writer != -1);
}

void InputNodeTest::closeWriter()
{
    if (m_writer != -1) {
        ::close(m_writer);
        m_writer = -1;
    }
}

void InputNodeTest::write(const QByteArray& all)
{
    QCOMPARE(::write(m_writer, all.constData(), static_cast<size_t>(all.size())), ssize_t(all.size()));
}

void InputNodeTest::recordsArriveInOrderWithTheTimeOfReading()
{
    const auto before = monotonic();
    write(press + report + release);
    WAIT_FOR_EQUAL(m_events, (QStringList{"1 103 1", "0 0 0", "1 103 0"}));
    QVERIFY(before <= m_times.front() && m_times.front() <= m_times.back() && m_times.back() <= monotonic());
}

void InputNodeTest::recordsMayComeInPieces()
{
    const QByteArray all = press + release + report;
    for (const char byte : all) {
        write(QByteArray(1, byte));
        QCoreApplication::processEvents();
    }
    WAIT_FOR_EQUAL(m_events, (QStringList{"1 103 1", "1 103 0", "0 0 0"}));
}

void InputNodeTest::manyRecordsArriveAll()
{
    constexpr int count = 50'000;
    int sent = 0;
    while (sent < count) {
        const QByteArray record = bytes(EV_KEY, KEY_UP, sent);
        if (::write(m_writer, record.constData(), static_cast<size_t>(record.size())) == record.size()) {
            ++sent;
        } else {
            QCoreApplication::processEvents();
        }
    }
    WAIT_FOR_EQUAL(m_events.size(), count);
    for (int i = 0; i < count; ++i) {
        QCOMPARE(m_events.at(i), QStringLiteral("1 103 %1").arg(i));
    }
}

void InputNodeTest::droppedRecordsAreAGapUpToTheEndOfTheReport()
{
    write(press + dropped + release + press + report + release);
    WAIT_FOR_EQUAL(m_events, (QStringList{"1 103 1", "dropped", "1 103 0"}));
}

void InputNodeTest::aNodeThatVanishesAndReturnsIsMarked()
{
    write(press + release.left(5));
    WAIT_FOR_EQUAL(m_events.size(), 1);
    QVERIFY(QFile::remove(path()));
    closeWriter();
    WAIT_FOR_EQUAL(m_events, (QStringList{"1 103 1", "vanished"}));
    QVERIFY(!m_node->isOpen());
    QCOMPARE(::mkfifo(qPrintable(path()), 0600), 0);
    WAIT_FOR(m_node->isOpen());
    openWriter();
    write(release); // the first half of the lost record must not be part of it
    WAIT_FOR_EQUAL(m_events, (QStringList{"1 103 1", "vanished", "returned", "1 103 0"}));
}

void InputNodeTest::theSearchForAVanishedNodeDoesNotSpin()
{
    closeWriter();
    WAIT_FOR_EQUAL(m_events, QStringList{"vanished"});
    int rounds = 0;
    QObject context;
    connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::awake, &context,
            [&rounds] { ++rounds; });
    while (m_events.size() == 1) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    QCOMPARE(m_events.last(), QStringLiteral("returned"));
    // A file without a writer is always ready to be read.
    QVERIFY2(rounds < 50, qPrintable(QString::number(rounds)));
}

void InputNodeTest::theNodeIsOnlyRead()
{
    QStringList flags;
    const QFileInfoList descriptors =
        QDir(QStringLiteral("/proc/self/fd")).entryInfoList(QDir::Files | QDir::System);
    for (const QFileInfo& descriptor : descriptors) {
        const int fd = descriptor.fileName().toInt();
        if (descriptor.symLinkTarget() == path() && fd != m_writer) {
            flags << QString::number(::fcntl(fd, F_GETFL) & O_ACCMODE);
        }
    }
    QCOMPARE(flags, QStringList{QString::number(O_RDONLY)});
}

void InputNodeTest::aNodeThatCannotBeOpenedHasAnError()
{
    InputNode node(0, m_folder->filePath(QStringLiteral("absent")));
    QCOMPARE(node.open(), ENOENT);
    QVERIFY(!node.isOpen());
}

void InputNodeTest::aFifoDoesNotKnowItsKeys()
{
    QVERIFY(!m_node->keysDown().has_value());
}

QTEST_GUILESS_MAIN(InputNodeTest)
#include "InputNodeTest.moc"
