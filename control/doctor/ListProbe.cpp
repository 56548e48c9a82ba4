// SPDX-License-Identifier: MIT
#include "control/doctor/Probes.h"

#include "vocabulary/Vocabulary.h"

#include <QDir>
#include <QFile>

#include <sys/stat.h>

namespace control {

namespace {

constexpr qint64 msPerSecond = 1000;
constexpr qint64 nsPerMs = 1'000'000;

/// The time of the change of the inode: a file that replaces another one may be older than that.
qint64 changeMs(const struct stat& status)
{
    return status.st_ctim.tv_sec * msPerSecond + status.st_ctim.tv_nsec / nsPerMs;
}

/// When the file, or the link to it, was changed or replaced; invalid if it does not exist.
QDateTime changeTime(const QString& path)
{
    const QByteArray name = QFile::encodeName(path);
    struct stat link
    {};
    struct stat file
    {};
    if (::lstat(name.constData(), &link) != 0 || ::stat(name.constData(), &file) != 0) {
        return {};
    }
    return QDateTime::fromMSecsSinceEpoch(std::max(changeMs(link), changeMs(file)));
}

} // namespace

ListFacts Probes::lists()
{
    ListFacts facts;
    const QDir folder(vocabulary::dataDirectory);
    facts.sources = checker::ListSources::read({folder.path()});
    checker::CheckOptions options;
    // A gesture that is silent in a state may be meant so, as four of the installed lists are.
    options.allowed = QStringList{QStringLiteral("silent")};
    facts.result = checker::check(facts.sources, options);
    for (const model::List list : model::allLists) {
        facts.changed[static_cast<size_t>(list)] = changeTime(folder.filePath(model::KeyLists::fileOf(list)));
    }
    return facts;
}

} // namespace control
