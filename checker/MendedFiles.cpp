// SPDX-License-Identifier: MIT
#include "checker/MendedFiles.h"

#include <QFileInfo>
#include <QSaveFile>

#include <memory>
#include <vector>

namespace checker {

namespace {

/// Also for root, who may write any file: its owner does not want it to be changed.
bool isReadOnly(const QFileInfo& file)
{
    return !file.isWritable() ||
           !(file.permissions() & (QFile::WriteOwner | QFile::WriteGroup | QFile::WriteOther));
}

/// Without those of the user who runs the program: root may execute a file that its owner may not.
QFile::Permissions permissionsOf(const QFileInfo& file)
{
    return file.permissions() & ~(QFile::ReadUser | QFile::WriteUser | QFile::ExeUser);
}

} // namespace

QString MendedFiles::replace(const QVector<SourceFile>& files)
{
    std::vector<std::unique_ptr<QSaveFile>> saved;
    for (const SourceFile& file : files) {
        const QFileInfo info(file.name());
        if (!info.isFile() || isReadOnly(info)) {
            return QStringLiteral("%1 cannot be mended: it is %2.")
                .arg(file.name(), QLatin1String(info.isFile() ? "read-only" : "not a regular file"));
        }
        // A link to a link stays one as well.
        saved.push_back(std::make_unique<QSaveFile>(info.canonicalFilePath()));
        QSaveFile& target = *saved.back();
        const bool isWritten = target.open(QIODevice::WriteOnly) &&
                               target.setPermissions(permissionsOf(info)) &&
                               target.write(file.text()) == file.text().size() && target.flush();
        if (!isWritten) {
            return QStringLiteral("%1 cannot be written: %2.").arg(file.name(), target.errorString());
        }
    }
    for (size_t i = 0; i < saved.size(); ++i) {
        if (!saved[i]->commit()) {
            return QStringLiteral("%1 cannot be written: %2.")
                .arg(files.at(static_cast<int>(i)).name(), saved[i]->errorString());
        }
    }
    return {};
}

} // namespace checker
