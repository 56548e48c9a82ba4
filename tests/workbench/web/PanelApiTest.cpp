// SPDX-License-Identifier: MIT
#include "simulator/script/KeyScriptText.h"
#include "tests/support/Waiting.h"
#include "tests/workbench/web/WebTest.h"
#include "workbench/web/SessionJson.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QtTest>

#include <algorithm>
#include <numeric>

#include <ctime>

#include <signal.h>
#include <sys/stat.h>

namespace {

constexpr int shownOnFailure = 4000;
constexpr int largeEntryId = 1'000'000;

const QString type = QStringLiteral("type");

QJsonObject entryWith(const QString& kind, const QString& member, const QJsonValue& value)
{
    return {{type, kind}, {member, value}};
}

QJsonObject keyEntry(const QString& key, int value)
{
    return {{type, QStringLiteral("key")}, {QStringLiteral("key"), key}, {QStringLiteral("value"), value}};
}

/// Whether `entry` has all that `pattern` has.
bool matches(const QJsonObject& entry, const QJsonObject& pattern)
{
    const QStringList names = pattern.keys();
    return std::all_of(names.begin(), names.end(),
                       [&](const QString& name) { return entry.value(name) == pattern.value(name); });
}

/// The members of /proc/PID/status, by their names.
QByteArray processStatus(const QString& process, const QByteArray& name)
{
    QFile file(QStringLiteral("/proc/%1/status").arg(process));
    if (file.open(QIODevice::ReadOnly)) {
        for (const QByteArray& line : file.readAll().split('\n')) {
            if (line.startsWith(name + ':')) {
                return line.mid(name.size() + 1).trimmed();
            }
        }
    }
    return {};
}

bool isOfThisProcess(QString process)
{
    while (process.toLongLong() > 1 && process.toLongLong() != QCoreApplication::applicationPid()) {
        process = QString::fromLatin1(processStatus(process, "PPid"));
    }
    return process.toLongLong() == QCoreApplication::applicationPid();
}

/// What a clock of processor time shows, in microseconds.
qint64 processorTime(clockid_t clock)
{
    timespec time{};
    clock_gettime(clock, &time);
    return time.tv_sec * 1'000'000 + time.tv_nsec / 1000;
}

/// Whether a process runs this file, which it may see under another name.
bool runs(const QString& process, const struct stat& file)
{
    struct stat executable
    {};
    const QByteArray path = "/proc/" + process.toLatin1() + "/exe";
    return stat(path.constData(), &executable) == 0 && executable.st_dev == file.st_dev &&
           executable.st_ino == file.st_ino;
}

/// The daemon that this process has started; 0 for none.
pid_t daemonProcess()
{
    struct stat daemon
    {};
    if (stat(KEYBOARD_HANDLER_DAEMON, &daemon) == -1) {
        return 0;
    }
    const QStringList processes =
        QDir(QStringLiteral("/proc")).entryList({QStringLiteral("[0-9]*")}, QDir::Dirs);
    for (const QString& process : processes) {
        if (runs(process, daemon) && isOfThisProcess(process)) {
            return pid_t(process.toLongLong());
        }
    }
    return 0;
}

QByteArray clientHeader(int client)
{
    return "X-Client: " + QByteArray::number(client) + "\r\n";
}

QByteArray restartBody(const QString& file, const QByteArray& rows, const QString& state)
{
    QJsonObject body{{QStringLiteral("keyLists"), QJsonObject{{file, QString::fromUtf8(rows)}}}};
    if (!state.isEmpty()) {
        body.insert(QStringLiteral("state"), state);
    }
    return QJsonDocument(body).toJson();
}

} // namespace

