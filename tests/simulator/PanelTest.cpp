// SPDX-License-Identifier: MIT
#include "simulator/panel/Panel.h"
#include "tests/support/Waiting.h"

#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include <array>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

/// Tests a panel whose second FIFO does not exist.
class PanelTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void aKeyIsWrittenAsKernelRecords();
    void anAbsentDeviceIsReportedAndItsKeysAreDropped();
    void recordsWithoutRoomAreQueued();
    void aFullFifoDoesNotSplitRecords();
    void partsOfRecordsAreWrittenUnchanged();
    void eachWrittenRecordIsReported();

private:
    QByteArray readAvailable();

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<Panel> m_panel;
    int m_reader = -1;
};

void PanelTest::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    const QString path = m_folder->filePath(QStringLiteral("event0"));
    QCOMPARE(mkfifo(qPrintable(path), S_IRUSR | S_IWUSR), 0);
    m_panel = std::make_unique<Panel>();
    QVERIFY(m_panel->open(0, path));
    m_reader = open(qPrintable(path), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    QVERIFY(m_reader != -1);
}

void PanelTest::cleanup()
{
    close(m_reader);
    m_panel.reset();
    m_folder.reset();
}

QByteArray PanelTest::readAvailable()
{
    std::array<char, 2048 * sizeof(input_event)> buffer{};
    const ssize_t count = read(m_reader, buffer.data(), buffer.size());
    return count > 0 ? QByteArray(buffer.data(), int(count)) : QByteArray();
}

void PanelTest::aKeyIsWrittenAsKernelRecords()
{
    m_panel->press(0, ls::KeyId::Menu);
    const QByteArray bytes = readAvailable();
    std::array<input_event, 2> records{};
    QCOMPARE(bytes.size(), int(sizeof records));
    std::copy(bytes.begin(), bytes.end(), reinterpret_cast<char*>(records.data()));
    QCOMPARE(int(records[0].type), EV_KEY);
    QCOMPARE(int(records[0].code), KEY_MENU);
    QCOMPARE(records[0].value, 1);
    QVERIFY(records[0].input_event_sec > 0);
    QCOMPARE(int(records[1].type), EV_SYN);
}

void PanelTest::anAbsentDeviceIsReportedAndItsKeysAreDropped()
{
    QVERIFY(!m_panel->open(1, m_folder->filePath(QStringLiteral("event1"))));
    m_panel->press(1, ls::KeyId::Menu);
    QCOMPARE(m_panel->pending(1), 0);
    QCOMPARE(readAvailable(), QByteArray());
}

void PanelTest::recordsWithoutRoomAreQueued()
{
    QByteArray sent;
    for (int i = 0; i < 30'000; ++i) {
        sent += QByteArray::number(i).rightJustified(8);
    }
    m_panel->writeRaw(0, sent);
    QVERIFY(m_panel->pending(0) > 0);
    QByteArray received;
    WAIT_FOR(received.append(readAvailable()).size() >= sent.size());
    QCOMPARE(received, sent);
    QCOMPARE(m_panel->pending(0), 0);
}

void PanelTest::aFullFifoDoesNotSplitRecords()
{
    for (int i = 0; i < 3000; ++i) {
        m_panel->press(0, ls::KeyId::Up);
        m_panel->release(0, ls::KeyId::Up);
    }
    QVERIFY(m_panel->pending(0) > 0);
    constexpr int recordSize = int(sizeof(input_event));
    int received = 0;
    bool whole = true;
    const auto receive = [&] {
        const int size = readAvailable().size();
        whole = whole && size % recordSize == 0;
        return received += size;
    };
    WAIT_FOR_EQUAL(receive(), 12'000 * recordSize);
    QVERIFY(whole);
}

void PanelTest::partsOfRecordsAreWrittenUnchanged()
{
    m_panel->writeRaw(0, "abc");
    m_panel->writeRaw(0, "de");
    QCOMPARE(readAvailable(), QByteArray("abcde"));
}

void PanelTest::eachWrittenRecordIsReported()
{
    QStringList told;
    connect(m_panel.get(), &Panel::written, this, [&](int device, const RawRecord& record) {
        told
            << QStringLiteral("%1: %2 %3 %4").arg(device).arg(record.type).arg(record.code).arg(record.value);
    });
    m_panel->press(1, ls::KeyId::Menu);
    WAIT_FOR(told.size() >= 4);
    m_panel->release(1, ls::KeyId::Menu);
    m_panel->record(0, {EV_MSC, MSC_SCAN, -7});
    QCOMPARE(told.mid(0, 4), QStringList({"1: 1 139 1", "1: 0 0 0", "1: 1 139 2", "1: 0 0 1"}));
    QCOMPARE(told.mid(told.size() - 4), QStringList({"1: 1 139 0", "1: 0 0 0", "0: 4 4 -7", "0: 0 0 0"}));
}

QTEST_GUILESS_MAIN(PanelTest)
#include "PanelTest.moc"
