// SPDX-License-Identifier: MIT
#include "tests/checker/JsonSchema.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryFile>

QByteArray JsonSchema::sarif()
{
    QFile file(QStringLiteral(SARIF_SCHEMA));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QString JsonSchema::faultsOf(const QByteArray& document, const QByteArray& schema)
{
    QTemporaryFile file;
    if (!file.open() || file.write(schema) != schema.size() || !file.flush()) {
        return file.errorString();
    }
    QProcess validator;
    validator.setProcessChannelMode(QProcess::MergedChannels);
    validator.start(QStringLiteral(NODE),
                    {QStringLiteral(VALIDATOR), QStringLiteral(MODULES), file.fileName()});
    validator.write(document);
    validator.closeWriteChannel();
    validator.waitForFinished(-1);
    const QString output = QString::fromUtf8(validator.readAll());
    const bool isClean = validator.exitStatus() == QProcess::NormalExit && validator.exitCode() == 0;
    return isClean || !output.isEmpty() ? output : validator.errorString();
}