/// The routes with a device behind them.
class PanelApiTest : public WebTest
{
    Q_OBJECT

protected Q_SLOTS:
    void init() override;
    void cleanup() override;

private Q_SLOTS:
    void theDeviceIsDescribed();
    void aPressedKeyIsAnnounced();
    void severalClientsPlayTheSameDevice();
    void keysOfAClientThatGoesAreReleased();
    void keysOfAClientThatStopsReadingAreReleased();
    void keysOfOthersStayDown();
    void aParticipantByQueryIsKnown();
    void theKeyListsAreGiven();
    void theDeviceRestartsWithOtherKeyLists();
    void theInstalledKeyListsComeBack();
    void theDeviceRestartsAsAnotherModel();
    void faultyStatementsAreExplained();
    void theRecordingIsAScript();
    void theFormerRecordingIsAScriptOnceThereIsOne();
    void aRecordingThatNoScriptCanTellIsExplained();
    void aScriptIsReplayedAndJudged();
    void aReplayIsStopped();
    void theCardIsGiven();
    void theCardFollowsTheKeyLists();
    void mistakesInTheKeyListsAreNamed();
    void keysAreAskedAboutAndNotPressed();
    void theCardIsGivenInBraille();
    void theSessionGoesOnWhileACardIsMade();
    void restartsThatCannotBeAreExplained_data();
    void restartsThatCannotBeAreExplained();
    void theEndOfTheDaemonIsReported();
    void noEntryIsLostAndNoneComesTwice();

private:
    bool awaitEntry(EventReader& reader, const QJsonObject& pattern) const;
    /// Waits until the device has become ready since the reader came.
    bool awaitReady();
    bool take(const QByteArray& statements, int client = 0) const;

    std::unique_ptr<EventReader> m_reader;
};

void PanelApiTest::init()
{
    WebTest::init();
    session().start();
    WAIT_FOR_EQUAL(session().status(), Session::Status::Ready);
    m_reader = std::make_unique<EventReader>(port());
}

void PanelApiTest::cleanup()
{
    if (QTest::currentTestFailed() && m_reader) {
        const QByteArray seen = m_reader->connection().received();
        qInfo("%s", seen.right(shownOnFailure).constData());
    }
    m_reader.reset();
    WebTest::cleanup();
}

bool PanelApiTest::awaitEntry(EventReader& reader, const QJsonObject& pattern) const
{
    const auto hasCome = [&] {
        const QVector<EventReader::Event> events = reader.events();
        return std::any_of(events.begin() + 1, events.end(), [&](const EventReader::Event& event) {
            return event.name == "entry" && matches(event.data, pattern);
        });
    };
    WAIT_FOR(hasCome() || !reader.connection().isConnected());
    return hasCome();
}

bool PanelApiTest::awaitReady()
{
    return awaitEntry(*m_reader,
                      entryWith(QStringLiteral("device"), QStringLiteral("status"), QStringLiteral("ready")));
}

bool PanelApiTest::take(const QByteArray& statements, int client) const
{
    return post("/api/steps", statements, clientHeader(client)).status == 200;
}

void PanelApiTest::theDeviceIsDescribed()
{
    const QJsonObject device = get("/api/device").json();
    QCOMPARE(device.value(QStringLiteral("status")).toString(), QStringLiteral("ready"));
    QCOMPARE(device.value(QStringLiteral("model")).toString(), QStringLiteral("Pellit"));
    QCOMPARE(device.value(QStringLiteral("state")).toString(), QStringLiteral("Idle"));
    QCOMPARE(device, SessionJson::description(session()));
}

void PanelApiTest::aPressedKeyIsAnnounced()
{
    QVERIFY(take("tap Menu"));
    QVERIFY(awaitEntry(*m_reader, keyEntry(QStringLiteral("Menu"), 1)));
    QVERIFY(awaitEntry(*m_reader, keyEntry(QStringLiteral("Menu"), 0)));
    QVERIFY(awaitEntry(*m_reader, entryWith(QStringLiteral("announcement"), QStringLiteral("observation"),
                                            QStringLiteral("announce SingleKey UserMenu - Menu"))));
}

void PanelApiTest::severalClientsPlayTheSameDevice()
{
    EventReader other(port());
    QVERIFY(take("tap Up", m_reader->client()));
    QVERIFY(take("tap Down", other.client()));
    for (EventReader* reader : {m_reader.get(), &other}) {
        QVERIFY(awaitEntry(*reader, keyEntry(QStringLiteral("Up"), 1)));
        QVERIFY(awaitEntry(*reader, keyEntry(QStringLiteral("Down"), 0)));
    }
    WAIT_FOR_EQUAL(m_reader->entryIds(), other.entryIds());
}

void PanelApiTest::keysOfAClientThatGoesAreReleased()
{
    EventReader other(port());
    QVERIFY(take("press Function\npress Up", other.client()));
    QVERIFY(awaitEntry(*m_reader, keyEntry(QStringLiteral("Up"), 2)));
    other.connection().disconnect();
    QVERIFY(awaitEntry(*m_reader, keyEntry(QStringLiteral("Up"), 0)));
    QVERIFY(awaitEntry(*m_reader, keyEntry(QStringLiteral("Function"), 0)));
}

