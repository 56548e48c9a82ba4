// SPDX-License-Identifier: MIT
#pragma once

#include "checker/EffectWords.h"
#include "control/input/InputNodes.h"
#include "model/Playback.h"

#include <QJsonObject>
#include <QSet>
#include <QTimer>
#include <QVariantMap>

#include <deque>
#include <functional>
#include <memory>
#include <optional>

namespace control {

/// Says for each key of the panel which rule decided about it. It reads the input nodes next to the daemon,
/// and follows the keys with the model.
///
/// Commands and the keyboard test never reach the nodes, so what it follows may be wrong. It begins when
/// nothing that came before counts, and it begins again after an announcement that the keys do not explain.
class LiveKeys : public QObject
{
    Q_OBJECT

public:
    /// `words` are for people, `members` for programs.
    using Report = std::function<void(const QString& words, const QJsonObject& members)>;

    explicit LiveKeys(Report report);

    /// Reads the key lists and opens the input nodes. Returns what is wrong with a node; empty if nothing is.
    QString open();
    bool isForbidden() const { return m_nodes.isForbidden(); }

    /// Empty if it is not known; then no rules are named.
    void setState(const QString& state);
    void takeAnnouncement(const QVariantMap& notification);
    /// A daemon has come, and has read the key lists.
    void restart();

private:
    using microseconds = std::chrono::microseconds;

    /// An announcement in the words of key scripts.
    struct Announcement
    {
        QString text;
        microseconds at{0};
    };

    void readLists();
    void take(const InputRecord& record);
    void sayUnexplained(const QVector<model::Input>& inputs);
    void takeGap(const InputGap& gap);
    void lookAround();
    void begin(microseconds now);
    void loseTrack(const QString& reason);
    void advance(microseconds time);
    void flush();
    void explain(int step);
    void compare(microseconds now);
    void say(const QString& words) { m_report(words, {}); }

    Report m_report;
    InputNodes m_nodes;
    QTimer m_timer;
    std::unique_ptr<model::KeyModel> m_model;
    std::unique_ptr<checker::EffectWords> m_effects;
    std::optional<model::Playback> m_playback;
    microseconds m_origin{0};
    int m_explained = 0;
    QString m_state;
    microseconds m_lastRecord{0};
    QSet<QPair<int, quint16>> m_down;
    std::deque<Announcement> m_expected;
    std::deque<Announcement> m_announced;
};

} // namespace control
