// SPDX-License-Identifier: MIT
#include <ls/JFile.h>

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>

#include <fcntl.h>
#include <sys/stat.h>

namespace ls {

namespace {

constexpr off_t largestFile = 16 * 1024 * 1024;

// A FIFO opens at once with O_NONBLOCK, and what was opened cannot be exchanged any more when it is
// looked at.
QByteArray readRegularFile(const QString& path)
{
    const int fd = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    QFile file;
    if (fd == -1 || !file.open(fd, QIODevice::ReadOnly, QFileDevice::AutoCloseHandle)) {
        return {};
    }
    struct stat status = {};
    if (::fstat(fd, &status) == -1 || !S_ISREG(status.st_mode) || status.st_size > largestFile) {
        return {};
    }
    return file.read(status.st_size);
}

} // namespace

JFile::JFile(QObject* parent) : QObject(parent) {}

bool JFile::read(const QString& path, QVariantMap& content)
{
    const QJsonDocument document = QJsonDocument::fromJson(readRegularFile(path));
    if (!document.isObject()) {
        return false;
    }
    content = document.object().toVariantMap();
    return true;
}

} // namespace ls
