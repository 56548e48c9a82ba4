// SPDX-License-Identifier: MIT
#include "tests/card/CardDevice.h"

#include "service/KeyboardHandler.h"
#include "simulator/script/KeyScriptText.h"
#include "simulator/script/ScriptPlayer.h"
#include "vocabulary/Vocabulary.h"

#include <ls/Identifiers.h>
#include <ls/MessageKeys.h>

#include <QDir>

#include <algorithm>

using namespace std::chrono_literals;
using std::chrono::milliseconds;

namespace {

constexpr int tapTime = 50;
constexpr int chordTime = 100;
constexpr int window = 1500;
constexpr int maxHold = 60000;
constexpr int rowHold = 12000; // longer than any time in a row passed to tryRow()

struct Release
{
    int at;
    QString key;
};

QString text(int at, const QString& action, const QString& receiver)
{
    return QStringLiteral("%1 %2 %3").arg(QString::number(at), action, receiver);
}

bool hasAny(const KeyCardEntry& entry, std::initializer_list<KeyCardConsequence> consequences)
{
    return std::any_of(consequences.begin(), consequences.end(), [&entry](KeyCardConsequence consequence) {
        return entry.consequences.contains(consequence);
    });
}

/// When `play` releases the keys.
QVector<Release> releasesOf(const KeyCardEntry& entry)
{
    switch (entry.kind) {
    case KeyCardKind::Single:
    case KeyCardKind::Combination: {
        QVector<Release> releases;
        for (const QString& key : entry.keys) {
            releases.append({(2 * releases.size() + 1) * tapTime, key});
        }
        return releases;
    }
    case KeyCardKind::Shortcut:
        return {{chordTime + tapTime, entry.keys.last()}, {chordTime + 2 * tapTime, entry.keys.first()}};
    case KeyCardKind::Long:
    case KeyCardKind::Hold:
        break;
    }
    return {{qMin(entry.holdMs, maxHold), entry.keys.first()}};
}

int timeOf(const KeyCardEntry& entry)
{
    return entry.kind == KeyCardKind::Shortcut ? chordTime : releasesOf(entry).last().at;
}

/// The single key `key`, announced at `at`.
QStringList singleKey(int at, const QString& key, const KeyCardState& card)
{
    QStringList texts;
    for (const KeyCardEntry& entry : card.entries) {
        if (entry.kind == KeyCardKind::Single && entry.keys.first() == key) {
            for (const QString& receiver : entry.receivers) {
                texts.append(text(at, entry.action, receiver));
            }
        }
    }
    return texts;
}

/// The lone key `key`, released at `at`.
QStringList loneKey(int at, const QString& key, const KeyCardState& card)
{
    bool waits = false;
    for (const KeyCardEntry& entry : card.entries) {
        if (entry.kind == KeyCardKind::Single && entry.keys.first() == key) {
            waits = hasAny(entry, {KeyCardConsequence::NotSpokenAnnouncedAfterWait,
                                   KeyCardConsequence::SpokenAnnouncedAfterWait,
                                   KeyCardConsequence::SpokenAsZeroAnnouncedAfterWait});
        }
    }
    return singleKey(at + (waits ? window : 0), key, card);
}

/// The single keys that another entry also announces.
QStringList expectedSingleKeys(const KeyCardEntry& entry, const KeyCardState& card)
{
    const QVector<Release> releases = releasesOf(entry);
    const bool isCombination = entry.kind == KeyCardKind::Combination;
    bool isMenuAnnounced = false;
    QStringList texts;
    for (int i = 0; i < releases.size(); ++i) {
        const bool isLast = i == releases.size() - 1;
        const Release& release = releases.at(i);
        const bool isAfterHelp = i > 0 && releases.at(i - 1).key == ls::KeyId::Help;
        const bool isMenu = release.key == ls::KeyId::Menu && !isAfterHelp && (isLast || !isCombination);
        if (hasAny(entry, {KeyCardConsequence::EachRelease})) {
            texts += singleKey(release.at, release.key, card);
        } else if (isMenu && hasAny(entry, {KeyCardConsequence::Menu, KeyCardConsequence::MenuUnlessAfterHelp,
                                            KeyCardConsequence::MenuUnlessAfterHelpAndNextKey})) {
            texts += singleKey(release.at, release.key, card);
            isMenuAnnounced = true;
        } else if (isLast && (hasAny(entry, {KeyCardConsequence::LastKey}) ||
                              (isMenuAnnounced &&
                               hasAny(entry, {KeyCardConsequence::MenuUnlessAfterHelpAndNextKey})))) {
            texts += singleKey(release.at + window, release.key, card);
        }
    }
    return texts;
}

} // namespace

