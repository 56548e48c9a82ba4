// SPDX-License-Identifier: MIT
#include "checker/Explanations.h"

#include <QDir>
#include <QRegularExpression>
#include <QSet>
#include <QtTest>

using namespace checker;

namespace {

/// The ids of the findings of an example that explains `id`. Rows with the same keys announce each other,
/// which is a note about each.
QStringList idsOf(const QVector<Finding>& findings, const QString& id)
{
    QStringList ids;
    for (const Finding& finding : findings) {
        if (finding.id == id || finding.id != QLatin1String("also")) {
            ids.append(finding.id);
        }
    }
    return ids;
}

QStringList explainedIds()
{
    QStringList ids;
    for (const Explanation& explanation : Explanations::all()) {
        ids.append(explanation.id);
    }
    return ids;
}

/// The ids that the sources of the checks give to findings.
QSet<QString> idsInSources()
{
    static const QRegularExpression pattern(QStringLiteral(
        "(?:\\bid = |\\badd\\((?:id, )?|\\batOffset\\(list, )(?:QStringLiteral\\()?\"([a-z-]+)\""));
    QSet<QString> ids;
    const QDir folder(QStringLiteral(PROJECT_FOLDER "/checker"));
    for (const QString& name : folder.entryList({QStringLiteral("*.cpp")})) {
        QFile file(folder.filePath(name));
        if (file.open(QIODevice::ReadOnly)) {
            // The formatter may break a line before the id.
            const QString text =
                QString::fromUtf8(file.readAll()).replace(QRegularExpression("\\(\\s+"), "(");
            for (auto it = pattern.globalMatch(QString(text).replace(QRegularExpression(",\\s+"), ", "));
                 it.hasNext();) {
                ids.insert(it.next().captured(1));
            }
        }
    }
    return ids;
}

} // namespace

/// Checks that each finding is explained, and that the examples of the explanations are true.
class ExplanationsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void allIdsAreExplained();
    void textsHaveTheirForm();
    void explanationsAreFoundById();
    void badExamplesHaveTheFinding_data() { explanationsWithExamples(); }
    void badExamplesHaveTheFinding();
    void goodExamplesHaveNoFinding_data() { explanationsWithExamples(); }
    void goodExamplesHaveNoFinding();

private:
    static void explanationsWithExamples();
};

void ExplanationsTest::allIdsAreExplained()
{
    const QStringList explained = explainedIds();
    const QSet<QString> given = idsInSources();
    QVERIFY(given.size() > 20);
    QCOMPARE(QSet<QString>(explained.begin(), explained.end()), given);
    QCOMPARE(explained.size(), given.size());
}

void ExplanationsTest::textsHaveTheirForm()
{
    for (const Explanation& explanation : Explanations::all()) {
        QVERIFY2(!explanation.title.endsWith('.') && !explanation.title.contains('\n'),
                 qPrintable(explanation.title));
        QVERIFY2(explanation.text.endsWith('.'), qPrintable(explanation.id));
        QCOMPARE(explanation.bad.has_value(), explanation.good.has_value());
    }
}

void ExplanationsTest::explanationsAreFoundById()
{
    QCOMPARE(Explanations::find("time")->id, QString("time"));
    QVERIFY(!Explanations::find("Time"));
    QVERIFY(!Explanations::find(QString()));
}

void ExplanationsTest::explanationsWithExamples()
{
    QTest::addColumn<QString>("id");
    for (const Explanation& explanation : Explanations::all()) {
        if (explanation.bad) {
            QTest::newRow(qPrintable(explanation.id)) << explanation.id;
        }
    }
}

void ExplanationsTest::badExamplesHaveTheFinding()
{
    QFETCH(QString, id);
    const Explanation* explanation = Explanations::find(id);
    const CheckResult result = check(explanation->bad->sources(), explanation->bad->options);
    QCOMPARE(idsOf(result.findings, id), QStringList(id));
    for (const Finding& finding : result.findings) {
        QVERIFY(finding.id != id || finding.level == explanation->level);
    }
    QVERIFY(result.isProved);
}

void ExplanationsTest::goodExamplesHaveNoFinding()
{
    QFETCH(QString, id);
    const Explanation* explanation = Explanations::find(id);
    const CheckResult result = check(explanation->good->sources(), explanation->good->options);
    QVERIFY(result.findings.isEmpty());
    QVERIFY(result.isProved);
}

QTEST_GUILESS_MAIN(ExplanationsTest)
#include "ExplanationsTest.moc"