void PanelApiTest::keysOfAClientThatStopsReadingAreReleased()
{
    EventReader other(port());
    QVERIFY(take("press Up", other.client()));
    other.connection().stopReading();
    // More than the buffers between would take; this client reads it.
    for (int number = 1; number <= 80; ++number) {
        addEntry(largeEntryId + number, 256 * 1024);
        QVERIFY(awaitEntry(*m_reader, {{QStringLiteral("id"), largeEntryId + number}}));
    }
    QVERIFY(awaitEntry(*m_reader, keyEntry(QStringLiteral("Up"), 0)));
}

void PanelApiTest::keysOfOthersStayDown()
{
    EventReader other(port());
    QVERIFY(take("press Up", other.client()));
    QVERIFY(take("press Down", m_reader->client()));
    other.connection().disconnect();
    QVERIFY(awaitEntry(*m_reader, keyEntry(QStringLiteral("Up"), 0)));
    QVERIFY(take("tap Ok", m_reader->client()));
    QVERIFY(awaitEntry(*m_reader, keyEntry(QStringLiteral("Ok"), 0)));
    QVERIFY(!m_reader->connection().received().contains(R"("key":"Down","type":"key","value":0})"));
}

void PanelApiTest::aParticipantByQueryIsKnown()
{
    EventReader other(port());
    const QByteArray path = "/api/steps?client=" + QByteArray::number(other.client());
    QCOMPARE(post(path, "press Up").status, 200);
    other.connection().disconnect();
    QVERIFY(awaitEntry(*m_reader, keyEntry(QStringLiteral("Up"), 0)));
    QCOMPARE(post(path, "press Up").status, 400);
}

void PanelApiTest::theKeyListsAreGiven()
{
    const QJsonObject lists = get("/api/key-lists").json();
    QCOMPARE(lists.keys(),
             QStringList({QStringLiteral("longKeyList.json"), QStringLiteral("modifierKeyList.json"),
                          QStringLiteral("shortcutKeyList.json")}));
    for (const QString& name : lists.keys()) {
        QFile file(QStringLiteral(KEYBOARD_HANDLER_DATA_FOLDER "/") + name);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(lists.value(name).toString().toUtf8(), file.readAll());
    }
}

void PanelApiTest::theDeviceRestartsWithOtherKeyLists()
{
    const QByteArray rows = R"({"ShortcutKeys": [{"keys": ["Help", "Up"], "eAction": "PaperStatus",
                                "receiverService": "PrintManager", "validOnState": "Print"}]})";
    const QByteArray body =
        restartBody(QStringLiteral("shortcutKeyList.json"), rows, QStringLiteral("Print"));
    QCOMPARE(post("/api/restart", body).status, 202);
    QVERIFY(awaitReady());
    const QJsonObject lists = get("/api/key-lists").json();
    QVERIFY(
        lists.value(QStringLiteral("shortcutKeyList.json")).toString().contains(QStringLiteral("\"Up\"")));
    QVERIFY(take("press Help\ntap Up\nrelease Help"));
    QVERIFY(awaitEntry(*m_reader, entryWith(QStringLiteral("announcement"), QStringLiteral("action"),
                                            QStringLiteral("PaperStatus"))));
}

void PanelApiTest::theInstalledKeyListsComeBack()
{
    const QJsonObject installed = get("/api/key-lists").json();
    QCOMPARE(post("/api/restart", R"({"keyLists":{"longKeyList.json":"[]"}})").status, 202);
    QVERIFY(get("/api/key-lists").json() != installed);
    QCOMPARE(post("/api/restart", R"({"keyLists":null})").status, 202);
    QCOMPARE(get("/api/key-lists").json(), installed);
    QVERIFY(awaitReady());
}

void PanelApiTest::theDeviceRestartsAsAnotherModel()
{
    QCOMPARE(post("/api/restart", R"({"model":"Orvane","state":"Error"})").status, 202);
    QVERIFY(awaitReady());
    const QJsonObject device = get("/api/device").json();
    QCOMPARE(device.value(QStringLiteral("model")).toString(), QStringLiteral("Orvane"));
    QCOMPARE(device.value(QStringLiteral("state")).toString(), QStringLiteral("Error"));
}

