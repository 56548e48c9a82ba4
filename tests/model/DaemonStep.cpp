// SPDX-License-Identifier: MIT
// Compiled with access to private members, to set and read the state of the daemon's classes.
#include "tests/model/DaemonStep.h"

#include "device/SpeechFeedback.h"
#include "device/StateHandler.h"
#include "input/KeyboardManager.h"
#include "keys/LongKey.h"
#include "keys/ModifierKey.h"
#include "keys/ShortcutKey.h"
#include "service/KeyboardHandler.h"
#include "tests/fakes/FakeStateHandler.h"
#include "tests/model/ListMaps.h"
#include "tests/virtual/MapReader.h"

#include <ls/Identifiers.h>
#include <ls/MessageKeys.h>
#include <speech/Speech.h>
#include <vantre/Singleton.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>

#include <cstdio>

#include <linux/input.h>

using namespace model;

namespace {

QStringList* g_log = nullptr;

void recordLogLine(QtMsgType type, const QMessageLogContext&, const QString& text)
{
    if (type == QtFatalMsg) {
        std::fprintf(stderr, "%s\n", qPrintable(text));
    } else if (g_log) {
        g_log->append(QStringLiteral("log ") + text.trimmed());
    }
}

QString textOf(const QVariantMap& notification)
{
    QStringList words{QStringLiteral("announce"), notification.value(ls::actionIdKey).toString(),
                      notification.value(ls::receiverIdKey).toString()};
    for (const QString& key : {ls::firstKeyKey, ls::secondKeyKey}) {
        if (notification.contains(key)) {
            words.append(notification.value(key).toString());
        }
    }
    return words.join(QLatin1Char(' '));
}

QString textOfSpeech(const QVariantMap& request)
{
    static const QStringList files{QStringLiteral("EmbosserCore"), QStringLiteral("EmbosserError"),
                                   QStringLiteral("EmbosserMenu")};
    return QStringLiteral("speak %1 %2")
        .arg(files.value(request.value(QStringLiteral("serviceId")).toInt()),
             request.value(QStringLiteral("sentenceId")).toString());
}

void setRunning(QTimer& timer, bool runs, int milliseconds)
{
    if (runs) {
        timer.start(milliseconds);
    } else {
        timer.stop();
    }
}

/// As the event loop does.
void expire(QTimer& timer)
{
    QTimerEvent event(timer.timerId());
    QCoreApplication::sendEvent(&timer, &event);
}

void setModel(bool isOrvane)
{
    const QString folder = QStringLiteral("/var/lib/configuration-manager");
    QDir().mkpath(folder);
    QFile file(folder + QStringLiteral("/configuration.json"));
    if (!file.open(QIODevice::WriteOnly) ||
        file.write(isOrvane ? R"({"model": "Orvane"})" : R"({"model": "Pellit"})") == -1) {
        qFatal("cannot write %s", qPrintable(file.fileName()));
    }
}

qint32 recordValue(Input::Kind kind)
{
    return kind == Input::Kind::Press ? 1 : kind == Input::Kind::Release ? 0 : 2;
}

} // namespace

class DaemonStep::Daemon
{
public:
    explicit Daemon(const KeyLists& lists);
    ~Daemon();

    void put(const Situation& situation, quint32 variant);
    void take(Input input);
    Situation situation() const;

    QString armedAction() const { return m_longKey.m_current.eAction(); }

    QStringList outputs;

private:
    QStringList sequenceOf(quint32 length, quint32 variant) const;
    quint32 lengthOf(const QStringList& keys) const;

    KeyLists m_lists;
    MapReader m_reader;
    KeyboardHandler m_handler{nullptr};
    ModifierKey m_modifierKey{m_reader, nullptr};
    ShortcutKey m_shortcutKey{m_reader, nullptr};
    LongKey m_longKey{m_reader, nullptr};
    StateHandler m_stateHandler{nullptr};
    std::unique_ptr<KeyboardManager> m_manager;
    QStringList m_sequence; // the keys of the first row of three and more keys
};

DaemonStep::Daemon::Daemon(const KeyLists& lists) : m_lists(lists), m_reader(ListMaps::mapOf(lists))
{
    qInstallMessageHandler(recordLogLine);
    setModel(lists.isOrvane);
    FakeStateHandler::setState(ls::StateId::Idle);
    m_manager =
        std::make_unique<KeyboardManager>(m_modifierKey, m_shortcutKey, m_longKey, m_stateHandler, m_handler);
    for (const KeyEntry& row : lists.combinations) {
        if (m_sequence.isEmpty() && row.isSequence()) {
            m_sequence = row.keys();
        }
    }
    using detail::SpeechFeedback;
    auto* speech = libvantre::Singleton<SpeechFeedback>::instance();
    // Only the requests matter; queued calls to the speech daemon would pile up.
    QObject::disconnect(speech, nullptr, libvantre::Singleton<libspeech::detail::Speech>::instance(),
                        nullptr);
    QObject::connect(speech, &SpeechFeedback::speakAsync, &m_handler,
                     [this](const QVariantMap& request) { outputs.append(textOfSpeech(request)); });
    QObject::connect(speech, &SpeechFeedback::cancelAsync, &m_handler,
                     [this] { outputs.append(QStringLiteral("cancel")); });
    QObject::connect(&m_handler, &KeyboardHandler::notification, &m_handler,
                     [this](const QVariantMap& map) { outputs.append(textOf(map)); });
    g_log = &outputs;
}

