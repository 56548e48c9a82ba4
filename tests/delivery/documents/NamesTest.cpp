// SPDX-License-Identifier: MIT
#include "tests/delivery/documents/Documents.h"

#include <QDir>
#include <QRegularExpression>
#include <QtTest>

namespace {

/// The words that only documents use, each on a line: programs and files of others, and what readers choose.
QStringList foreignWords()
{
    const QString text =
        Documents::textOf(Documents::projectPath("tests/delivery/documents/foreign-words.txt"));
    QStringList words;
    for (const QString& line : text.split('\n')) {
        words += line.section('#', 0, 0).split(' ', Qt::SkipEmptyParts);
    }
    return words;
}

QString documentText(const QString& name)
{
    return Documents::textOf(Documents::projectPath(name));
}

/// Whether `path` names an existing file, if it has a wildcard or no suffix by a pattern.
bool exists(const QString& path)
{
    const QFileInfo info(path);
    const QStringList patterns{info.fileName(), info.fileName() + QStringLiteral(".*")};
    return info.exists() || !info.dir().entryList(patterns).isEmpty();
}

/// The relative paths in the code of a document, without those in the build folder and those that readers
/// choose.
QStringList pathsIn(const QString& text)
{
    static const QRegularExpression excluded(QStringLiteral("^build/|[A-Z]{3,}(/|$)"));
    const QStringList foreign = foreignWords();
    QStringList paths;
    for (QString path :
         Documents::matches(Documents::codeIn(text).join('\n'), "(?<![\\w/.*-])([\\w.*/-]+)")) {
        path.remove(QRegularExpression(QStringLiteral("^\\./")));
        if (path.indexOf('/') > 0 && !path.contains(excluded) && !foreign.contains(path.section('/', -1))) {
            paths.append(path);
        }
    }
    return paths;
}

/// What a logged line says whatever its values are: the texts between quoted values, numbers and
/// placeholders.
QStringList fixedTextsOf(const QString& line)
{
    static const QRegularExpression value(QStringLiteral("\"[^\"]*\"|\\b[A-Z]{4,}\\b|[0-9]+"));
    QStringList texts;
    for (const QString& text : line.split(value)) {
        if (text.contains(QRegularExpression(QStringLiteral("[a-z]{3}")))) {
            texts.append(text.trimmed());
        }
    }
    return texts;
}

} // namespace

/// Checks that what the documents name in code exists: files, options, identifiers, log lines, functions.
class NamesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void wordsExist_data() { documents(); }
    void wordsExist();
    void foreignWordsAreNeeded();
    void filesExist_data() { documents(); }
    void filesExist();
    void optionsOfScriptsExist_data() { documents(); }
    void optionsOfScriptsExist();
    void optionsOfTheManualExist();
    void presetsExist_data() { documents(); }
    void presetsExist();
    void logLinesExist_data();
    void logLinesExist();

private:
    static void documents();

    const QSet<QString> m_known = Documents::knownWords();
};

void NamesTest::documents()
{
    QTest::addColumn<QString>("document");
    for (const QString& name : Documents::names()) {
        // The changelog also names what no longer exists.
        if (name != QLatin1String("CHANGELOG.md")) {
            QTest::newRow(qPrintable(name)) << name;
        }
    }
}

void NamesTest::wordsExist()
{
    QFETCH(QString, document);
    const QStringList foreign = foreignWords();
    QStringList missing;
    for (QString word : Documents::wordsIn(Documents::codeIn(documentText(document)).join('\n'))) {
        word.remove(QRegularExpression(QStringLiteral("^-D")));
        // Options of one hyphen are those of other programs.
        const bool isShortOption = word.startsWith('-') && !word.startsWith(QLatin1String("--"));
        if (!isShortOption && !m_known.contains(word) && !foreign.contains(word)) {
            missing.append(word);
        }
    }
    QCOMPARE(missing.join(' '), QString());
}

void NamesTest::foreignWordsAreNeeded()
{
    QStringList code;
    for (const QString& name : Documents::names()) {
        code += Documents::codeIn(documentText(name));
    }
    const QStringList used = Documents::wordsIn(code.join('\n').replace("-D", " "));
    QStringList needless = foreignWords();
    QVERIFY(needless.size() > 1);
    const auto isNeeded = [&](const QString& word) { return used.contains(word) && !m_known.contains(word); };
    needless.erase(std::remove_if(needless.begin(), needless.end(), isNeeded), needless.end());
    QCOMPARE(needless.join(' '), QString());
}

