// SPDX-License-Identifier: MIT
#include "simulator/script/KeyScript.h"
#include "simulator/script/KeyScriptText.h"
#include "simulator/script/StatementHelp.h"
#include "tests/delivery/documents/Documents.h"

#include <ls/Identifiers.h>

#include <QDir>
#include <QRegularExpression>
#include <QtTest>

using Identifiers = QMap<QString, int>;
using Documents::matches;
using Documents::projectPath;
using Documents::textOf;

namespace {

/// The names by which links reach the headings of a document.
QStringList anchorsOf(const QString& text)
{
    QStringList anchors;
    for (const QString& heading : matches(text, "(?m)^#+ (.+)$")) {
        anchors.append(heading.toLower().remove(QRegularExpression("[^a-z0-9 _-]")).replace(' ', '-'));
    }
    return anchors;
}

} // namespace

/// Checks that the references of the documents exist and that their statements are valid.
class ReferencesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void linkedFilesExist_data();
    void linkedFilesExist();
    void identifiersArePresented_data();
    void identifiersArePresented();
    void scriptsOfTheBehaviourExist();
    void testsOfTheFaultsExist();
    void statementsOfTheReadmeAreValid_data();
    void statementsOfTheReadmeAreValid();
    void statementsOfTheHelpAreDocumented();
};

void ReferencesTest::linkedFilesExist_data()
{
    QTest::addColumn<QString>("document");
    const QStringList names = Documents::names();
    QVERIFY(names.contains(QStringLiteral("README.md")));
    for (const QString& name : names) {
        QTest::newRow(qPrintable(name)) << name;
    }
}

void ReferencesTest::linkedFilesExist()
{
    QFETCH(QString, document);
    const QDir folder = QFileInfo(projectPath(document)).dir();
    const QStringList links = matches(textOf(projectPath(document)), "\\]\\(([^): ]+)\\)");
    for (const QString& link : links) {
        const QString path = link.section('#', 0, 0);
        const QString anchor = link.section('#', 1);
        const QString target = path.isEmpty() ? projectPath(document) : folder.filePath(path);
        QVERIFY2(QFileInfo::exists(target), qPrintable(link));
        QVERIFY2(anchor.isEmpty() || anchorsOf(textOf(target)).contains(anchor), qPrintable(link));
    }
}

void ReferencesTest::identifiersArePresented_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("pattern"); // %1: the identifier, %2: its number
    QTest::addColumn<Identifiers>("identifiers");
    Identifiers keys = ls::KeyId::meta;
    keys.remove(ls::KeyId::Unknown);
    Identifiers commands = ls::KeyboardHandlerCmdId::meta;
    commands.remove(ls::KeyboardHandlerCmdId::GetKeyList);

    QTest::newRow("keys of rows") << "docs/behaviour.md"
                                  << "\n\\| `keys` \\|[^|]*\\b%1\\b" << keys;
    QTest::newRow("states of rows") << "docs/behaviour.md"
                                    << "\n\\| `validOnState` \\|[^|]*\\b%1\\b" << ls::StateId::meta;
    QTest::newRow("codes of keys") << "docs/integration.md"
                                   << "\\| %1 \\| `KEY_\\w+` %2 \\|" << keys;
    QTest::newRow("parameters of commands") << "docs/dbus.md"
                                            << "\n\\| `%1` \\|.*\\|.*\\|\n"
                                            << commands;
    QTest::newRow("senders") << "docs/dbus.md"
                             << "\n\\| `senderId` \\|.*\\b%1\\b" << ls::ServiceId::meta;
    QTest::newRow("commands of the interface") << "data/KeyboardHandler.xml.in"
                                               << "\\b%1\\b" << commands;
    QTest::newRow("keys of the page") << "workbench/page/index.html"
                                      << "data-key=\"%1\"" << keys;
    QTest::newRow("commands of the page") << "workbench/page/index.html"
                                          << "data-command=\"%1\"" << commands;
}

void ReferencesTest::identifiersArePresented()
{
    QFETCH(QString, file);
    QFETCH(QString, pattern);
    QFETCH(Identifiers, identifiers);
    const QString text = textOf(projectPath(file));
    for (auto it = identifiers.cbegin(); it != identifiers.cend(); ++it) {
        const QString expression =
            QString(pattern).replace("%1", it.key()).replace("%2", QString::number(it.value()));
        QVERIFY2(text.contains(QRegularExpression(expression)), qPrintable(it.key()));
    }
}

