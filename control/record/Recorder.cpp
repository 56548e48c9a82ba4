// SPDX-License-Identifier: MIT
#include "control/record/Recorder.h"

#include "control/DeviceModel.h"
#include "control/Monotonic.h"
#include "control/doctor/Probes.h"
#include "control/record/RecordingScript.h"
#include "model/DaemonInputs.h"
#include "simulator/script/KeyListJson.h"
#include "simulator/script/KeyValue.h"
#include "vocabulary/Vocabulary.h"

#include <QDateTime>
#include <QDir>

using std::chrono::microseconds;

namespace control {

namespace {

/// For a daemon that hangs, the caller must not wait long.
constexpr std::chrono::seconds busTimeout{5};
constexpr std::chrono::minutes forgetInterval{1};

QString wordsOf(const InputGap& gap)
{
    const QString text =
        gap.reason == InputGap::Reason::Dropped    ? QStringLiteral("input device %1 lost records")
        : gap.reason == InputGap::Reason::Vanished ? QStringLiteral("input device %1 vanished")
                                                   : QStringLiteral("input device %1 is there again");
    return text.arg(gap.keyboard);
}

} // namespace

Recorder::Recorder(const QString& prefix, QObject* parent)
    : QObject(parent), m_bus(prefix, busTimeout), m_signals(m_bus)
{
    connect(&m_nodes, &InputNodes::recorded, this, [this](const InputRecord& record) {
        if (!model::DaemonInputs::ofRecord(record.type, record.code, record.value, record.keyboard)
                 .isEmpty()) {
            add(Happening::key(record));
        }
    });
    connect(&m_nodes, &InputNodes::gapFound, this, &Recorder::addGap);
    connect(&m_signals, &DaemonSignals::announced, this, [this](const QVariantMap& notification) {
        add(Happening::announcement(notification, Monotonic::now()));
    });
    connect(&m_signals, &DaemonSignals::stateSeen, this,
            [this](const QString& state) { add(Happening::state(state, Monotonic::now())); });
    connect(&m_signals, &DaemonSignals::daemonChanged, this, [this](bool isThere) {
        add(Happening::gap(isThere ? QStringLiteral("the daemon started")
                                   : QStringLiteral("the daemon ended"),
                           Monotonic::now()));
        readLists();
    });
    connect(&m_signals, &DaemonSignals::busLost, this, &Recorder::busLost);
}

BusFault Recorder::begin()
{
    const BusFault busFault = m_bus.connectionFault();
    if (busFault.isFault()) {
        return busFault;
    }
    const QString fault = m_nodes.open();
    if (!fault.isEmpty()) {
        return {m_nodes.isForbidden() ? NoRights : Unusable, fault};
    }
    readLists();
    m_recording = Recording(Monotonic::now());
    for (int keyboard = 0; keyboard < InputNodes::count; ++keyboard) {
        addKeysDown(keyboard);
    }
    return m_signals.begin();
}

void Recorder::keepOnly(std::chrono::seconds age)
{
    m_maxAge = age;
    m_ageTimer.setTimerType(Qt::VeryCoarseTimer);
    m_ageTimer.start(forgetInterval);
    connect(&m_ageTimer, &QTimer::timeout, this, &Recorder::forgetOld);
}

QByteArray Recorder::script()
{
    const microseconds now = Monotonic::now();
    forgetOld();
    return scriptOf(m_recording, now, {m_lists, DeviceModel::isOrvane(), remarks()});
}

void Recorder::add(const Happening& happening)
{
    const bool wasFull = m_recording.isFull();
    m_recording.add(happening);
    if (m_recording.isFull() && !wasFull) {
        Q_EMIT filled();
    }
}

void Recorder::forgetOld()
{
    if (m_maxAge.count() > 0) {
        m_recording.dropBefore(Monotonic::now() - m_maxAge);
    }
}

void Recorder::addGap(const InputGap& gap)
{
    add(Happening::gap(wordsOf(gap), gap.at));
    if (gap.reason != InputGap::Reason::Vanished) {
        addKeysDown(gap.keyboard);
    }
}

/// Keys that are down although their press was not seen.
void Recorder::addKeysDown(int keyboard)
{
    const auto keys = m_nodes.node(keyboard).keysDown();
    for (const quint16 code : keys.value_or(QVector<quint16>())) {
        add(Happening::key(
            {keyboard, Monotonic::now(), model::DaemonInputs::keyEventType, code, KeyValue::pressed}));
    }
}

/// The daemon reads its lists when it starts.
void Recorder::readLists()
{
    m_lists = KeyListJson::read(vocabulary::dataDirectory);
    m_listRemarks.clear();
    const QDateTime ready = Probes::readyTime();
    const QStringList names = KeyListJson::fileNames();
    for (const QString& name : names) {
        const QFileInfo file(QDir(vocabulary::dataDirectory), name);
        if (ready.isValid() && file.metadataChangeTime() > ready) {
            m_listRemarks
                << QStringLiteral("%1 is newer than the daemon, which may use other rows.").arg(name);
        }
    }
}

QStringList Recorder::remarks() const
{
    QStringList all{
        QStringLiteral("Recorded next to the daemon until %1. Keys, states and announcements only.")
            .arg(QDateTime::currentDateTime().toString(Qt::ISODate))};
    all << m_listRemarks;
    if (!KeyListJson::areEqual(m_lists, KeyListJson::read(vocabulary::dataDirectory))) {
        all << QStringLiteral("The key lists were changed meanwhile; the rows are those of the beginning.");
    }
    if (m_recording.evicted() > 0) {
        all << QStringLiteral("The recording was full: the oldest %1 entries are missing.")
                   .arg(m_recording.evicted());
    }
    return all;
}

} // namespace control
