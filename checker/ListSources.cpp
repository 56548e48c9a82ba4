// SPDX-License-Identifier: MIT
#include "checker/ListSources.h"

#include "checker/JsonFault.h"
#include "keys/KeyListFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>

#include <optional>

namespace checker {

using model::KeyLists;
using model::List;

namespace {

const QString standardInput = QStringLiteral("-");

QString nameOf(const QString& path)
{
    return path == standardInput ? QStringLiteral("standard input") : path;
}

/// Reads one byte more than the daemon would, so that a file over its limit is recognised.
bool read(const QString& path, QByteArray& text, QString& fault)
{
    QFile file(path);
    const bool isOpen =
        path == standardInput ? file.open(0, QIODevice::ReadOnly) : file.open(QIODevice::ReadOnly);
    if (isOpen) {
        text = file.read(KeyListFile::maxSize + 1);
    }
    if (!isOpen || file.error() != QFileDevice::NoError) {
        fault = QStringLiteral("%1 cannot be read: %2.").arg(nameOf(path), file.errorString());
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
                            .arg(sources.file(list).name(), nameOf(path), KeyLists::sectionOf(list));
    }
    sources.files[static_cast<size_t>(list)] = SourceFile(nameOf(path), text);
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
        sources.fault = QStringLiteral("%1 has no %2, %3 or %4.")
                            .arg(folder, KeyLists::fileOf(List::LongPresses),
                                 KeyLists::fileOf(List::Combinations), KeyLists::fileOf(List::Shortcuts));
    }
}

/// Why the sections of a text are not known.
QString faultOf(const QByteArray& text)
{
    if (text.size() > KeyListFile::maxSize) {
        return QStringLiteral("is over the limit of %1 bytes").arg(KeyListFile::maxSize);
    }
    if (text.trimmed().isEmpty()) {
        return QStringLiteral("is empty");
    }
    QJsonParseError error{};
    QJsonDocument::fromJson(text, &error);
    if (error.error != QJsonParseError::NoError) {
        const JsonFault fault = JsonFault::of(text, error);
        const Position position = SourceFile({}, text).position(fault.offset);
        return QStringLiteral("is not JSON (line %1, column %2: %3)")
            .arg(QString::number(position.line), QString::number(position.column), fault.text);
    }
    return QStringLiteral("has no list %1, %2 or %3")
        .arg(KeyLists::sectionOf(List::LongPresses), KeyLists::sectionOf(List::Combinations),
             KeyLists::sectionOf(List::Shortcuts));
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
        sources.fault =
            QStringLiteral("%1 %2, and its name is not that of a key list.").arg(nameOf(path), faultOf(text));
    }
}

ListSources empty()
{
    ListSources sources;
    for (const List list : model::allLists) {
        sources.files[static_cast<size_t>(list)] = SourceFile(KeyLists::fileOf(list), {});
    }
    return sources;
}

/// `absence` says why a list is not there.
void noteAbsent(ListSources& sources, const QString& absence)
{
    for (const List list : model::allLists) {
        if (!sources.found.contains(list)) {
            sources.notes << QStringLiteral("%1 is %2: the list %3 counts as empty.")
                                 .arg(KeyLists::fileOf(list), absence, KeyLists::sectionOf(list));
        }
    }
}

} // namespace

ListSources ListSources::read(const QStringList& paths)
{
    ListSources sources = empty();
    const QStringList all = paths.isEmpty() ? QStringList(QStringLiteral(".")) : paths;
    bool hasFolder = false;
    for (const QString& path : all) {
        if (!sources.fault.isEmpty()) {
            return sources;
        }
        if (QFileInfo(path).isDir()) {
            hasFolder = true;
            readFolder(sources, path);
        } else {
            readFile(sources, path);
        }
    }
    noteAbsent(sources, hasFolder ? QStringLiteral("missing") : QStringLiteral("not given"));
    return sources;
}

ListSources ListSources::of(const QMap<QString, QByteArray>& contents)
{
    ListSources sources = empty();
    for (const List list : model::allLists) {
        if (contents.contains(KeyLists::fileOf(list))) {
            add(sources, list, KeyLists::fileOf(list), contents.value(KeyLists::fileOf(list)));
        }
    }
    noteAbsent(sources, QStringLiteral("missing"));
    return sources;
}

QStringList ListSources::remarks() const
{
    QStringList all = notes;
    const QVector<List> unreadable = lists(false).unreadable;
    for (const List list : found) {
        if (unreadable.contains(list)) {
            all << QStringLiteral("%1 has no readable list %2, which counts as empty; keyboard-handler-keys "
                                  "check says why.")
                       .arg(file(list).name(), KeyLists::sectionOf(list));
        }
    }
    return all;
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
