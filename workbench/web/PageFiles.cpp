// SPDX-License-Identifier: MIT
#include "workbench/web/PageFiles.h"

#include <QDir>
#include <QFile>

namespace {

QMap<QByteArray, HttpAnswer> load()
{
    const QMap<QString, QByteArray> types{{QStringLiteral("html"), "text/html; charset=utf-8"},
                                          {QStringLiteral("css"), "text/css; charset=utf-8"},
                                          {QStringLiteral("js"), "text/javascript; charset=utf-8"}};
    QMap<QByteArray, HttpAnswer> files;
    for (const QFileInfo& info : QDir(QStringLiteral(":/page")).entryInfoList()) {
        QFile file(info.filePath());
        file.open(QIODevice::ReadOnly);
        const QString name = info.fileName() == QStringLiteral("index.html") ? QString() : info.fileName();
        files.insert(
            '/' + name.toUtf8(),
            {HttpStatus::ok, types.value(info.suffix(), "application/octet-stream"), file.readAll(), {}, {}});
    }
    return files;
}

} // namespace

const QMap<QByteArray, HttpAnswer>& pageFiles()
{
    Q_INIT_RESOURCE(page);
    static const QMap<QByteArray, HttpAnswer> files = load();
    return files;
}
