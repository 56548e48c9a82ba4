// SPDX-License-Identifier: MIT
#include "checker/WitnessFiles.h"

#include "checker/ScriptRows.h"
#include "checker/SearchWords.h"
#include "model/RowProofs.h"
#include "model/Witness.h"

#include <QDir>
#include <QFileInfo>
#include <QSaveFile>

namespace checker {

using model::RowVerdict;
using model::State;

namespace {

QString nameOf(model::RowId id, State state)
{
    return QStringLiteral("%1-%2-%3.keys")
        .arg(QFileInfo(model::KeyLists::fileOf(id.list)).baseName())
        .arg(id.index + 1)
        .arg(model::Alphabet::nameOf(state));
}

QString textOf(const model::KeyModel& keyModel, const RowVerdict& verdict, const QStringList& rows)
{
    const auto playback = model::Witness::play(keyModel, verdict.proof.environment, verdict.witness);
    QStringList lines = model::Witness::toScript(playback, keyModel.lists()).split(QLatin1Char('\n'));
    const QString header = lines.takeFirst(); // the model
    return (QStringList(header) + rows + lines).join(QLatin1Char('\n'));
}

QString writeFile(const QString& path, const QString& text)
{
    QSaveFile file(path);
    const QByteArray bytes = text.toUtf8();
    const bool isWritten =
        file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.flush() && file.commit();
    return isWritten ? QString() : QStringLiteral("%1 cannot be written: %2.").arg(path, file.errorString());
}

} // namespace

QString WitnessFiles::write(const ListSources& sources, const CheckOptions& options, const QString& folder)
{
    const ScriptRows rows = ScriptRows::of(sources);
    if (!rows.fault.isEmpty()) {
        return rows.fault;
    }
    if (!QDir().mkpath(folder)) {
        return QStringLiteral("The folder %1 cannot be created.").arg(folder);
    }
    model::Environment person;
    person.kind = model::Environment::Kind::Person;
    person.fingers = options.fingers;
    person.stateChanges = false;
    person.keyboardTest = false;
    const model::KeyModel keyModel(sources.lists(options.isOrvane.value_or(false)));
    const model::RowProofs proofs(keyModel.lists(), person, searchLimits);
    for (const model::RowId id : keyModel.lists().ids()) {
        for (const State state : model::Alphabet::states()) {
            const RowVerdict& verdict = proofs.of(id, state);
            if (verdict.kind != RowVerdict::Kind::Announced) {
                continue;
            }
            const QString path = QDir(folder).filePath(nameOf(id, state));
            const QString fault = writeFile(path, textOf(keyModel, verdict, rows.statements));
            if (!fault.isEmpty()) {
                return fault;
            }
        }
    }
    return {};
}

} // namespace checker
