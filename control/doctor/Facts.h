// SPDX-License-Identifier: MIT
/// What can be seen of a device without asking the daemon anything that changes it. The checks look at
/// nothing else, so a test can make up any device.
#pragma once

#include "checker/Check.h"
#include "checker/ListSources.h"

#include <QDateTime>
#include <QSet>
#include <QString>
#include <QStringList>
#include <QVector>

#include <optional>

namespace control {

/// The user who runs the program.
struct UserFacts
{
    QString name;
    bool isRoot = false;
    /// The group of the services.
    QString group;
    bool groupExists = false;
    /// Whether this process is in the group.
    bool isMember = false;
    /// Whether the group names the user: a process that is older than the entry is not a member.
    bool isListed = false;
};

struct BusFacts
{
    enum class Answer { NotAsked, Answered, Refused, Missing };

    /// Why there is no bus; empty if there is one. Without a bus, the other members mean nothing.
    QString fault;
    QString prefix;
    /// All names on the bus.
    QStringList names;
    /// The process that has the daemon's name; 0 if there is none.
    qint64 owner = 0;
    /// Whether the daemon's main thread answers.
    Answer answer = Answer::NotAsked;
    /// Whether the state handler reports the operating state.
    Answer stateAnswer = Answer::NotAsked;
    /// The state that it reports; empty if it is not known.
    QString state;

    QString nameOf(const QString& serviceId) const { return prefix + QLatin1Char('.') + serviceId; }
    bool has(const QString& serviceId) const { return names.contains(nameOf(serviceId)); }
};

/// The daemon's unit, in the words of systemd.
struct UnitFacts
{
    bool hasSystemd = false;
    /// Why systemd says nothing; otherwise empty.
    QString fault;
    QString loadState;
    QString activeState;
    QString result;
};

/// Identifies a file, whatever its name.
struct FileId
{
    quint64 device = 0;
    quint64 number = 0;

    friend bool operator==(FileId a, FileId b) { return a.device == b.device && a.number == b.number; }
};

/// A daemon that runs.
struct ProcessFacts
{
    qint64 id = 0;
    /// As in /proc: 'T' is a stopped process.
    QChar state = QLatin1Char('S');
    QDateTime started;
    /// The files that it has open; nothing if this user may not see them.
    std::optional<QVector<FileId>> files;
    /// Their names, for files that have been removed.
    QStringList fileNames;
};

/// An input device of the panel.
struct NodeFacts
{
    enum class Kind { Missing, InputDevice, Fifo, Other };

    QString path;
    Kind kind = Kind::Missing;
    FileId id;
    /// Why its abilities cannot be read; empty if they are.
    QString fault;
    QString name;
    bool hasAutorepeat = false;
    /// In milliseconds; the kernel does not repeat keys if one is 0.
    unsigned repeatDelay = 0;
    unsigned repeatPeriod = 0;
    /// Linux input key codes.
    QSet<int> codes;
    /// Other programs that have it open, as "NAME (PROCESS)"; of other users only if this user may see that.
    QStringList readers;
};

struct PanelFacts
{
    /// The two nodes that the daemon opens.
    QVector<NodeFacts> nodes;
    /// The names of the panel's devices.
    QStringList names;
    /// The nodes of input devices with these names, such as "event2", by name.
    QMap<QString, QString> nodesByName;
};

/// The files in /run/service-watcher.
struct ReadinessFacts
{
    /// The services without which the daemon does not start, and which have not declared themselves ready.
    QStringList missing;
    /// When the daemon declared itself ready; invalid if it has not.
    QDateTime ready;
};

struct ListFacts
{
    checker::ListSources sources;
    checker::CheckResult result;
    /// When each file, or the link to it, was changed or replaced; indexed by `model::List`, invalid for a
    /// file that is missing.
    std::array<QDateTime, 3> changed;
};

struct JournalFacts
{
    /// Why the journal cannot be read; empty if it can.
    QString fault;
    /// The lines of the running daemon, oldest first.
    QStringList lines;
};

struct Facts
{
    UserFacts user;
    BusFacts bus;
    UnitFacts unit;
    QVector<ProcessFacts> daemons;
    ReadinessFacts readiness;
    PanelFacts panel;
    ListFacts lists;
    JournalFacts journal;
};

} // namespace control
