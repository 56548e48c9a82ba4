// SPDX-License-Identifier: MIT
#include "tests/delivery/documents/Documents.h"

#include <QDir>
#include <QDirIterator>
#include <QRegularExpression>

#include <algorithm>

namespace {

const QString documentSuffix = QStringLiteral(".md");
/// The checks of the documents name what documents may say, so they do not count.
const QStringList checks{QStringLiteral("tests/delivery/documents/"), QStringLiteral("tools/prose.")};

bool isNameStart(QChar character)
{
    return character.isLetter() || character == '_';
}

bool isNamePart(QChar character)
{
    return character.isLetterOrNumber() || character == '_';
}

/// The end of the word that has a name part at `start`.
int endOfWord(const QString& text, int start)
{
    int end = start;
    while (end < text.size()) {
        const bool joins = (text.at(end) == '-' || text.at(end) == '.') && end + 1 < text.size() &&
                           isNamePart(text.at(end + 1));
        if (!isNamePart(text.at(end)) && !joins) {
            break;
        }
        ++end;
    }
    return end;
}

/// Whether a file is text that a person wrote.
bool isSource(const QString& name)
{
    const bool isCheck = std::any_of(checks.cbegin(), checks.cend(),
                                     [&name](const QString& start) { return name.startsWith(start); });
    return !isCheck && !name.endsWith(documentSuffix) && !name.endsWith(QLatin1String(".png")) &&
           name != QLatin1String("LICENSE");
}

} // namespace

namespace Documents {

QString projectPath(const QString& name)
{
    return QStringLiteral(PROJECT_FOLDER "/") + name;
}

QString textOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

QStringList matches(const QString& text, const char* pattern)
{
    QStringList found;
    QRegularExpressionMatchIterator it = QRegularExpression(QString::fromLatin1(pattern)).globalMatch(text);
    while (it.hasNext()) {
        found.append(it.next().captured(1));
    }
    return found;
}

QStringList names()
{
    return files().filter(QRegularExpression(QStringLiteral("\\.md$")));
}

QStringList codeIn(const QString& text)
{
    QStringList code;
    QString prose;
    bool isFenced = false;
    for (const QString& line : text.split('\n')) {
        if (line.startsWith(QLatin1String("```"))) {
            isFenced = !isFenced;
        } else if (line.startsWith(QLatin1String("    ")) && !isFenced) {
            code.append(line.trimmed());
        } else if (!isFenced) {
            prose += line + '\n';
        }
    }
    return code + matches(prose, "`([^`]+)`");
}

QStringList wordsIn(const QString& text)
{
    QStringList words;
    for (int i = 0; i < text.size(); ++i) {
        int name = i;
        while (name < i + 2 && name < text.size() && text.at(name) == '-') {
            ++name;
        }
        if (name == text.size() || !isNamePart(text.at(name))) {
            continue;
        }
        const int end = endOfWord(text, name);
        if (isNameStart(text.at(name))) {
            words.append(text.mid(i, end - i));
        }
        i = end;
    }
    return words;
}

QStringList files()
{
    QStringList names;
    const QDir project(projectPath(QString()));
    QDirIterator it(project.path(), QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString name = project.relativeFilePath(it.next());
        if (!name.startsWith(QLatin1String("build/")) && !name.startsWith(QLatin1String(".git/"))) {
            names.append(name);
        }
    }
    names.sort();
    return names;
}

QSet<QString> knownWords()
{
    static const QRegularExpression separators(QStringLiteral("[-.]"));
    QSet<QString> known;
    const auto add = [&known](const QString& word) {
        known.insert(word);
        for (const QString& part : word.split(separators, Qt::SkipEmptyParts)) {
            known.insert(part);
        }
    };
    for (const QString& name : files()) {
        for (const QString& part : name.split('/')) {
            add(part);
            known.insert(part.section('.', 0, 0));
        }
        const QStringList words = isSource(name) ? wordsIn(textOf(projectPath(name))) : QStringList();
        std::for_each(words.cbegin(), words.cend(), add);
    }
    return known;
}

} // namespace Documents
