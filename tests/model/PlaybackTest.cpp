// SPDX-License-Identifier: MIT
#include "model/Playback.h"
#include "model/KeyFacts.h"
#include "simulator/script/KeyScriptText.h"
#include "tests/model/ListMaps.h"
#include "tests/support/Seeds.h"
#include "tests/virtual/DeviceTest.h"
#include "tests/whole/random/Player.h"
#include "tests/whole/random/RandomScript.h"

#include <QDir>

#include <algorithm>

#include <linux/input-event-codes.h>

namespace {

constexpr int seedCount = 150;
constexpr const char* seedsVariable = "KEY_SCRIPT_SEEDS";

/// The key of a record; all codes without an identifier are "Undefined".
model::Key keyOf(int code)
{
    return *model::Alphabet::keyOf(ls::KeyId::meta.key(code, QStringLiteral("Undefined")));
}

/// Plays the steps of a key script on the model.
class ModelPlayer
{
public:
    explicit ModelPlayer(const KeyScript& script)
        : m_lists(script.rows.isEmpty() ? ListMaps::installed(script.model == "Orvane")
                                        : ListMaps::ofRows(script.rows, script.model == "Orvane"))
        , m_model(m_lists)
        , m_playback(m_model, model::Alphabet::stateOf(script.initialState).value_or(model::State::Undefined))
    {
        for (const ScriptStep& step : script.steps) {
            m_playback.wait(step.at - m_playback.now());
            take(step);
        }
    }

    void waitUntil(std::chrono::milliseconds time) { m_playback.wait(time - m_playback.now()); }
    /// Without the senders of announcements.
    QStringList observations() const;

private:
    void take(const ScriptStep& step);
    void take(const RawRecord& record, int device);
    void take(const QVariantMap& command);

    model::KeyLists m_lists;
    model::KeyModel m_model;
    model::Playback m_playback;
};

void ModelPlayer::take(const ScriptStep& step)
{
    switch (step.kind) {
    case ScriptStep::Kind::Press:
        return m_playback.press(*model::Alphabet::keyOf(step.text), step.keyboard);
    case ScriptStep::Kind::Release:
        return m_playback.release(*model::Alphabet::keyOf(step.text), step.keyboard);
    case ScriptStep::Kind::Record:
        return take(step.record, step.keyboard);
    case ScriptStep::Kind::State:
        if (const auto state = model::Alphabet::stateOf(step.text)) {
            m_playback.take(model::Input::state(*state));
        }
        return;
    case ScriptStep::Kind::Command:
        return take(step.command);
    default:
        return;
    }
}

void ModelPlayer::take(const RawRecord& record, int device)
{
    using Kind = model::Input::Kind;
    static const QMap<int, Kind> kinds{{0, Kind::Release}, {1, Kind::Press}, {2, Kind::Repeat}};
    if (record.type == EV_KEY && kinds.contains(record.value)) {
        m_playback.take(model::Input::of(kinds.value(record.value), keyOf(record.code), device));
    }
}

void ModelPlayer::take(const QVariantMap& command)
{
    using Kind = model::Input::Kind;
    const QString name = command.value(ls::commandIdKey).toString();
    const QString sender = command.value(ls::senderIdKey).toString();
    if (!ls::ServiceId::meta.contains(sender)) {
        return;
    }
    const auto isKey = [](const QString& key) { return ls::KeyId::meta.contains(key); };
    const QString action = command.value(ls::actionIdKey).toString();
    const QString key = command.value(ls::keyKey).toString();
    const QStringList keys = command.value(ls::keysListKey).toStringList();
    if (name == ls::KeyboardHandlerCmdId::StartTestMode) {
        m_playback.take(model::Input::of(Kind::StartTest));
    } else if (name == ls::KeyboardHandlerCmdId::SimulateKey && isKey(key)) {
        take({EV_KEY, static_cast<quint16>(ls::KeyId::meta.value(key)),
              ls::KeyActionId::meta.value(action, -1)},
             0);
    } else if (std::all_of(keys.begin(), keys.end(), isKey)) {
        for (const QString& each : keys) {
            if (name == ls::KeyboardHandlerCmdId::SimulateModifier) {
                m_playback.take(model::Input::of(Kind::SimulateCombination, *model::Alphabet::keyOf(each)));
            } else if (name == ls::KeyboardHandlerCmdId::SimulateShortcut) {
                m_playback.take(model::Input::of(Kind::SimulateShortcut, *model::Alphabet::keyOf(each)));
            }
        }
    }
}

QString withoutSender(const QString& announcement)
{
    QStringList words = announcement.split(QLatin1Char(' '));
    words.removeAt(3);
    return words.join(QLatin1Char(' '));
}

QStringList ModelPlayer::observations() const
{
    QStringList texts;
    for (const model::PlayedStep& step : m_playback.steps()) {
        for (const model::Output& output : step.outputs) {
            const QString text = output.toText({});
            texts.append(QString::number(step.at.count()) + ' ' +
                         (output.kind == model::Output::Kind::Announce ? withoutSender(text) : text));
        }
    }
    return texts;
}

/// What the daemon did, without what is not part of the model: senders of announcements, answers to commands,
/// and log lines but those about actions.
QStringList observationsOf(const Play& play)
{
    QStringList texts;
    for (const PlayEvent& event : play.events) {
        const bool isAnnouncement = event.text.startsWith("announce ");
        const bool isKnown = isAnnouncement || event.text.startsWith("speak ") || event.text == "cancel" ||
                             event.text.startsWith("log KeyboardManager::onEvent WARN:");
        if (isKnown) {
            texts.append(QString::number(event.at.count()) + ' ' +
                         (isAnnouncement ? withoutSender(event.text) : event.text));
        }
    }
    return texts;
}

/// Speech passes the event loop, so it is compared separately.
QStringList speechOf(const QStringList& texts, bool isSpeech)
{
    QStringList chosen;
    std::copy_if(texts.begin(), texts.end(), std::back_inserter(chosen), [isSpeech](const QString& text) {
        return (text.contains(" speak ") || text.endsWith(" cancel")) == isSpeech;
    });
    return chosen;
}

void compare(const KeyScript& script)
{
    ModelPlayer player(script);
    player.waitUntil(script.end);
    const QStringList expected = observationsOf(Player::play(script));
    const QStringList actual = player.observations();
    for (const bool isSpeech : {false, true}) {
        QCOMPARE(speechOf(actual, isSpeech), speechOf(expected, isSpeech));
    }
}

} // namespace

