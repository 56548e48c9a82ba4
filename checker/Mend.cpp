// SPDX-License-Identifier: MIT
#include "checker/Mend.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <algorithm>

namespace checker {

QByteArray TextEdits::applied(const QByteArray& text, QVector<TextEdit> edits)
{
    std::sort(edits.begin(), edits.end(),
              [](const TextEdit& a, const TextEdit& b) { return a.range.begin < b.range.begin; });
    QByteArray result;
    int at = 0;
    for (const TextEdit& edit : qAsConst(edits)) {
        result += text.mid(at, edit.range.begin - at) + edit.text;
        at = edit.range.end;
    }
    return result + text.mid(at);
}

QVector<TextEdit> TextEdits::toEnd(const QByteArray& text, const QVector<Range>& elements, int index)
{
    const auto textOf = [&](int element) {
        const Range range = elements.at(element);
        return text.mid(range.begin, range.end - range.begin);
    };
    QVector<TextEdit> edits;
    for (int i = index; i < elements.size(); ++i) {
        edits.append({elements.at(i), textOf(i + 1 < elements.size() ? i + 1 : index)});
    }
    return edits;
}

QByteArray TextEdits::quoted(const QString& text)
{
    const QByteArray list = QJsonDocument(QJsonArray{text}).toJson(QJsonDocument::Compact);
    return list.mid(1, list.size() - 2);
}

} // namespace checker
