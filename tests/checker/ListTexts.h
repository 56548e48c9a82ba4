// SPDX-License-Identifier: MIT
#pragma once

#include "checker/ListSources.h"

/// Key lists from texts, for tests.
namespace ListTexts {

/// Lists with these rows, which begin in the second line of each file.
inline checker::ListSources withRows(const QByteArray& longPresses, const QByteArray& combinations,
                                     const QByteArray& shortcuts)
{
    checker::ListSources sources;
    const std::array<QByteArray, 3> rows{longPresses, combinations, shortcuts};
    for (const model::List list : model::allLists) {
        const auto index = static_cast<size_t>(list);
        const QByteArray text =
            "{\"" + model::KeyLists::sectionOf(list).toUtf8() + "\": [\n" + rows[index] + "]}\n";
        sources.files[index] = checker::SourceFile(model::KeyLists::fileOf(list), text);
        sources.found.append(list);
    }
    return sources;
}

/// Lists in which the file of `list` has this text, and the others have no rows.
inline checker::ListSources withText(model::List list, const QByteArray& text)
{
    checker::ListSources sources = withRows({}, {}, {});
    sources.files[static_cast<size_t>(list)] = checker::SourceFile(model::KeyLists::fileOf(list), text);
    return sources;
}

} // namespace ListTexts
