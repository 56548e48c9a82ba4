// SPDX-License-Identifier: MIT
#include "tests/whole/fuzz/FuzzedDaemon.h"

#include "console/Console.h"
#include "service/KeyboardHandler.h"
#include "tests/fakes/FakeSpeech.h"
#include "tests/whole/fuzz/Log.h"
#include "vocabulary/Vocabulary.h"

#include <ls/DBusService.h>
#include <ls/DBusServiceStore.h>
#include <ls/Identifiers.h>
#include <ls/MessageKeys.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace std::chrono_literals;

namespace {

constexpr char firstNode[] = "/dev/input/event0";
constexpr char secondNode[] = "/dev/input/event1";
constexpr int chunk = 4096; // fits into an empty pipe
constexpr auto loneKeyTime = 1500ms;

VirtualTimeDispatcher& makeClock()
{
    auto* dispatcher = new VirtualTimeDispatcher;
    QCoreApplication::setEventDispatcher(dispatcher);
    static int argc = 1;
    static char name[] = "fuzz";
    static char* argv[] = {name, nullptr};
    static auto* const application = new QCoreApplication(argc, argv);
    Q_UNUSED(application)
    return *dispatcher;
}

/// A FIFO at `path`, open for writing.
int makeNode(const char* path)
{
    ::unlink(path);
    if (::mkfifo(path, 0600) != 0) {
        qFatal("%s cannot be created: run this program in a private root", path);
    }
    return ::open(path, O_RDWR | O_NONBLOCK | O_CLOEXEC);
}

/// A pipe as standard input; returns its other end.
int makeInput()
{
    int ends[2];
    if (::pipe(ends) != 0) {
        qFatal("no pipe");
    }
    ::dup2(ends[0], STDIN_FILENO);
    ::close(ends[0]);
    return ends[1];
}

/// Creates one file with links from the names of the three lists.
int makeLists()
{
    const QDir folder(vocabulary::dataDirectory);
    folder.mkpath(QStringLiteral("."));
    const QString content = folder.filePath(QStringLiteral("lists.json"));
    for (const QString& name :
         {vocabulary::longKeyListFile, vocabulary::modifierKeyListFile, vocabulary::shortcutKeyListFile}) {
        QFile::remove(folder.filePath(name));
        QFile::link(content, folder.filePath(name));
    }
    return ::open(qPrintable(content), O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
}

quint16 codeOf(const QString& key)
{
    return static_cast<quint16>(ls::KeyId::meta.value(key));
}

void writeAll(int fd, const QByteArray& bytes, VirtualTimeDispatcher& clock)
{
    for (int i = 0; i < bytes.size(); i += chunk) {
        const QByteArray part = bytes.mid(i, chunk);
        if (::write(fd, part.constData(), static_cast<size_t>(part.size())) != part.size()) {
            qFatal("a pipe cannot be written");
        }
        clock.settle();
    }
}

} // namespace

FuzzedDaemon::FuzzedDaemon()
    : m_clock(makeClock())
    , m_devices{makeNode(firstNode), makeNode(secondNode)}
    , m_input(makeInput())
    , m_lists(makeLists())
{
    Log::capture();
    FakeSpeech::onSpeak([this](const QVariantMap&) { ++m_sentences; });
}

FuzzedDaemon::~FuzzedDaemon() = default;

void FuzzedDaemon::setKeyLists(const QByteArray& content)
{
    const auto size = static_cast<size_t>(content.size());
    if (::ftruncate(m_lists, 0) != 0 || ::pwrite(m_lists, content.constData(), size, 0) != content.size()) {
        qFatal("the key lists cannot be written");
    }
}

void FuzzedDaemon::setRichKeyLists()
{
    QFile lists(QStringLiteral(RICH_KEY_LISTS));
    if (!lists.open(QIODevice::ReadOnly)) {
        qFatal("%s cannot be read", RICH_KEY_LISTS);
    }
    setKeyLists(lists.readAll());
}

void FuzzedDaemon::start()
{
    m_root = std::make_unique<QObject>();
    m_handler = new KeyboardHandler(m_root.get());
    connect(m_handler, &KeyboardHandler::notification, this,
            [this](const QVariantMap& map) { m_announcements.append(map); });
    new Console(m_handler);
    m_handler->init();
}

void FuzzedDaemon::stop()
{
    m_root.reset();
    settle();
    takeAnnouncements();
    takeSentences();
}

QByteArray FuzzedDaemon::recordOf(quint16 type, quint16 code, qint32 value)
{
    input_event record{};
    record.type = type;
    record.code = code;
    record.value = value;
    return QByteArray(reinterpret_cast<const char*>(&record), sizeof record);
}

void FuzzedDaemon::write(int device, const QByteArray& bytes)
{
    writeAll(m_devices.at(static_cast<size_t>(device)), bytes, m_clock);
}

void FuzzedDaemon::record(int device, quint16 type, quint16 code, qint32 value)
{
    write(device, recordOf(type, code, value));
}

void FuzzedDaemon::press(const QString& key)
{
    record(0, EV_KEY, codeOf(key), 1);
}

void FuzzedDaemon::release(const QString& key)
{
    record(0, EV_KEY, codeOf(key), 0);
}

void FuzzedDaemon::type(const QByteArray& bytes)
{
    writeAll(m_input, bytes, m_clock);
}

void FuzzedDaemon::setState(const QString& state)
{
    notify({{ls::notificationIdKey, ls::StateHandlerNotifId::StateChange},
            {ls::actionIdKey, ls::StateHandlerNotifId::StateChange},
            {ls::senderIdKey, ls::ServiceId::StateHandler},
            {ls::stateIdKey, state}});
}

void FuzzedDaemon::notify(const QVariantMap& notification)
{
    Q_EMIT ls::DBusServiceStore::instance()
        ->getService(ls::ServiceId::StateHandler)
        ->notification(notification);
    settle();
}

QVariantMap FuzzedDaemon::process(const QVariantMap& command)
{
    const QVariantMap response = m_handler->process(command);
    settle();
    return response;
}

void FuzzedDaemon::waitForQuiet()
{
    wait(1h);
}

void FuzzedDaemon::requireThatItWorks()
{
    resetKeys();
    requireLoneKey();
}

void FuzzedDaemon::resetKeys()
{
    waitForQuiet();
    setState(ls::StateId::Error);
    press(ls::KeyId::Ten); // ends a keyboard test
    release(ls::KeyId::Ten);
    process({{ls::commandIdKey, ls::KeyboardHandlerCmdId::GetTestResult},
             {ls::senderIdKey, ls::ServiceId::KeyboardHandler}});
    setState(ls::StateId::Idle);
    waitForQuiet();
    Log::require(m_clock.timerCount() == 0, "no timer is left running");
    takeAnnouncements();
    takeSentences();
}

void FuzzedDaemon::requireLoneKey()
{
    press(ls::KeyId::Up);
    release(ls::KeyId::Up);
    wait(loneKeyTime - 1ms);
    Log::require(m_announcements.isEmpty(), "a lone key is not announced before its time");
    wait(1ms);
    Log::require(m_announcements.size() == 1, "a lone key is announced at its time");
    waitForQuiet();
    const QVector<QVariantMap> announcements = takeAnnouncements();
    Log::require(announcements.size() == 1, "a lone key is announced once");
    Log::require(announcements.constFirst() ==
                     QVariantMap{{ls::notificationIdKey, ls::KeyboardHandlerNotifId::KeyboardChange},
                                 {ls::actionIdKey, ls::KeyboardActionId::SingleKey},
                                 {ls::senderIdKey, ls::ServiceId::KeyboardHandler},
                                 {ls::receiverIdKey, ls::ServiceId::UserMenu},
                                 {ls::firstKeyKey, ls::KeyId::Up}},
                 "a lone key is announced as itself");
    Log::require(takeSentences() == 1, "a lone key is spoken once");
    Log::require(m_clock.timerCount() == 0, "no timer is left running");
}