void ReferencesTest::scriptsOfTheBehaviourExist()
{
    const QDir scripts(projectPath(QStringLiteral("tests/whole/golden")));
    const QString text = textOf(projectPath(QStringLiteral("docs/behaviour.md")));
    const QStringList groups = matches(text, "\\((`[a-z0-9-]+`(?:,\\s+`[a-z0-9-]+`)*)\\)");
    QVERIFY(groups.size() > 1);
    for (const QString& name : matches(groups.join(' '), "`([a-z0-9-]+)`")) {
        QVERIFY2(scripts.exists(name + QStringLiteral(".keys")), qPrintable(name));
    }
}

void ReferencesTest::testsOfTheFaultsExist()
{
    const QDir scripts(projectPath(QStringLiteral("tests/delivery/package")));
    const QDir programs(projectPath(QStringLiteral("tests/delivery/target")));
    QString sources;
    for (const QString& name : programs.entryList({QStringLiteral("*.cpp")})) {
        sources += textOf(programs.filePath(name));
    }
    const QString section = textOf(projectPath(QStringLiteral("docs/reliability.md")))
                                .section(QStringLiteral("\n## On the device\n"), 1)
                                .section(QStringLiteral("\n## "), 0, 0);
    const QStringList rows = matches(section, "\n\\| (.+) \\|");
    QVERIFY(rows.size() > 20);
    for (const QString& row : rows) {
        for (const QString& name : matches(row.section('|', -1), "`([^`]+)`")) {
            QVERIFY2(scripts.exists(name) || sources.contains("::" + name + "()"), qPrintable(name));
        }
    }
}

void ReferencesTest::statementsOfTheReadmeAreValid_data()
{
    QTest::addColumn<QString>("line");
    const QString text = textOf(projectPath(QStringLiteral("README.md")));
    const QString table =
        text.section(QStringLiteral("| to see | type |"), 1).section(QStringLiteral("\n\n"), 0, 0);
    const QStringList lines = matches(table, "\\| `([^`]+)` \\|\n");
    QVERIFY(lines.size() > 1);
    for (const QString& line : lines) {
        QTest::newRow(qPrintable(line)) << line;
    }
}

void ReferencesTest::statementsOfTheReadmeAreValid()
{
    QFETCH(QString, line);
    const ParsedScript parsed = parseKeyScriptSteps(QString(line).replace(';', '\n'));
    QVERIFY2(parsed.faults.isEmpty(), qPrintable(parsed.faults.value(0).text));
    QVERIFY(!parsed.script.steps.isEmpty());
    // Each line must restore the initial state for the next line.
    QString state = parsed.script.initialState;
    for (const ScriptStep& step : parsed.script.steps) {
        state = step.kind == ScriptStep::Kind::State ? step.text : state;
    }
    QCOMPARE(state, ls::StateId::Idle);
}

/// The prompt's help and the document list the same steps, and the parser accepts each.
void ReferencesTest::statementsOfTheHelpAreDocumented()
{
    const QString steps = textOf(projectPath(QStringLiteral("docs/key-scripts.md")))
                              .section(QStringLiteral("## Steps"), 1)
                              .section(QStringLiteral("## Expectations"), 0, 0);
    QStringList documented;
    for (const QString& line : steps.split('\n')) {
        documented += matches(line.section('|', 1, 1), "`([a-z]+) ");
    }
    documented.removeDuplicates();
    documented.sort();
    QStringList offered = matches(statementHelp(), "(?m)^  ([a-z]+) ");
    for (const QString& keyword : qAsConst(offered)) {
        const QVector<ScriptFault> faults = parseKeyScriptSteps(keyword).faults;
        QVERIFY2(faults.isEmpty() || !faults.first().text.contains("keyword"), qPrintable(keyword));
    }
    offered.sort();
    QCOMPARE(offered, documented);
}

QTEST_GUILESS_MAIN(ReferencesTest)
#include "ReferencesTest.moc"
