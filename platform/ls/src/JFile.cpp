// SPDX-License-Identifier: MIT
#include <ls/JFile.h>

#include <vantre/RegularFile.h>

#include <QJsonDocument>
#include <QJsonObject>

namespace ls {

namespace {

constexpr qint64 maxSize = 16 * 1024 * 1024;

} // namespace

JFile::JFile(QObject* parent) : QObject(parent) {}

bool JFile::read(const QString& path, QVariantMap& content)
{
    const QJsonDocument document = QJsonDocument::fromJson(libvantre::readRegularFile(path, maxSize));
    if (!document.isObject()) {
        return false;
    }
    content = document.object().toVariantMap();
    return true;
}

} // namespace ls
