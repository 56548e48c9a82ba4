// SPDX-License-Identifier: MIT
#include "workbench/web/PageFiles.h"

#include <QDir>
#include <QFile>

namespace {

/// Adds the resources of `folder` at `path`.
void add(QMap<QByteArray, HttpAnswer>& files, const QString& folder, const QByteArray& path)
{
    const QMap<QString, QByteArray> types{{QStringLiteral("html"), "text/html; charset=utf-8"},
                                          {QStringLiteral("css"), "text/css; charset=utf-8"},
                                          {QStringLiteral("js"), "text/javascript; charset=utf-8"},
                                          {QStringLiteral("md"), "text/plain; charset=utf-8"},
                                          {QStringLiteral("keys"), "text/plain; charset=utf-8"}};
    for (const QFileInfo& info : QDir(folder).entryInfoList()) {
        QFile file(info.filePath());
        file.open(QIODevice::ReadOnly);
        const QString name = info.fileName() == QStringLiteral("index.html") ? QString() : info.fileName();
        files.insert(
            path + name.toUtf8(),
            {HttpStatus::ok, types.value(info.suffix(), "application/octet-stream"), file.readAll(), {}, {}});
    }
}

QMap<QByteArray, HttpAnswer> load()
{
    QMap<QByteArray, HttpAnswer> files;
    add(files, QStringLiteral(":/page"), "/");
    add(files, QStringLiteral(":/documents"), "/documents/");
    return files;
}

} // namespace

const QMap<QByteArray, HttpAnswer>& pageFiles()
{
    Q_INIT_RESOURCE(page);
    Q_INIT_RESOURCE(documents);
    static const QMap<QByteArray, HttpAnswer> files = load();
    return files;
}
