// SPDX-License-Identifier: MIT
#include "workbench/terminal/RecordingFile.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryFile>

namespace {

bool writeAll(QFile& file, const QString& text)
{
    const QByteArray bytes = text.toUtf8();
    return file.write(bytes) == bytes.size() && file.flush();
}

QString cannotBeWritten(const QFile& file)
{
    return QStringLiteral("%1 cannot be written: %2.").arg(file.fileName(), file.errorString());
}

} // namespace

QString RecordingFile::check(const QString& path)
{
    const QFileInfo info(path);
    // Opening and closing a pipe would end the recording for its reader.
    if (info.exists() && !info.isFile() && !info.isDir()) {
        return {};
    }
    QFile file(path);
    return file.open(QIODevice::WriteOnly | QIODevice::Append) ? QString() : cannotBeWritten(file);
}

QString RecordingFile::write(const QString& path, const QString& text)
{
    QFile file(path);
    if (file.open(QIODevice::WriteOnly) && writeAll(file, text)) {
        return {};
    }
    QTemporaryFile substitute(QDir::tempPath() + QStringLiteral("/recording-XXXXXX.keys"));
    substitute.setAutoRemove(false);
    const bool isSaved = substitute.open() && writeAll(substitute, text);
    return cannotBeWritten(file) +
           (isSaved ? QStringLiteral(" The recording is in %1.").arg(substitute.fileName())
                    : QLatin1Char(' ') + cannotBeWritten(substitute));
}
