// SPDX-License-Identifier: MIT
#include "checker/ListSources.h"

#include "keys/KeyListFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>

namespace checker {

using model::KeyLists;
using model::List;

namespace {

const QString standardInput = QStringLiteral("-");

/// Reads one byte more than the daemon would, so that a file over its limit is recognised.
bool read(const QString& path, QByteArray& text, QString& fault)
{
    QFile file(path);
    const bool isOpen = path == standardInput ? file.open(0, QIODevice::ReadOnly) : file.open(QIODevice::ReadOnly);
    if (isOpen) {
        text = file.read(KeyListFile::maxSize + 1);
    }
    if (!isOpen || file.error() != QFileDevice::NoError) {
        fault = QStringLiteral("%1 cannot be read: %2.").arg(path, file.errorString());
        return false;
    }
    return true;
}

/// The list whose section the text has, otherwise the list of the file name.
std::optional<List> listOf(const QString& path, const QByteArray& text)
{
    const QJsonObject root = QJsonDocument::fromJson(text).object();
    for (const List list : model::allLists) {
        if (root.contains(KeyLists::sectionOf(list))) {
            return list;
        }
    }
    for (const List list : model::allLists) {
        if (QFileInfo(path).fileName() == KeyLists::fileOf(list)) {
            return list;
        }
    }
    return {};
}

void add(ListSources& sources, List list, const QString& path, const QByteArray& text)
{
    if (sources.found.contains(list)) {
        sources.fault = QStringLiteral("%1 and %2 are both lists of %3.")
                            .arg(sources.file(list).name(), path, KeyLists::sectionOf(list));
    }
    const QString name = path == standardInput ? QStringLiteral("standard input") : path;
    sources.files[static_cast<size_t>(list)] = SourceFile(name, text);
    sources.found.append(list);
}

void readFolder(ListSources& sources, const QString& folder)
{
    for (const List list : model::allLists) {
        const QString path = folder == QLatin1String(".") ? KeyLists::fileOf(list)
                                                          : QDir(folder).filePath(KeyLists::fileOf(list));
        QByteArray text;
        if (QFileInfo::exists(path) && read(path, text, sources.fault)) {
            add(sources, list, path, text);
        }
    }
    if (sources.found.isEmpty() && sources.fault.isEmpty()) {
        sources.fault = QStringLiteral("%1 has none of the files %2, %3 and %4.")
                            .arg(folder, KeyLists::fileOf(List::LongPresses),
                                 KeyLists::fileOf(List::Combinations), KeyLists::fileOf(List::Shortcuts));
    }
}

void readFile(ListSources& sources, const QString& path)
{
    QByteArray text;
    if (!read(path, text, sources.fault)) {
        return;
    }
    if (const auto list = listOf(path, text)) {
        add(sources, *list, path, text);
    } else {
        sources.fault = QStringLiteral("%1 has none of the sections %2, %3 and %4, nor the name of a key list.")
                            .arg(path, KeyLists::sectionOf(List::LongPresses),
                                 KeyLists::sectionOf(List::Combinations), KeyLists::sectionOf(List::Shortcuts));
    }
}

} // namespace

ListSources ListSources::read(const QStringList& paths)
{
    ListSources sources;
    for (const List list : model::allLists) {
        sources.files[static_cast<size_t>(list)] = SourceFile(KeyLists::fileOf(list), {});
    }
    const QStringList all = paths.isEmpty() ? QStringList(QStringLiteral(".")) : paths;
    for (const QString& path : all) {
        if (!sources.fault.isEmpty()) {
            return sources;
        }
        if (QFileInfo(path).isDir()) {
            readFolder(sources, path);
        } else {
            readFile(sources, path);
        }
    }
    for (const List list : model::allLists) {
        if (!sources.found.contains(list)) {
            sources.notes << QStringLiteral("%1 is missing: the list %2 counts as empty.")
                                 .arg(KeyLists::fileOf(list), KeyLists::sectionOf(list));
        }
    }
    return sources;
}

KeyLists ListSources::lists(bool isOrvane) const
{
    QMap<QString, QByteArray> contents;
    for (const List list : found) {
        contents.insert(KeyLists::fileOf(list), file(list).text());
    }
    return KeyLists::read(contents, isOrvane);
}

} // namespace checker