void NamesTest::filesExist()
{
    QFETCH(QString, document);
    const QDir project(Documents::projectPath(QString()));
    const QDir folder = QFileInfo(Documents::projectPath(document)).dir();
    for (const QString& path : pathsIn(documentText(document))) {
        const QString top = path.section('/', 0, 0);
        const bool isFound = exists(project.filePath(path)) || exists(folder.filePath(path));
        QVERIFY2(isFound || !(project.exists(top) || folder.exists(top)), qPrintable(path));
    }
}

void NamesTest::optionsOfScriptsExist()
{
    QFETCH(QString, document);
    for (const QString& code : Documents::codeIn(documentText(document))) {
        const QStringList scripts =
            Documents::matches(code, "^(?:[A-Z_]+=\\S+ )?((?:\\./|tools/|\\.ci/)[\\w-]+)");
        const QString script = scripts.isEmpty() ? QString() : documentText(scripts.first());
        for (const QString& option : Documents::matches(code.section(" # ", 0, 0), " (--[a-z-]+)")) {
            const bool isKnown = Documents::wordsIn(script).contains(option);
            QVERIFY2(scripts.isEmpty() || isKnown, qPrintable(scripts.value(0) + ' ' + option));
        }
    }
}

void NamesTest::optionsOfTheManualExist()
{
    const QStringList known = Documents::wordsIn(documentText("run"));
    const QStringList options =
        Documents::matches(documentText("packaging/man/keyboard-handler-simulator.1.in"), "Fl (-[a-z-]+)");
    QVERIFY(!options.isEmpty());
    for (const QString& option : options) {
        QVERIFY2(known.contains('-' + option), qPrintable(option));
    }
}

void NamesTest::presetsExist()
{
    QFETCH(QString, document);
    const QString presets = documentText("CMakePresets.json");
    const QString code = Documents::codeIn(documentText(document)).join('\n');
    for (const QString& name : Documents::matches(code, "(?:--preset |PRESET=)([a-z-]+)")) {
        QVERIFY2(presets.contains("\"name\": \"" + name + '"'), qPrintable(name));
    }
}

void NamesTest::logLinesExist_data()
{
    QTest::addColumn<QString>("line");
    const QString text = documentText("docs/log-lines.md");
    QStringList lines;
    for (const QString& cell : Documents::matches(text, "(?m)^\\| (`[^|]*) \\|")) {
        lines += Documents::matches(cell, "`([^`]+)`");
    }
    lines += Documents::matches(text.section("## Bugs", 1), "`([^`]+)`");
    QVERIFY(lines.size() > 40);
    for (const QString& line : qAsConst(lines)) {
        // The dynamic loader's line.
        if (!line.startsWith(QLatin1String("/usr/"))) {
            QTest::newRow(qPrintable(line)) << line;
        }
    }
}

void NamesTest::logLinesExist()
{
    QFETCH(QString, line);
    static const QString sources = [] {
        QString texts;
        for (const QString& name : Documents::files().filter(QRegularExpression("^[^/.]+/.*\\.cpp$"))) {
            texts += name.startsWith("tests/") ? QString() : documentText(name);
        }
        return texts;
    }();
    const QString function = Documents::matches(line, "^([\\w:]+::\\w+) [A-Z]+[:!]").value(0);
    const QString member = function.section(QStringLiteral("::"), -2);
    QVERIFY2(function.startsWith("NAME::") || sources.contains(member + '('), qPrintable(member));
    QString text = line.mid(function.size());
    text.remove(QRegularExpression(QStringLiteral("^ (ERROR:|WARN:|FAILED!)")));
    const QStringList fixed = fixedTextsOf(text);
    QVERIFY2(!function.isEmpty() || !fixed.isEmpty(), qPrintable(line));
    for (const QString& part : fixed) {
        // Two handlers share their texts.
        const QString shared = QString(part).replace(QRegularExpression("\\b(modifier|shortcut)\\b"), "%1");
        QVERIFY2(sources.contains(part) || sources.contains(shared), qPrintable(part));
    }
}

QTEST_GUILESS_MAIN(NamesTest)
#include "NamesTest.moc"
