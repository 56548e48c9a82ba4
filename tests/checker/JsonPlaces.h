// SPDX-License-Identifier: MIT
#pragma once

#include "checker/JsonText.h"

#include <QJsonDocument>
#include <QVariant>

#include <algorithm>

/// Compares the places that the scanner finds with the values that the loader gets from Qt's reader.
namespace JsonPlaces {

using checker::JsonNode;
using checker::Range;

/// The value of a text that is a part of another.
inline QVariant alone(const QByteArray& text, Range range)
{
    const QByteArray part = text.mid(range.begin, range.end - range.begin);
    return QJsonDocument::fromJson('[' + part + ']').toVariant().toList().value(0);
}

/// Whether Qt's reader certainly keeps this member of an object.
inline bool isKnownToBeKept(const JsonNode& object, const JsonNode& member)
{
    const auto hasItsName = [&member](const JsonNode& other) { return other.name == member.name; };
    return object.keepsLast()
               ? object.member(member.name) == &member
               : std::count_if(object.children.begin(), object.children.end(), hasItsName) == 1;
}

/// What is wrong with the place of a value, or of one in it; empty if nothing is.
inline QString faultOf(const JsonNode& node, const QVariant& value, const QByteArray& text)
{
    if (alone(text, node.range) != value) {
        return QStringLiteral("the text from %1 to %2 is another value")
            .arg(node.range.begin)
            .arg(node.range.end);
    }
    const bool isObject = value.userType() == QMetaType::QVariantMap;
    const QVariantMap members = value.toMap();
    const QVariantList elements = isObject ? QVariantList() : value.toList();
    for (size_t i = 0; i < node.children.size(); ++i) {
        const JsonNode& child = node.children[i];
        if (isObject && (!members.contains(child.name) && node.member(child.name))) {
            return QStringLiteral("the member at %1 has another name").arg(child.nameRange.begin);
        }
        const bool isKept = !isObject || isKnownToBeKept(node, child);
        const QVariant part = isObject ? members.value(child.name) : elements.value(static_cast<int>(i));
        const QString fault = isKept ? faultOf(child, part, text) : QString();
        if (!fault.isEmpty()) {
            return fault;
        }
    }
    const int count = static_cast<int>(node.children.size());
    const bool isWhole = isObject ? members.size() <= count : elements.size() == count;
    return isWhole ? QString() : QStringLiteral("an element is missing");
}

/// What is wrong with the places in a text that Qt's reader accepts; empty if nothing is, or if Qt rejects
/// the text.
inline QString faultIn(const JsonNode& root, const QByteArray& text)
{
    const QJsonDocument document = QJsonDocument::fromJson(text);
    return document.isNull() ? QString() : faultOf(root, document.toVariant(), text);
}

/// Whether all places are parts of `range`, and each value is a part of the one that contains it.
inline bool areWithin(const JsonNode& node, Range range)
{
    const auto isIn = [range](Range part) {
        return part.begin >= range.begin && part.begin <= part.end && part.end <= range.end;
    };
    return isIn(node.range) && isIn(node.nameRange.end > 0 ? node.nameRange : node.range) &&
           std::all_of(node.children.begin(), node.children.end(),
                       [&node](const JsonNode& child) { return areWithin(child, node.range); });
}

} // namespace JsonPlaces