void PanelApiTest::faultyStatementsAreExplained()
{
    const HttpReply reply = post("/api/steps", "tap Up\npress Nothing");
    QCOMPARE(reply.status, 400);
    QCOMPARE(reply.json()
                 .value(QStringLiteral("faults"))
                 .toArray()
                 .at(0)
                 .toObject()
                 .value(QStringLiteral("line"))
                 .toInt(),
             2);
    QVERIFY2(reply.error().contains(QStringLiteral("Nothing")), reply.body.constData());
    QVERIFY(take("tap Menu"));
    QVERIFY(awaitEntry(*m_reader, keyEntry(QStringLiteral("Menu"), 1)));
    // Nothing of the faulty ones was done.
    QVERIFY(!m_reader->connection().received().contains(R"("key":"Up")"));
}

void PanelApiTest::theRecordingIsAScript()
{
    QCOMPARE(post("/api/recording", {}).status, 200);
    QVERIFY(take("tap Menu"));
    QVERIFY(awaitEntry(*m_reader, keyEntry(QStringLiteral("Menu"), 0)));
    const HttpReply reply = get("/api/recording.keys");
    QCOMPARE(reply.status, 200);
    QCOMPARE(reply.headers.value("content-disposition"),
             QByteArray("attachment; filename=\"recording.keys\""));
    const ParsedScript parsed = parseKeyScript(QString::fromUtf8(reply.body));
    QVERIFY2(parsed.faults.isEmpty(), reply.body.constData());
    QCOMPARE(parsed.script.steps.size(), 2);
}

void PanelApiTest::theFormerRecordingIsAScriptOnceThereIsOne()
{
    QCOMPARE(get("/api/former-recording.keys").status, 409);
    QVERIFY(take("tap Menu"));
    QVERIFY(awaitEntry(*m_reader, keyEntry(QStringLiteral("Menu"), 0)));
    QCOMPARE(post("/api/restart", "{}").status, 202);
    QVERIFY(awaitReady());
    const HttpReply reply = get("/api/former-recording.keys");
    QCOMPARE(reply.status, 200);
    QCOMPARE(reply.headers.value("content-disposition"),
             QByteArray("attachment; filename=\"former-recording.keys\""));
    QVERIFY2(reply.body.contains("press Menu"), reply.body.constData());
}

void PanelApiTest::aRecordingThatNoScriptCanTellIsExplained()
{
    const QByteArray rows = R"({"LongKeys": [{"keys": ["Up"], "eAction": "X", "receiverService": "UserMenu",
                                "timeout": "as long as you like", "validOnState": "Idle"}]})";
    QCOMPARE(post("/api/restart", restartBody(QStringLiteral("longKeyList.json"), rows, {})).status, 202);
    QVERIFY(awaitReady());
    const HttpReply reply = get("/api/recording.keys");
    QCOMPARE(reply.status, 409);
    QVERIFY2(reply.error().endsWith('.'), reply.body.constData());
}

void PanelApiTest::aScriptIsReplayedAndJudged()
{
    QCOMPARE(
        post("/api/replay", "tap Menu\nexpect 50 announce SingleKey UserMenu - Menu\nexpect 100 cancel\n")
            .status,
        202);
    QVERIFY(awaitEntry(*m_reader, entryWith(QStringLiteral("replay"), QStringLiteral("status"),
                                            QStringLiteral("finished"))));
    const QJsonObject verdict = m_reader->events().constLast().data;
    QCOMPARE(verdict.value(QStringLiteral("expectations")).toInt(), 2);
    QCOMPARE(verdict.value(QStringLiteral("differences")).toArray().size(), 1);
}

void PanelApiTest::aReplayIsStopped()
{
    QCOMPARE(post("/api/replay", "press Up\nwait 60000\n").status, 202);
    QVERIFY(awaitEntry(*m_reader, keyEntry(QStringLiteral("Up"), 2)));
    QCOMPARE(post("/api/steps", "tap Menu").status, 400);
    QCOMPARE(post("/api/replay/stop", {}).status, 200);
    QVERIFY(awaitEntry(*m_reader, keyEntry(QStringLiteral("Up"), 0)));
    QVERIFY(awaitEntry(
        *m_reader, entryWith(QStringLiteral("replay"), QStringLiteral("status"), QStringLiteral("stopped"))));
    QVERIFY(take("tap Menu"));
}

