// SPDX-License-Identifier: MIT
#include "workbench/web/PageFiles.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMap>

namespace {

const QString startFile = QStringLiteral("index.html");

QByteArray typeOf(const QString& name)
{
    static const QMap<QString, QByteArray> types{{QStringLiteral("html"), "text/html; charset=utf-8"},
                                                 {QStringLiteral("css"), "text/css; charset=utf-8"},
                                                 {QStringLiteral("js"), "text/javascript; charset=utf-8"}};
    return types.value(QFileInfo(name).suffix(), "application/octet-stream");
}

std::map<std::string, HttpAnswer> load()
{
    std::map<std::string, HttpAnswer> files;
    const QDir folder(QStringLiteral(":/page"));
    for (const QString& name : folder.entryList()) {
        QFile file(folder.filePath(name));
        file.open(QIODevice::ReadOnly);
        files['/' + (name == startFile ? std::string() : name.toStdString())] = {
            200, typeOf(name), file.readAll(), {}};
    }
    return files;
}

} // namespace

// Not in a namespace: that is how the resources of a library are found.
static void initialiseResources()
{
    Q_INIT_RESOURCE(page);
}

const std::map<std::string, HttpAnswer>& pageFiles()
{
    initialiseResources();
    static const std::map<std::string, HttpAnswer> files = load();
    return files;
}
