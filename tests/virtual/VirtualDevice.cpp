// SPDX-License-Identifier: MIT
#include "tests/virtual/VirtualDevice.h"

#include "console/Console.h"
#include "service/KeyboardHandler.h"
#include "simulator/script/KeyListJson.h"
#include "simulator/script/ObservationText.h"
#include "tests/fakes/FakeSpeech.h"
#include "tests/fakes/FakeStateHandler.h"
#include "vocabulary/Vocabulary.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>

#include <algorithm>
#include <cstdio>
#include <functional>

#include <sys/stat.h>
#include <unistd.h>

using namespace std::chrono_literals;

namespace {

const QStringList inputNodes{QStringLiteral("/dev/input/event0"), QStringLiteral("/dev/input/event1")};
const QStringList keyListFiles{vocabulary::longKeyListFile, vocabulary::modifierKeyListFile,
                               vocabulary::shortcutKeyListFile};
constexpr int inputChunk = 4096; // fits into a pipe
const QString modelFolder = QStringLiteral("/var/lib/configuration-manager");
std::function<void(const QString&)> g_onLogLine;

void recordLogLine(QtMsgType type, const QMessageLogContext&, const QString& text)
{
    if (type == QtFatalMsg) {
        std::fprintf(stderr, "%s\n", qPrintable(text));
    } else if (g_onLogLine) {
        g_onLogLine(text);
    }
}

void writeFile(const QString& path, const QByteArray& content)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size()) {
        qFatal("cannot write %s", qPrintable(path));
    }
}

} // namespace

VirtualTimeDispatcher& VirtualDevice::clock()
{
    static auto* dispatcher = [] {
        auto* made = new VirtualTimeDispatcher;
        QCoreApplication::setEventDispatcher(made);
        static int argc = 1;
        static char name[] = "test";
        static char* argv[] = {name, nullptr};
        static QCoreApplication application(argc, argv);
        return made;
    }();
    return *dispatcher;
}

VirtualDevice::VirtualDevice()
{
    clock();
    for (int i = 0; i < inputNodes.size(); ++i) {
        ::unlink(qPrintable(inputNodes.at(i)));
        ::mkfifo(qPrintable(inputNodes.at(i)), 0600);
        m_panel.open(i, inputNodes.at(i));
    }
    int ends[2];
    if (::pipe(ends) != 0) {
        qFatal("no pipe");
    }
    ::dup2(ends[0], STDIN_FILENO);
    ::close(ends[0]);
    m_input = ends[1];

    QDir(vocabulary::dataDirectory).removeRecursively();
    QDir().mkpath(vocabulary::dataDirectory);
    for (const QString& name : keyListFiles) {
        QFile::copy(QStringLiteral(KEY_LISTS "/") + name,
                    vocabulary::dataDirectory + QLatin1Char('/') + name);
    }
    QDir().mkpath(modelFolder);
    setModel(QStringLiteral("Pellit"));
}

VirtualDevice::~VirtualDevice()
{
    clock().settle(); // delivers pending calls of this device to the fakes
    g_onLogLine = nullptr;
    qInstallMessageHandler(nullptr);
    FakeSpeech::onSpeak([](const QVariantMap&) {});
    FakeSpeech::onCancel([] {});
    ::close(m_input);
}

void VirtualDevice::setModel(const QString& model)
{
    writeFile(modelFolder + QStringLiteral("/configuration.json"), "{\"model\": \"" + model.toUtf8() + "\"}");
}

void VirtualDevice::setKeyList(const QString& fileName, const QByteArray& content)
{
    writeFile(vocabulary::dataDirectory + QLatin1Char('/') + fileName, content);
}

void VirtualDevice::removeKeyLists()
{
    QDir(vocabulary::dataDirectory).removeRecursively();
}

void VirtualDevice::setRows(const QVector<KeyRow>& rows)
{
    KeyScript script;
    script.rows = rows;
    const auto lists = KeyListJson::filesOf(script);
    for (auto it = lists.cbegin(); it != lists.cend(); ++it) {
        setKeyList(it.key(), it.value());
    }
}

void VirtualDevice::start(const QString& state)
{
    FakeStateHandler::setState(state);
    FakeSpeech::onSpeak([this](const QVariantMap& request) { observe(ObservationText::speech(request)); });
    FakeSpeech::onCancel([this] { observe(ObservationText::cancellation()); });
    g_onLogLine = [this](const QString& text) { observe(ObservationText::logLine(text)); };
    qInstallMessageHandler(recordLogLine);

    m_startTime = clock().now();
    m_handler = new KeyboardHandler(&m_root);
    connect(m_handler, &KeyboardHandler::notification, this,
            [this](const QVariantMap& map) { observe(ObservationText::announcement(map)); });
    new Console(m_handler);
    m_handler->init();
}

void VirtualDevice::press(int keyboard, const QString& key)
{
    m_panel.press(keyboard, key);
    clock().settle();
}

void VirtualDevice::release(int keyboard, const QString& key)
{
    m_panel.release(keyboard, key);
    clock().settle();
}

void VirtualDevice::record(int keyboard, const RawRecord& record)
{
    m_panel.record(keyboard, record);
    clock().settle();
}

void VirtualDevice::setState(const QString& state)
{
    FakeStateHandler::announce(state);
    clock().settle();
}

void VirtualDevice::setService(const ServiceChange& change)
{
    qFatal("The virtual device cannot stop the service %s.", qPrintable(change.service));
}

void VirtualDevice::sendCommand(const QVariantMap& command)
{
    process(command);
}

void VirtualDevice::typeLine(const QString& line)
{
    const QByteArray bytes = line.toUtf8() + '\n';
    for (int i = 0; i < bytes.size(); i += inputChunk) {
        const QByteArray chunk = bytes.mid(i, inputChunk);
        if (::write(m_input, chunk.constData(), static_cast<size_t>(chunk.size())) != chunk.size()) {
            qFatal("cannot write console input");
        }
        clock().settle();
    }
}

void VirtualDevice::tap(const QString& key)
{
    press(key);
    release(key);
}

void VirtualDevice::hold(const QString& key, std::chrono::milliseconds duration)
{
    press(key);
    wait(duration);
    release(key);
}

void VirtualDevice::wait(std::chrono::milliseconds duration)
{
    clock().advance(duration);
}

void VirtualDevice::waitUntil(std::chrono::milliseconds time)
{
    wait(std::max(0ms, m_startTime + time - clock().now()));
}

QVariantMap VirtualDevice::process(const QVariantMap& command)
{
    const QVariantMap response = m_handler->process(command);
    observe(ObservationText::answer(response));
    clock().settle();
    return response;
}

Observations VirtualDevice::takeObservations()
{
    return std::exchange(m_observations, {});
}

QStringList VirtualDevice::take()
{
    QStringList texts;
    const Observations observations = takeObservations();
    for (const Observation& observation : observations) {
        texts.append(observation.text);
    }
    return texts;
}

QStringList VirtualDevice::takeActions()
{
    QStringList texts = take();
    texts.erase(std::remove_if(texts.begin(), texts.end(), ObservationText::isLogLine), texts.end());
    return texts;
}

void VirtualDevice::observe(const QString& text)
{
    m_observations.append({clock().now() - m_startTime, text});
}