void PanelApiTest::theCardIsGiven()
{
    const HttpReply reply = get("/api/card");
    QCOMPARE(reply.status, 200);
    QCOMPARE(reply.json().value(QStringLiteral("model")).toString(), QStringLiteral("Pellit"));
    QVERIFY(!reply.json().value(QStringLiteral("states")).toArray().isEmpty());
}

void PanelApiTest::theCardFollowsTheKeyLists()
{
    const auto cardHas = [this](const QString& action) {
        return get("/api/card").body.contains('"' + action.toUtf8() + '"');
    };
    QVERIFY(cardHas("VolumeUp"));
    const QByteArray rows = R"({"ShortcutKeys": [{"keys": ["Up", "Ok"], "eAction": "Ring",
                                "receiverService": "UserMenu", "validOnState": "Idle"}]})";
    QCOMPARE(post("/api/restart", restartBody(QStringLiteral("shortcutKeyList.json"), rows, {})).status, 202);
    QVERIFY(cardHas("Ring"));
    QVERIFY(!cardHas("VolumeUp"));
}

/// The daemon's log says nothing of them.
void PanelApiTest::mistakesInTheKeyListsAreNamed()
{
    const auto idsNow = [this] {
        QStringList ids;
        const QJsonArray findings = get("/api/findings").json().value(QStringLiteral("findings")).toArray();
        for (const QJsonValue& finding : findings) {
            ids.append(finding.toObject().value(QStringLiteral("id")).toString());
        }
        return ids;
    };
    QCOMPARE(idsNow(), QStringList());
    const QByteArray rows =
        R"({"LongKeys": [{"keys": ["Off"], "eAction": "PowerOff", "recieverService": "PrintManager",
                          "timeout": 3000, "validOnState": "Idle"}]})";
    QCOMPARE(post("/api/restart", restartBody(QStringLiteral("longKeyList.json"), rows, {})).status, 202);
    const QStringList ids = idsNow();
    QVERIFY2(ids.contains("member") && ids.contains("long-hold"), qPrintable(ids.join(' ')));
}

void PanelApiTest::keysAreAskedAboutAndNotPressed()
{
    const QByteArray rows = R"({"ShortcutKeys": [{"keys": ["Up", "Down"], "eAction": "Ring",
                                "receiverService": "UserMenu", "validOnState": "Print"}]})";
    QCOMPARE(post("/api/restart", restartBody(QStringLiteral("shortcutKeyList.json"), rows, "Print")).status,
             202);
    QVERIFY(awaitReady());
    const QByteArray body =
        R"({"script": "press Up\nwait 100\ntap Down\nrelease Up", "task": {"kind": "shortcut",
                                "keys": ["Up", "Down"], "action": "Ring", "receivers": ["UserMenu"]}})";
    QVERIFY(post("/api/what", body)
                .json()
                .value(QStringLiteral("text"))
                .toString()
                .contains("Ring, to UserMenu"));
    QVERIFY(post("/api/why", body).body.contains("Ring is announced to UserMenu"));
    QCOMPARE(post("/api/judgement", body).json().value(QStringLiteral("right")).toBool(), true);
    QCOMPARE(post("/api/what", "{}").status, 400);
    QVERIFY(take("tap Menu"));
    QVERIFY(awaitEntry(*m_reader, keyEntry(QStringLiteral("Menu"), 0)));
    QVERIFY(!m_reader->connection().received().contains(R"("key":"Up")"));
}

void PanelApiTest::theCardIsGivenInBraille()
{
    const HttpReply reply = get("/api/card.brf");
    QCOMPARE(reply.status, 200);
    QCOMPARE(reply.headers.value("content-disposition"), QByteArray("attachment; filename=\"key-card.brf\""));
    QVERIFY(reply.body.contains('\f'));
    for (const QByteArray& line : reply.body.split('\n')) {
        QVERIFY2(line.trimmed().size() <= 40, line.constData());
    }
}