/// Plays key scripts on the model and on the daemon's classes and compares the outcomes to the millisecond.
class PlaybackTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void goldenScriptGoesAsOnTheDaemon_data();
    void goldenScriptGoesAsOnTheDaemon();
    void randomScriptsGoAsOnTheDaemon();
    void shortcutIsCausedByThePressThatOpenedIt();
    void silencedNameIsCausedByTheGestureBefore();
    void usedUpKeyIsCausedByTheLastGesture();
};

void PlaybackTest::goldenScriptGoesAsOnTheDaemon_data()
{
    QTest::addColumn<QString>("path");
    const QFileInfoList scripts = QDir(GOLDEN_SCRIPTS).entryInfoList({"*.keys"}, QDir::Files, QDir::Name);
    for (const QFileInfo& script : scripts) {
        QTest::newRow(qPrintable(script.completeBaseName())) << script.filePath();
    }
}

void PlaybackTest::goldenScriptGoesAsOnTheDaemon()
{
    QFETCH(QString, path);
    KeyScript script = loadKeyScript(path).script;
    script.end += 10s;
    compare(script);
}

void PlaybackTest::randomScriptsGoAsOnTheDaemon()
{
    const Seeds seeds = chosenSeeds(seedsVariable, {1, seedCount}).value_or(Seeds{0, 0});
    QVERIFY(seeds.count > 0);
    for (int i = 0; i < seeds.count && !QTest::currentTestFailed(); ++i) {
        KeyScript script = RandomScript::roll(seeds.first + static_cast<quint64>(i));
        // The console is not part of the model.
        script.steps.erase(
            std::remove_if(script.steps.begin(), script.steps.end(),
                           [](const ScriptStep& step) { return step.kind == ScriptStep::Kind::Console; }),
            script.steps.end());
        compare(script);
        if (QTest::currentTestFailed()) {
            qWarning("seed %llu", seeds.first + static_cast<quint64>(i));
        }
    }
}

namespace {

/// The installed lists in Idle.
class IdlePanel
{
public:
    model::Playback* operator->() { return &m_playback; }

    static model::Key key(const QString& name) { return *model::Alphabet::keyOf(name); }
    /// The causes of the last effect of `rule`.
    QVector<int> causesOf(model::Rule rule) const
    {
        QVector<int> causes;
        for (const model::PlayedStep& step : m_playback.steps()) {
            for (int i = 0; i < step.effects.size(); ++i) {
                causes = step.effects.at(i).rule == rule ? step.causes.at(i) : causes;
            }
        }
        return causes;
    }

private:
    model::KeyModel m_model{ListMaps::installed()};
    model::Playback m_playback{m_model, model::KeyFacts::idle};
};

} // namespace

void PlaybackTest::shortcutIsCausedByThePressThatOpenedIt()
{
    IdlePanel panel;
    panel->press(IdlePanel::key(KeyId::Ten)); // step 0: opens nothing
    panel->press(IdlePanel::key(KeyId::Function));
    panel->press(IdlePanel::key(KeyId::Up));
    QCOMPARE(panel.causesOf(model::Rule::ShortcutCompletes), QVector<int>{1});
}

void PlaybackTest::silencedNameIsCausedByTheGestureBefore()
{
    IdlePanel panel;
    panel->press(IdlePanel::key(KeyId::Feed));
    panel->press(IdlePanel::key(KeyId::Ok)); // step 1: LoadPaper, which is refused in Idle
    panel->wait(100ms);
    panel->release(IdlePanel::key(KeyId::Ok));
    QCOMPARE(panel.causesOf(model::Rule::NameSilenced), (QVector<int>{-1, 1}));
}

void PlaybackTest::usedUpKeyIsCausedByTheLastGesture()
{
    IdlePanel panel;
    panel->press(IdlePanel::key(KeyId::Feed));
    panel->press(IdlePanel::key(KeyId::Ok));
    panel->release(IdlePanel::key(KeyId::Ok));
    panel->wait(2000ms);
    // The state of the start, the gesture of step 1 and the key of step 2.
    QCOMPARE(panel.causesOf(model::Rule::LoneKeyUsedUp), (QVector<int>{-1, 1, 2}));
}

VIRTUAL_TIME_TEST_MAIN(PlaybackTest)
#include "PlaybackTest.moc"
