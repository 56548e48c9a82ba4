// SPDX-License-Identifier: MIT
#include "checker/DifferenceReport.h"

#include "checker/EffectWords.h"
#include "checker/OutputWords.h"
#include "checker/Printable.h"
#include "checker/RunWords.h"
#include "checker/SearchWords.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <numeric>

using namespace model;

namespace checker {

namespace {

bool isForUsers(const Output& output)
{
    return output.kind == Output::Kind::Speak || output.kind == Output::Kind::Announce;
}

bool isForServices(const Output& output)
{
    return output.kind == Output::Kind::Announce;
}

Environment personAtOneDevice()
{
    Environment environment = Environment::person();
    environment.devices = 1;
    environment.panelKeysOnly = true;
    environment.maxStateChanges = 1;
    return environment;
}

QStringList textsOf(const QVector<Output>& outputs)
{
    QStringList texts;
    for (const Output& output : outputs) {
        texts.append(OutputWords::of(output));
    }
    return texts;
}

/// The keys, with the state in which they begin if it is not that of the difference.
QString keysOf(const Difference& difference)
{
    const QString keys = RunWords::of(difference.oldSteps, difference.end);
    const bool isSame =
        difference.oldSteps.isEmpty() || difference.oldSteps.first().before.state == difference.state;
    return isSame ? keys
                  : QStringLiteral("in %1, %2")
                        .arg(Alphabet::nameOf(difference.oldSteps.first().before.state), keys);
}

QString joined(const QStringList& texts)
{
    return texts.isEmpty() ? QStringLiteral("nothing") : texts.join(QStringLiteral("; "));
}

/// What a list does with the keys, each phrase with its event.
QStringList rulesOf(const QVector<PlayedStep>& steps, const EffectWords& effects)
{
    QStringList rules;
    for (int i = 0; i < steps.size(); ++i) {
        const QStringList phrases = effects.phrasesOf(steps, i);
        for (const QString& phrase : phrases) {
            rules.append(EffectWords::eventOf(steps.at(i)) + QLatin1Char(' ') + phrase);
        }
    }
    return rules;
}

int sizeOf(const DifferenceWords& words)
{
    int size = words.keys.size();
    for (const QStringList& texts : {words.was, words.now, words.oldRules, words.newRules}) {
        size = std::accumulate(texts.begin(), texts.end(), size,
                               [](int sum, const QString& text) { return sum + text.size(); });
    }
    return size;
}

/// The rules of one list, and the same without the places of rows, which differ between two files.
struct ListRules
{
    ListRules(const QVector<PlayedStep>& steps, const KeyLists& lists, const PlaceOf& placeOf)
        : placed(rulesOf(steps, {lists, placeOf}))
        , bare(rulesOf(steps, {lists, [](RowId) { return QString(); }}))
    {}

    QStringList without(const ListRules& other, QString& lastOfRow) const;

