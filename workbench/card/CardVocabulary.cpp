// SPDX-License-Identifier: MIT
#include "workbench/card/CardVocabulary.h"

#include "vocabulary/Vocabulary.h"

#include <ls/Identifiers.h>

namespace CardVocabulary {

QStringList panelKeys()
{
    QStringList keys = ls::KeyId::meta.keys();
    keys.removeOne(ls::KeyId::Unknown); // means "no key"
    return keys;
}

bool isPanelKey(const QString& key)
{
    return key != ls::KeyId::Unknown && ls::KeyId::meta.contains(key);
}

QStringList states()
{
    QMap<int, QString> byNumber;
    for (auto it = ls::StateId::meta.cbegin(); it != ls::StateId::meta.cend(); ++it) {
        byNumber.insert(it.value(), it.key());
    }
    return byNumber.values() << vocabulary::undefined;
}

bool acceptsKeys(const QString& state)
{
    return state != ls::StateId::Startup &&
           (ls::StateId::meta.contains(state) || state == vocabulary::undefined);
}

} // namespace CardVocabulary
