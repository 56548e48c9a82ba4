// SPDX-License-Identifier: MIT
#include "checker/ScriptRows.h"

#include "checker/Printable.h"
#include "simulator/script/KeyListJson.h"
#include "simulator/script/KeyRowWords.h"

namespace checker {

ScriptRows ScriptRows::of(const ListSources& sources)
{
    // A list without a file has no rows.
    KeyListJson::Files files = KeyListJson::filesOf(QVector<KeyRow>());
    for (const model::List list : sources.found) {
        files.insert(model::KeyLists::fileOf(list), sources.file(list).text());
    }
    const KeyListJson::Parsed parsed = KeyListJson::rowsOf(files);
    ScriptRows rows;
    rows.fault = parsed.faults.value(0);
    for (const KeyRow& row : parsed.rows) {
        const QString statement = QStringLiteral("row ") + KeyRowWords::wordsOf(row).join(QLatin1Char(' '));
        rows.statements.append(statement);
        if (rows.fault.isEmpty() && printable(statement) != statement) {
            rows.fault = QStringLiteral("A name has characters that a terminal would act on.");
        }
    }
    return rows;
}

} // namespace checker