void PanelApiTest::theSessionGoesOnWhileACardIsMade()
{
    QByteArray states;
    for (int number = 0; number < 30'000; ++number) {
        states += "S" + QByteArray::number(number) + "|";
    }
    const QByteArray rows = R"({"LongKeys": [{"keys": ["Up"], "eAction": "X", "receiverService": "UserMenu",
                                "timeout": 1000, "validOnState": ")" +
                            states + R"("}]})";
    QCOMPARE(post("/api/restart", restartBody(QStringLiteral("longKeyList.json"), rows, {})).status, 202);
    QVERIFY(awaitReady());
    HttpClient first(port());
    HttpClient second(port());
    // In processor time: how long others keep the processor does not count.
    qint64 longest = 0;
    qint64 turn = processorTime(CLOCK_THREAD_CPUTIME_ID);
    QTimer turns;
    connect(&turns, &QTimer::timeout, this, [&] {
        const qint64 begin = std::exchange(turn, processorTime(CLOCK_THREAD_CPUTIME_ID));
        longest = std::max(longest, turn - begin);
    });
    turns.start(0);
    const qint64 before = processorTime(CLOCK_PROCESS_CPUTIME_ID);
    for (HttpClient* client : {&first, &second}) {
        client->send("GET /api/card.brf HTTP/1.1\r\nHost: 127.0.0.1:" + QByteArray::number(port()) +
                     "\r\n\r\n");
    }
    QVector<HttpReply> replies{first.reply(), second.reply()};
    for (HttpReply& reply : replies) {
        while (reply.status == 503) {
            // The request did not get its turn within the time that the server lets it wait.
            reply = get("/api/card.brf");
        }
    }
    QCOMPARE(replies.first().status, 200);
    QCOMPARE(replies.last().body, replies.first().body);
    const qint64 all = processorTime(CLOCK_PROCESS_CPUTIME_ID) - before;
    QVERIFY2(longest * 4 < all, qPrintable(QStringLiteral("%1 of %2 us").arg(longest).arg(all)));
}

void PanelApiTest::restartsThatCannotBeAreExplained_data()
{
    QTest::addColumn<QByteArray>("body");
    const QByteArray name(500'000, 'x');
    QTest::newRow("model") << R"({"model":")" + name + R"("})";
    QTest::newRow("state") << R"({"state":")" + name + R"("})";
    QTest::newRow("key list") << R"({"keyLists":{")" + name + R"(":"[]"}})";
    QTest::newRow("key list that is not a text") << R"({"keyLists":{")" + name + R"(":1}})";
}

void PanelApiTest::restartsThatCannotBeAreExplained()
{
    QFETCH(QByteArray, body);
    const HttpReply reply = post("/api/restart", body);
    QCOMPARE(reply.status, 400);
    QVERIFY2(reply.error().contains(QStringLiteral("xxx ... ")), reply.body.left(shownOnFailure).constData());
    QVERIFY(reply.error().size() < 500);
}

void PanelApiTest::theEndOfTheDaemonIsReported()
{
    QVERIFY(daemonProcess() > 0);
    QCOMPARE(kill(daemonProcess(), SIGKILL), 0);
    QVERIFY(awaitEntry(
        *m_reader, entryWith(QStringLiteral("device"), QStringLiteral("status"), QStringLiteral("ended"))));
    QVERIFY(m_reader->events().constLast().data.value(QStringLiteral("reason")).toString().endsWith('.'));
    QCOMPARE(post("/api/steps", "tap Up").status, 400);
    QCOMPARE(get("/").status, 200);
    QCOMPARE(post("/api/restart", {}).status, 202);
    QVERIFY(awaitReady());
    QVERIFY(take("tap Up"));
}

void PanelApiTest::noEntryIsLostAndNoneComesTwice()
{
    // Repetitions come all the time, so that each client comes between two entries.
    QVERIFY(take("press Up"));
    std::vector<std::unique_ptr<EventReader>> readers;
    for (int reader = 0; reader < 9; ++reader) {
        readers.push_back(std::make_unique<EventReader>(port()));
    }
    QVERIFY(take("release Up\ntap Ok"));
    for (const auto& reader : readers) {
        QVERIFY(awaitEntry(*reader, keyEntry(QStringLiteral("Ok"), 0)));
        const QJsonArray history =
            reader->events().constFirst().data.value(QStringLiteral("history")).toArray();
        QVector<int> ids;
        for (const QJsonValue& past : history) {
            ids << past.toObject().value(QStringLiteral("id")).toInt();
        }
        ids += reader->entryIds();
        QVector<int> all(ids.constLast());
        std::iota(all.begin(), all.end(), 1);
        QCOMPARE(ids, all);
    }
}

QTEST_GUILESS_MAIN(PanelApiTest)
#include "PanelApiTest.moc"
