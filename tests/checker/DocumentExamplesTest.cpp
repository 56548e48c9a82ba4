// SPDX-License-Identifier: MIT
#include <QDir>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <algorithm>

namespace {

const QString prompt = QStringLiteral("$ ");
const QString fence = QStringLiteral("```");
const QString consoleLanguage = QStringLiteral("console");

/// An example of a document: a file to write, or a session of commands and their output.
struct Example
{
    QString language;
    QString fileName;
    QStringList lines;
};

QStringList linesOf(const QString& path)
{
    QFile file(QStringLiteral(PROJECT_FOLDER "/") + path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()).split('\n') : QStringList();
}

/// The fenced blocks "```console" and "```LANGUAGE FILE", in order.
QVector<Example> examplesOfDocument(const QString& path)
{
    QVector<Example> examples;
    bool isOpen = false;
    for (const QString& line : linesOf(path)) {
        if (line.startsWith(fence)) {
            isOpen = !isOpen;
            if (isOpen) {
                const QString head = line.mid(fence.size());
                examples.append({head.section(' ', 0, 0), head.section(' ', 1), {}});
            }
        } else if (isOpen) {
            examples.last().lines.append(line);
        }
    }
    return examples;
}

/// The displays of a manual page that begin with a prompt.
QVector<Example> examplesOfPage(const QString& path)
{
    QVector<Example> examples;
    bool isOpen = false;
    for (const QString& line : linesOf(path)) {
        if (line.startsWith(QLatin1String(".Bd -literal"))) {
            isOpen = true;
            examples.append({consoleLanguage, {}, {}});
        } else if (line == QLatin1String(".Ed")) {
            isOpen = false;
        } else if (isOpen) {
            examples.last().lines.append(QString(line).replace("\\e", "\\").remove("\\&"));
        }
    }
    const auto isOther = [](const Example& example) { return !example.lines.value(0).startsWith(prompt); };
    examples.erase(std::remove_if(examples.begin(), examples.end(), isOther), examples.end());
    return examples;
}

QStringList outputOf(const QString& command, const QString& folder)
{
    QProcess shell;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("PATH"),
                       QStringLiteral(PROGRAM_FOLDER ":") + environment.value("PATH"));
    shell.setProcessEnvironment(environment);
    shell.setProcessChannelMode(QProcess::MergedChannels);
    shell.setWorkingDirectory(folder);
    shell.start(QStringLiteral("sh"), {QStringLiteral("-c"), command});
    shell.closeWriteChannel();
    shell.waitForFinished(-1);
    QStringList lines = QString::fromUtf8(shell.readAll()).split('\n');
    lines.removeLast();
    return lines;
}

/// The session as it takes place now.
QStringList sessionNow(const QStringList& lines, const QString& folder)
{
    QStringList now;
    for (const QString& line : lines) {
        if (line.startsWith(prompt)) {
            now += QStringList(line) + outputOf(line.mid(prompt.size()), folder);
        }
    }
    return now;
}

void writeFile(const QDir& folder, const QString& name, const QStringList& lines)
{
    QFile file(folder.filePath(name));
    QVERIFY(folder.mkpath(QFileInfo(file).path()) && file.open(QIODevice::WriteOnly));
    file.write((lines.join('\n') + '\n').toUtf8());
}

} // namespace

/// Plays the examples of the documents about key lists: files are written as they are shown, and commands
/// print what is shown below them.
class DocumentExamplesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void examplesOfTheGuide();
    void examplesOfTheManualPage();
    void examplesOfTheDiagnosis();

private:
    static void copyInstalledLists(const QString& folder);
    static void play(const QVector<Example>& examples, const QString& folder);
};

void DocumentExamplesTest::play(const QVector<Example>& examples, const QString& folder)
{
    int sessions = 0;
    for (const Example& example : examples) {
        if (!example.fileName.isEmpty()) {
            writeFile(QDir(folder), example.fileName, example.lines);
        } else if (example.language == consoleLanguage) {
            ++sessions;
            QCOMPARE(sessionNow(example.lines, folder).join('\n'), example.lines.join('\n'));
        }
    }
    QVERIFY(sessions > 0);
}

void DocumentExamplesTest::examplesOfTheGuide()
{
    const QTemporaryDir folder;
    play(examplesOfDocument(QStringLiteral("docs/first-key-list.md")), folder.path());
}

void DocumentExamplesTest::copyInstalledLists(const QString& folder)
{
    const QDir lists(QStringLiteral(PROJECT_FOLDER "/data"));
    for (const QString& name : lists.entryList({QStringLiteral("*KeyList.json")})) {
        QVERIFY(QFile::copy(lists.filePath(name), QDir(folder).filePath(name)));
    }
}

void DocumentExamplesTest::examplesOfTheManualPage()
{
    const QTemporaryDir folder;
    copyInstalledLists(folder.path());
    play(examplesOfPage(QStringLiteral("packaging/man/keyboard-handler-keys.1.in")), folder.path());
}

/// The other examples of that document need a device.
void DocumentExamplesTest::examplesOfTheDiagnosis()
{
    const QTemporaryDir folder;
    copyInstalledLists(folder.path());
    QVector<Example> examples = examplesOfDocument(QStringLiteral("docs/key-does-nothing.md"));
    const auto isOther = [](const Example& example) { return example.language != consoleLanguage; };
    examples.erase(std::remove_if(examples.begin(), examples.end(), isOther), examples.end());
    play(examples, folder.path());
}

QTEST_GUILESS_MAIN(DocumentExamplesTest)
#include "DocumentExamplesTest.moc"
