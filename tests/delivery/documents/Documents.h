// SPDX-License-Identifier: MIT
/// Access to the project's documents and sources, for the tests that compare the two.
#pragma once

#include <QSet>
#include <QString>
#include <QStringList>

namespace Documents {

/// The absolute path of `name`, a path relative to the project.
QString projectPath(const QString& name);

/// The text of a file; empty if it cannot be read.
QString textOf(const QString& path);

/// All captures of the first group of `pattern` in `text`.
QStringList matches(const QString& text, const char* pattern);

/// The paths of the project's documents, relative to the project.
QStringList names();

/// The code of a document: indented lines, and the spans between backticks. Fenced blocks are left out,
/// because other tests run them.
QStringList codeIn(const QString& text);

/// The words of a text: names, options and file names, with the hyphens and dots within them and the hyphens
/// before them. A word begins with a letter or an underscore after its hyphens.
QStringList wordsIn(const QString& text);

/// The paths of all files of the project but the build's, relative to the project.
QStringList files();

/// What is in the project besides documents: the words of all other files, and the parts of all paths.
QSet<QString> knownWords();

} // namespace Documents
