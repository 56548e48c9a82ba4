// SPDX-License-Identifier: MIT
#include "simulator/device/DeviceFolder.h"

#include <QDir>
#include <QFile>

#include <cerrno>
#include <cstring>
#include <sys/stat.h>

namespace {

const QString keyListFolder = QStringLiteral("lib/keyboard-handler/");
const QString readinessFolder = QStringLiteral("run/service-watcher/");
const QString configurationFolder = QStringLiteral("lib/configuration-manager/");

} // namespace

DeviceFolder::DeviceFolder(const DeviceOptions& options)
    : m_folder(QDir::tempPath() + QStringLiteral("/simulated-device-XXXXXX"))
{
    if (!m_folder.isValid()) {
        fail(m_folder.errorString());
        return;
    }
    makeFolders();
    makeKeyboards(options);
    makeKeyLists(options);
    if (!options.model.isEmpty()) {
        makeConfiguration(options.model);
    }
}

QString DeviceFolder::keyboardFile(int keyboard) const
{
    return path(QStringLiteral("input/event%1").arg(keyboard));
}

QString DeviceFolder::keyList(const QString& fileName) const
{
    return path(keyListFolder + fileName);
}

bool DeviceFolder::isReady(const QString& name) const
{
    return QFile::exists(path(readinessFolder + name));
}

void DeviceFolder::setReady(const QString& name, bool ready)
{
    if (ready) {
        write(readinessFolder + name, {});
    } else {
        QFile::remove(path(readinessFolder + name));
    }
}

void DeviceFolder::makeFolders()
{
    const QDir folder(m_folder.path());
    for (const QString& name : {QStringLiteral("input"), keyListFolder, configurationFolder, readinessFolder,
                                QStringLiteral("run/dbus")}) {
        if (!folder.mkpath(name)) {
            fail(QStringLiteral("The folder %1 cannot be created.").arg(path(name)));
        }
    }
}

void DeviceFolder::makeKeyboards(const DeviceOptions& options)
{
    for (int keyboard = 0; keyboard < int(options.keyboards.size()); ++keyboard) {
        if (!options.keyboards.at(size_t(keyboard))) {
            continue;
        }
        if (mkfifo(QFile::encodeName(keyboardFile(keyboard)).constData(), S_IRUSR | S_IWUSR) == -1) {
            fail(QStringLiteral("%1: %2").arg(keyboardFile(keyboard),
                                              QString::fromLocal8Bit(strerror(errno))));
        }
    }
}

void DeviceFolder::makeKeyLists(const DeviceOptions& options)
{
    if (!options.keyListFolder.isEmpty()) {
        const QDir source(options.keyListFolder);
        const QStringList names = source.entryList({QStringLiteral("*.json")}, QDir::Files);
        for (const QString& name : names) {
            if (!QFile::copy(source.filePath(name), keyList(name))) {
                fail(QStringLiteral("The key list %1 cannot be copied.").arg(source.filePath(name)));
            }
        }
    }
    for (auto file = options.keyLists.begin(); file != options.keyLists.end(); ++file) {
        write(keyListFolder + file.key(), file.value());
    }
}

void DeviceFolder::makeConfiguration(const QString& model)
{
    write(configurationFolder + QStringLiteral("configuration.json"),
          QStringLiteral("{\"model\": \"%1\"}\n").arg(model).toUtf8());
}

void DeviceFolder::write(const QString& file, const QByteArray& content)
{
    QFile output(path(file));
    if (!output.open(QIODevice::WriteOnly) || output.write(content) != content.size() || !output.flush()) {
        fail(QStringLiteral("%1 cannot be written: %2").arg(output.fileName(), output.errorString()));
    }
}

void DeviceFolder::fail(const QString& sentence)
{
    if (m_error.isEmpty()) {
        m_error = sentence;
    }
}
