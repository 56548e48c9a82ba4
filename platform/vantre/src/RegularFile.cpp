// SPDX-License-Identifier: MIT
#include <vantre/RegularFile.h>

#include <QFile>

#include <fcntl.h>
#include <sys/stat.h>

namespace libvantre {

// O_NONBLOCK opens a FIFO without blocking. The file is checked through the descriptor, because the path may
// name another file a moment later.
QByteArray readRegularFile(const QString& path, qint64 maxSize)
{
    const int fd = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    QFile file;
    if (fd == -1 || !file.open(fd, QIODevice::ReadOnly, QFileDevice::AutoCloseHandle)) {
        return {};
    }
    struct stat status = {};
    if (::fstat(fd, &status) == -1 || !S_ISREG(status.st_mode) || status.st_size > maxSize) {
        return {};
    }
    return file.read(status.st_size);
}

} // namespace libvantre
