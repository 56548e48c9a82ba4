// SPDX-License-Identifier: MIT
#include "keys/LongKey.h"

#include "keys/KeyListFile.h"
#include "vocabulary/Vocabulary.h"

#include <ls/Identifiers.h>
#include <ls/MessageKeys.h>

#include <limits>

namespace {

constexpr QChar stateSeparator = QLatin1Char('|');
constexpr qint64 helpTimeFactor = 3;

int reportedTimeout(const KeyEntry& entry)
{
    // Deliberate: the users of the reported times rely on the Help key's being tripled.
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
    // Deliberately no end at the first match: of several rows for one key the last decides time and action.
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
    const auto file = KeyListFile::load(reader, vocabulary::longKeyListFile, EnumDetail::RowKeyList::LongKeys,
                                        KeyListFile::Timeouts::Read, Q_FUNC_INFO);
    m_entries = file.rows;
}

void LongKey::onExpired()
{
    // A copy, because a receiver of the signal may stop this recogniser. The row stays armed after the
    // expiry: the next repeat of the held key times it again.
    const KeyEntry entry = m_current;
    if (!entry.isValid()) {
        return;
    }
    const QVariantMap parameters{{ls::firstKeyKey, entry.firstKey()}};
    // Deliberate: a single state is passed on untouched, blanks included; only joined ones are trimmed.
    if (!entry.validOnState().contains(stateSeparator)) {
        Q_EMIT longPress(entry.eAction(), entry.receiverService(), entry.validOnState(), parameters);
        return;
    }
    const QStringList states = entry.validOnState().split(stateSeparator, Qt::KeepEmptyParts);
    // A guard only, for a split that keeps empty parts is never empty; its text is spelt as logs have it.
    if (states.isEmpty()) {
        vocabulary::logLine("operator()", "LongKey::LongKey(ls::IReader&, QObject*)::<lambda()>", "ERROR:")
            << "retreiving valid states for" << entry.eAction() << "failed!";
    }
    for (const QString& state : states) {
        Q_EMIT longPress(entry.eAction(), entry.receiverService(), state.simplified(), parameters);
    }
}