DaemonStep::Daemon::~Daemon()
{
    qInstallMessageHandler(nullptr);
    g_log = nullptr;
}

void DaemonStep::Daemon::put(const Situation& situation, quint32 variant)
{
    KeyboardManager& manager = *m_manager;
    manager.m_currentState = Alphabet::nameOf(situation.state);
    manager.m_lastKey = Alphabet::nameOf(situation.lastKey);
    manager.m_gestureSeen = situation.gestureSeen;
    manager.m_testMode = situation.testMode;
    m_shortcutKey.m_heldKey = Alphabet::nameOf(situation.heldKey);
    m_modifierKey.m_firstKey = Alphabet::nameOf(situation.firstKey);
    m_modifierKey.m_pressedKeys = sequenceOf(situation.sequence, variant);
    m_longKey.m_current.clear();
    for (const KeyEntry& row : qAsConst(m_lists.longPresses)) {
        // A row remains there after its time has expired.
        if (situation.longPressRuns ? row.firstKey() == Alphabet::nameOf(situation.armedKey) : variant % 2) {
            m_longKey.m_current = row;
        }
    }
    setRunning(m_longKey.m_timer, situation.longPressRuns, qMax(0, m_longKey.m_current.timeout()));
    setRunning(manager.m_singleKeyTimer, situation.windowRuns, manager.m_singleKeyTimer.interval());
    setRunning(manager.m_factoryResetTimer, situation.factoryResetRuns,
               manager.m_factoryResetTimer.interval());
    outputs.clear();
}

void DaemonStep::Daemon::take(Input input)
{
    const QString key = Alphabet::nameOf(input.isExpiry() ? Key::None : input.key());
    switch (input.kind) {
    case Input::Kind::Press:
    case Input::Kind::Release:
    case Input::Kind::Repeat: {
        input_event record{};
        record.type = EV_KEY;
        record.code = Alphabet::codeOf(input.key());
        record.value = recordValue(input.kind);
        return m_manager->onKeyEvent(ls::KeyEvent(record));
    }
    case Input::Kind::WindowEnd:
        return expire(m_manager->m_singleKeyTimer);
    case Input::Kind::LongPressTime:
        return expire(m_longKey.m_timer);
    case Input::Kind::FactoryResetTime:
        return expire(m_manager->m_factoryResetTimer);
    case Input::Kind::ChangeState:
        return FakeStateHandler::announce(Alphabet::nameOf(input.newState()));
    case Input::Kind::StartTest:
        return m_manager->startTestMode();
    case Input::Kind::SimulateCombination:
        m_manager->simulateModifier({key});
        return;
    case Input::Kind::SimulateShortcut:
        m_manager->simulateShortcut({key});
        return;
    case Input::Kind::Tick:
        return;
    }
}

Situation DaemonStep::Daemon::situation() const
{
    const KeyboardManager& manager = *m_manager;
    Situation situation;
    situation.state = *Alphabet::stateOf(manager.m_currentState);
    situation.lastKey = *Alphabet::keyOf(manager.m_lastKey);
    situation.heldKey = *Alphabet::keyOf(m_shortcutKey.m_heldKey);
    situation.firstKey = *Alphabet::keyOf(m_modifierKey.m_firstKey);
    situation.sequence = lengthOf(m_modifierKey.m_pressedKeys);
    situation.longPressRuns = m_longKey.m_timer.isActive();
    situation.armedKey =
        situation.longPressRuns ? *Alphabet::keyOf(m_longKey.m_current.firstKey()) : Key::None;
    situation.windowRuns = manager.m_singleKeyTimer.isActive();
    situation.factoryResetRuns = manager.m_factoryResetTimer.isActive();
    situation.gestureSeen = manager.m_gestureSeen;
    situation.testMode = manager.m_testMode;
    return situation;
}

/// A dead sequence consists of correct keys, a wrong key, and any further keys, up to one more than the
/// longest row has.
QStringList DaemonStep::Daemon::sequenceOf(quint32 length, quint32 variant) const
{
    if (length != Situation::dead) {
        return m_sequence.mid(0, static_cast<int>(length));
    }
    const int limit = m_modifierKey.m_maxKeyCount + 1;
    const int right = static_cast<int>(variant % static_cast<quint32>(m_sequence.size()));
    QStringList keys = m_sequence.mid(0, right);
    const auto anyKey = [&](int i) {
        const int index = static_cast<int>(variant / 7 % 1000) + i;
        return Alphabet::nameOf(Alphabet::keys().at(index % Alphabet::keys().size()));
    };
    keys.append(anyKey(0) == m_sequence.at(right) ? anyKey(1) : anyKey(0));
    const int size = right + 1 + static_cast<int>(variant / 11) % (limit - right);
    for (int i = 2; keys.size() < size; ++i) {
        keys.append(anyKey(i * i));
    }
    return keys;
}

quint32 DaemonStep::Daemon::lengthOf(const QStringList& keys) const
{
    if (m_sequence.isEmpty()) {
        return 0;
    }
    return keys == m_sequence.mid(0, keys.size()) ? static_cast<quint32>(keys.size()) : Situation::dead;
}

DaemonStep::DaemonStep(const KeyLists& lists) : m_daemon(std::make_unique<Daemon>(lists)) {}

DaemonStep::~DaemonStep() = default;

DaemonStep::Result DaemonStep::step(const Situation& situation, Input input, quint32 variant)
{
    m_daemon->put(situation, variant);
    m_daemon->take(input);
    return {m_daemon->situation(), m_daemon->armedAction(), m_daemon->outputs};
}
