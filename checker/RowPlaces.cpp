// SPDX-License-Identifier: MIT
#include "checker/RowPlaces.h"

#include "keys/KeyListFile.h"

#include <QJsonDocument>
#include <QJsonObject>

namespace checker {

RowPlaces::RowPlaces(const ListSources& sources)
{
    for (const model::List list : model::allLists) {
        add(sources.file(list), list);
    }
}

const JsonNode& RowPlaces::row(model::RowId id) const
{
    return m_rows[static_cast<size_t>(id.list)].at(static_cast<size_t>(id.index));
}

Place RowPlaces::member(model::RowId id, const QString& name) const
{
    const JsonNode* member = row(id).member(name);
    return member ? Place{id.list, member->range, {}} : whole(id);
}

/// Keeps the elements that the loader makes rows of.
void RowPlaces::add(const SourceFile& file, model::List list)
{
    if (file.text().size() > KeyListFile::maxSize || !QJsonDocument::fromJson(file.text()).isObject()) {
        return;
    }
    const JsonNode root = JsonText::scan(file.text());
    const JsonNode* section = root.member(model::KeyLists::sectionOf(list));
    if (!section || section->kind != JsonNode::Kind::Array) {
        return;
    }
    for (const JsonNode& element : section->children) {
        m_elements[static_cast<size_t>(list)].append(element.range);
        if (element.kind == JsonNode::Kind::Object) {
            m_rows[static_cast<size_t>(list)].push_back(element);
        } else {
            m_skipped[static_cast<size_t>(list)].append(element.range);
        }
    }
}

} // namespace checker