CardDevice::CardDevice(const KeyLists& lists, const QString& model, const QString& state)
{
    m_device.removeKeyLists();
    QDir().mkpath(vocabulary::dataDirectory);
    for (auto it = lists.cbegin(); it != lists.cend(); ++it) {
        m_device.setKeyList(it.key(), it.value());
    }
    m_device.setModel(model);
    m_device.start(state);
    const milliseconds start = VirtualDevice::clock().now();
    QObject::connect(&m_device.handler(), &KeyboardHandler::notification, &m_device,
                     [this, start](const QVariantMap& map) {
                         const milliseconds at = VirtualDevice::clock().now() - start;
                         m_heard.append(text(int(at.count()), map.value(ls::actionIdKey).toString(),
                                             map.value(ls::receiverIdKey).toString()));
                     });
}

void CardDevice::play(const KeyCardEntry& entry)
{
    switch (entry.kind) {
    case KeyCardKind::Single:
    case KeyCardKind::Combination:
        tapInTurn(entry.keys);
        break;
    case KeyCardKind::Shortcut:
        chord(entry.keys.first(), entry.keys.last());
        break;
    case KeyCardKind::Long:
    case KeyCardKind::Hold:
        hold(entry.keys.first(), qMin(entry.holdMs, maxHold));
        break;
    }
    m_device.wait(5s);
}

QStringList CardDevice::execute(const QStringList& statements)
{
    const ParsedScript parsed = parseKeyScriptSteps(statements.join('\n'));
    QStringList faults;
    for (const ScriptFault& fault : parsed.faults) {
        faults.append(fault.text);
    }
    ScriptPlayer player(parsed.script, m_device);
    player.start();
    m_device.wait(parsed.script.duration() + 5s);
    return faults;
}

void CardDevice::tryRow(const KeyCardDeadRow& row)
{
    QStringList keys;
    for (const QString& key : row.keys) {
        if (isPanelKey(key)) {
            keys.append(key);
        }
    }
    if (!keys.isEmpty() && row.kind == KeyCardKind::Long) {
        hold(keys.first(), rowHold);
    } else if (!keys.isEmpty() && row.kind == KeyCardKind::Shortcut) {
        chord(keys.first(), keys.last());
    } else {
        tapInAllVariants(keys.size() == 1 ? keys + keys : keys);
    }
    m_device.wait(5s);
}

QStringList CardDevice::panelKeys()
{
    QStringList keys = ls::KeyId::meta.keys();
    keys.removeOne(ls::KeyId::Unknown); // means "no key"
    return keys;
}

QStringList CardDevice::heardAbout(const KeyCardEntry& entry) const
{
    QStringList texts;
    for (const QString& text : m_heard) {
        const QString outcome = text.section(' ', 1);
        if (outcome.startsWith(entry.action + ' ') ||
            outcome.startsWith(ls::KeyboardActionId::SingleKey + ' ')) {
            texts.append(text);
        }
    }
    return texts;
}

QStringList CardDevice::expected(const KeyCardEntry& entry, const KeyCardState& card)
{
    if (entry.kind == KeyCardKind::Single || entry.holdMs > maxHold) {
        return loneKey(timeOf(entry), entry.keys.first(), card);
    }
    QStringList texts;
    for (int i = 0; i < entry.timesAnnounced; ++i) {
        texts.append(text(timeOf(entry), entry.action, entry.receivers.first()));
    }
    return texts + expectedSingleKeys(entry, card);
}

void CardDevice::hold(const QString& key, int duration)
{
    m_device.hold(key, milliseconds(duration));
}

void CardDevice::tapInTurn(const QStringList& keys)
{
    for (const QString& key : keys) {
        m_device.hold(key, milliseconds(tapTime));
        m_device.wait(milliseconds(tapTime));
    }
}

/// Repeats the keys after each other key, which may open another row, and after Help, which delays Menu.
void CardDevice::tapInAllVariants(const QStringList& keys)
{
    tapInTurn(keys);
    for (const QString& key : panelKeys()) {
        for (const QStringList& before : {QStringList{key}, QStringList{key, ls::KeyId::Help}}) {
            m_device.wait(5s);
            tapInTurn(before + keys);
        }
    }
}

void CardDevice::chord(const QString& held, const QString& pressed)
{
    const int device = held == pressed ? 1 : 0; // the same key needs both devices
    m_device.press(0, held);
    m_device.wait(milliseconds(chordTime));
    m_device.press(device, pressed);
    m_device.wait(milliseconds(tapTime));
    m_device.release(device, pressed);
    m_device.wait(milliseconds(tapTime));
    m_device.release(0, held);
}
