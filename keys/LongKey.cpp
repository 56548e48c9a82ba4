// SPDX-License-Identifier: MIT
#include "keys/LongKey.h"

#include "keys/KeyListFile.h"
#include "keys/KeyRules.h"
#include "vocabulary/Vocabulary.h"

#include <ls/Identifiers.h>
#include <ls/MessageKeys.h>

#include <limits>

namespace {

constexpr qint64 helpTimeFactor = 3;

int reportedTimeout(const KeyEntry& entry)
{
    // Deliberate: clients rely on the tripled time of the Help key.
    const qint64 factor = entry.firstKey() == ls::KeyId::Help ? helpTimeFactor : 1;
    using Limits = std::numeric_limits<int>;
    return static_cast<int>(qBound<qint64>(Limits::min(), entry.timeout() * factor, Limits::max()));
}

} // namespace

LongKey::LongKey(ls::IReader& reader, QObject* parent) : QObject(parent)
{
    load(reader);
    m_timer.setTimerType(Qt::PreciseTimer);
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, &LongKey::onExpired);
}

QVariantMap LongKey::timeouts() const
{
    QVariantMap timeouts;
    for (const KeyEntry& entry : m_entries) {
        if (entry.isValid()) {
            timeouts.insert(entry.firstKey(), reportedTimeout(entry));
        }
    }
    return timeouts;
}

void LongKey::start(const ls::EnumKey& key)
{
    if (m_timer.isActive()) {
        return;
    }
    // Deliberate: the loop continues after a match, so that the last row of a key decides time and action.
    for (const KeyEntry& entry : m_entries) {
        if (entry.isValid() && entry.firstKey() == key) {
            m_timer.start(qMax(0, entry.timeout()));
            m_current = entry;
        }
    }
}

void LongKey::stop()
{
    m_current.clear();
    m_timer.stop();
}

void LongKey::load(ls::IReader& reader)
{
    const auto file =
        KeyListFile::load(reader, vocabulary::longKeyListFile, EnumDetail::RowKeyList::LongKeys, Q_FUNC_INFO);
    m_entries = file.rows;
}

void LongKey::onExpired()
{
    // A copy, because a receiver of the signal may stop this recogniser. The row stays armed after the
    // expiry: the next autorepeat of the held key starts its timer again.
    const KeyEntry entry = m_current;
    if (!entry.isValid()) {
        return;
    }
    const QVariantMap parameters{{ls::firstKeyKey, entry.firstKey()}};
    const QStringList states = KeyRules::longPressStates(entry.validOnState());
    // A guard only: there is always a state. The spelling is deliberate: technicians search logs for it.
    if (states.isEmpty()) {
        vocabulary::logLine("operator()", "LongKey::LongKey(ls::IReader&, QObject*)::<lambda()>", "ERROR:")
            << "retreiving valid states for" << entry.eAction() << "failed!";
    }
    for (const QString& state : states) {
        Q_EMIT longPress(entry.eAction(), entry.receiverService(), state, parameters);
    }
}
