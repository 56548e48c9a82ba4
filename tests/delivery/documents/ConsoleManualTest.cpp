// SPDX-License-Identifier: MIT
#include "tests/delivery/documents/FencedBlocks.h"
#include "tests/support/Waiting.h"
#include "tests/whole/system/SystemTest.h"

namespace {

const QString typedMark = QStringLiteral("> ");
const QString textLanguage = QStringLiteral("text");
const QString registered = QStringLiteral("Successfully registered on DBus: \"com.vantre.KeyboardHandler\"");

/// The printed lines of a session, as in the daemon's log.
QStringList printedLines(const QStringList& session)
{
    QStringList printed;
    for (const QString& line : session) {
        if (!line.startsWith(typedMark)) {
            printed.append(line);
        }
    }
    return printed;
}

} // namespace

/// Types each session of the console's manual: lines after "> " are input, the others are the expected
/// output. A block "rules" of the same name contains the logging rules.
class ConsoleManualTest : public SystemTest
{
    Q_OBJECT

private Q_SLOTS:
    void sessions_data();
    void sessions();

private:
    void playSession(const QStringList& session);
    /// The log since the daemon became ready.
    QStringList printed() const { return log().mid(1); }

    const FencedBlocks m_manual{QStringLiteral("console.md")};
};

void ConsoleManualTest::sessions_data()
{
    QTest::addColumn<QString>("name");
    const QStringList names = m_manual.names(textLanguage);
    QVERIFY(!names.isEmpty());
    for (const QString& name : names) {
        QTest::newRow(qPrintable(name)) << name;
    }
}

void ConsoleManualTest::sessions()
{
    QFETCH(QString, name);
    const QStringList session = m_manual.lines(textLanguage, name);
    QVERIFY(session.first().startsWith(typedMark));
    options.loggingRules = m_manual.text(QStringLiteral("rules"), name).trimmed();
    QVERIFY(launch());
    QVERIFY(awaitLog(registered));
    playSession(session);
}

void ConsoleManualTest::playSession(const QStringList& session)
{
    for (int i = 0; i < session.size(); ++i) {
        if (session.at(i).startsWith(typedMark)) {
            // Types the next line only after the output of the previous one.
            const QStringList before = printedLines(session.mid(0, i));
            WAIT_FOR_EQUAL(printed(), before);
            device().typeLine(session.at(i).mid(typedMark.size()));
        }
    }
    WAIT_FOR_EQUAL(printed(), printedLines(session));
}

QTEST_GUILESS_MAIN(ConsoleManualTest)
#include "ConsoleManualTest.moc"