    QStringList placed;
    QStringList bare;
};

QStringList ListRules::without(const ListRules& other, QString& lastOfRow) const
{
    QStringList others = other.bare;
    QStringList own;
    for (int i = 0; i < bare.size(); ++i) {
        if (!others.removeOne(bare.at(i))) {
            own.append(placed.at(i));
            lastOfRow = placed.at(i) == bare.at(i) ? lastOfRow : placed.at(i);
        }
    }
    return own;
}

QString because(const QStringList& outputs, const QString& cause)
{
    return joined(outputs) + (cause.isEmpty() ? QString() : QStringLiteral(", because ") + cause);
}

QString rowOf(const QStringList& cells)
{
    QString row = QStringLiteral("<tr><th scope=\"row\">") + cells.first();
    for (const QString& cell : cells.mid(1)) {
        row += QStringLiteral("<td>") + cell;
    }
    return row + QLatin1Char('\n');
}

QString escaped(const QString& text)
{
    return printable(text).toHtmlEscaped();
}

QString cellOf(const QStringList& outputs, const QStringList& rules)
{
    QStringList lines(joined(outputs));
    for (const QString& rule : rules) {
        lines.append(QStringLiteral("Only here: ") + rule);
    }
    std::transform(lines.begin(), lines.end(), lines.begin(), escaped);
    return lines.join(QStringLiteral("<br>"));
}

} // namespace

DifferenceReport::DifferenceReport(const ComparedLists& compared, const Extent& extent) : m_compared(compared)
{
    ListComparison comparison(compared.oldLists, compared.newLists,
                              compared.forServices ? isForServices : isForUsers);
    QVector<Difference> differences = comparison.find(personAtOneDevice(), extent.limits);
    m_proof = comparison.proof();
    std::stable_sort(differences.begin(), differences.end(), [](const Difference& a, const Difference& b) {
        return a.state != b.state ? a.state < b.state : a.oldSteps.size() < b.oldSteps.size();
    });
    int size = 0;
    for (const Difference& difference : qAsConst(differences)) {
        if (m_words.size() < extent.maxDifferences && size < extent.maxText) {
            m_words.append(wordsOf(difference));
            size += sizeOf(m_words.last());
        }
    }
    m_leftOut = differences.size() - m_words.size();
}

DifferenceWords DifferenceReport::wordsOf(const Difference& difference) const
{
    DifferenceWords words;
    words.state = Alphabet::nameOf(difference.state);
    words.keys = keysOf(difference);
    words.was = textsOf(difference.oldOutputs);
    words.now = textsOf(difference.newOutputs);
    const ListRules oldRules(difference.oldSteps, m_compared.oldLists, m_compared.oldPlaceOf);
    const ListRules newRules(difference.newSteps, m_compared.newLists, m_compared.newPlaceOf);
    words.oldRules = oldRules.without(newRules, words.oldCause);
    words.newRules = newRules.without(oldRules, words.newCause);
    return words;
}

QString DifferenceReport::conclusion() const
{
    const QString start =
        m_proof.isComplete ? m_words.isEmpty() ? QStringLiteral("No difference: proved, ")
                                               : QStringLiteral("Searched to the end, ")
        : m_words.isEmpty()
            ? QStringLiteral("No difference was found, but it is not proved that there is none: ")
            : QStringLiteral("It is not proved that these are all: ");
    return start + SearchWords::extentOf(m_proof) + QLatin1Char('.');
}

/// What the person does, what was noticed, and what is noticed now.
QStringList DifferenceReport::linesOf(const DifferenceWords& words)
{
    return {QStringLiteral("%1: %2").arg(words.state, words.keys),
            QStringLiteral("was ") + because(words.was, words.oldCause),
            QStringLiteral("now ") + because(words.now, words.newCause)};
}

QString DifferenceReport::text() const
{
    const QString indent(4, QLatin1Char(' '));
    QStringList lines;
    for (const DifferenceWords& words : m_words) {
        const QStringList all = linesOf(words);
        lines << all.at(0) << indent + all.at(1) << indent + all.at(2);
    }
    lines.append(conclusion());
    std::transform(lines.begin(), lines.end(), lines.begin(), printable);
    return lines.join(QLatin1Char('\n')) + QLatin1Char('\n');
}

QByteArray DifferenceReport::json() const
{
    QJsonArray differences;
    for (const DifferenceWords& words : m_words) {
        differences.append(
            QJsonObject{{QStringLiteral("state"), words.state},
                        {QStringLiteral("keys"), words.keys},
                        {QStringLiteral("was"), QJsonArray::fromStringList(words.was)},
                        {QStringLiteral("now"), QJsonArray::fromStringList(words.now)},
                        {QStringLiteral("oldRules"), QJsonArray::fromStringList(words.oldRules)},
                        {QStringLiteral("newRules"), QJsonArray::fromStringList(words.newRules)},
                        {QStringLiteral("lines"), QJsonArray::fromStringList(linesOf(words))}});
    }
    return QJsonDocument({{QStringLiteral("version"), version},
                          {QStringLiteral("old"), m_compared.oldPath},
                          {QStringLiteral("new"), m_compared.newPath},
                          {QStringLiteral("for"),
                           m_compared.forServices ? QStringLiteral("services") : QStringLiteral("users")},
                          {QStringLiteral("model"), m_compared.newLists.isOrvane ? QStringLiteral("Orvane")
                                                                                 : QStringLiteral("Pellit")},
                          {QStringLiteral("differences"), differences},
                          {QStringLiteral("leftOut"), m_leftOut},
                          {QStringLiteral("conclusion"), conclusion()},
                          {QStringLiteral("environment"), m_proof.environment.toText()},
                          {QStringLiteral("situations"), static_cast<qint64>(m_proof.situations)},
                          {QStringLiteral("steps"), static_cast<qint64>(m_proof.steps)},
                          {QStringLiteral("complete"), m_proof.isComplete}})
        .toJson();
}

QString DifferenceReport::html() const
{
    const QString title =
        QStringLiteral("Key lists: %1 and %2").arg(escaped(m_compared.oldPath), escaped(m_compared.newPath));
    QString page =
        QStringLiteral(
            "<!DOCTYPE html>\n<html lang=\"en\">\n<meta charset=\"utf-8\">\n"
            "<meta name=\"viewport\" content=\"width=device-width\">\n"
            "<title>%1</title>\n<style>\n"
            ":root { color-scheme: light dark; font-family: sans-serif; overflow-wrap: anywhere }\n"
            "table { border-collapse: collapse }\n"
            "caption { text-align: start }\n"
            "th, td { border: 1px solid; padding: 0.3em; text-align: start; "
            "vertical-align: top }\n"
            "</style>\n<main>\n<h1>%1</h1>\n<p>%2</p>\n")
            .arg(title, escaped(conclusion()));
    QString state;
    for (const DifferenceWords& words : m_words) {
        if (words.state != state) {
            page += state.isEmpty() ? QString() : QStringLiteral("</table>\n");
            state = words.state;
            page += QStringLiteral("<h2>%1</h2>\n<table>\n<caption>Differences in the state %1</caption>\n"
                                   "<tr><th scope=\"col\">Keys<th scope=\"col\">Old list"
                                   "<th scope=\"col\">New list\n")
                        .arg(escaped(state));
        }
        page += rowOf(
            {escaped(words.keys), cellOf(words.was, words.oldRules), cellOf(words.now, words.newRules)});
    }
    return page + (state.isEmpty() ? QString() : QStringLiteral("</table>\n")) + QStringLiteral("</main>\n");
}

} // namespace checker
