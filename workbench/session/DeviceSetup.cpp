// SPDX-License-Identifier: MIT
#include "workbench/session/DeviceSetup.h"

#include "simulator/script/KeyListJson.h"
#include "simulator/script/ScriptWords.h"

namespace {

KeyListJson::Files merged(KeyListJson::Files files, const KeyListJson::Files& others)
{
    for (auto file = others.begin(); file != others.end(); ++file) {
        files.insert(file.key(), file.value());
    }
    return files;
}

} // namespace

bool DeviceSetup::areInstalled(const QMap<QString, QByteArray>& keyLists)
{
    return KeyListJson::areEqual(keyLists, KeyListJson::read(QStringLiteral(KEYBOARD_HANDLER_DATA_FOLDER)));
}

DeviceSetup::DeviceSetup(const DeviceOptions& options) : m_options(options)
{
    const QString& folder = options.keyListFolder;
    m_installedKeyLists =
        merged(folder.isEmpty() ? KeyListJson::Files() : KeyListJson::read(folder), options.keyLists);
    m_options.keyListFolder.clear();
    m_options.keyLists = m_installedKeyLists;
}

QString DeviceSetup::check(const Changes& changes)
{
    const QStringList names = changes.keyLists.keys();
    for (const QString& name : names) {
        if (!KeyListJson::fileNames().contains(name)) {
            return QStringLiteral("Unknown key list \"%1\".").arg(name);
        }
    }
    const QString sentence = changes.model.isEmpty() ? QString() : ScriptWords::checkModel(changes.model);
    if (!sentence.isEmpty() || changes.state.isEmpty()) {
        return sentence;
    }
    return ScriptWords::checkState(changes.state);
}

void DeviceSetup::apply(const Changes& changes)
{
    if (!changes.model.isEmpty()) {
        m_options.model = changes.model;
    }
    if (!changes.state.isEmpty()) {
        m_options.state = changes.state;
    }
    const KeyListJson::Files& base = changes.defaultKeyLists ? m_installedKeyLists : m_options.keyLists;
    m_options.keyLists = merged(base, changes.keyLists);
}

void DeviceSetup::apply(const KeyScript& script)
{
    apply({script.model, KeyListJson::filesOf(script), true, script.initialState});
    m_options.services = script.services;
}

void DeviceSetup::setService(const ServiceChange& change)
{
    m_options.services.insert(change.service, change.condition);
}
