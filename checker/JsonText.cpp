// SPDX-License-Identifier: MIT
#include "checker/JsonText.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <algorithm>

namespace checker {

namespace {

/// Qt's reader rejects deeper texts.
constexpr int maxDepth = 1024;

class Scanner
{
public:
    explicit Scanner(const QByteArray& text) : m_text(text) {}

    JsonNode scanRoot();

private:
    JsonNode scanValue(int depth);
    void scanChildren(JsonNode& node, char end, int depth);
    JsonNode scanMember(int depth);
    void skipString();
    void skipScalar();
    void skipBlanks();
    bool isAtEnd() const { return m_at >= m_text.size(); }
    char here() const { return isAtEnd() ? '\0' : m_text.at(m_at); }

    const QByteArray& m_text;
    int m_at = 0;
};

QString decoded(const QByteArray& quoted)
{
    return QJsonDocument::fromJson('[' + quoted + ']').array().first().toString();
}

JsonNode Scanner::scanRoot()
{
    m_at = m_text.startsWith(byteOrderMark) ? byteOrderMark.size() : 0;
    return scanValue(0);
}

JsonNode Scanner::scanValue(int depth)
{
    skipBlanks();
    JsonNode node;
    node.range.begin = m_at;
    if (here() == '{') {
        node.kind = JsonNode::Kind::Object;
        scanChildren(node, '}', depth);
    } else if (here() == '[') {
        node.kind = JsonNode::Kind::Array;
        scanChildren(node, ']', depth);
    } else if (here() == '"') {
        node.kind = JsonNode::Kind::Text;
        skipString();
    } else {
        skipScalar();
    }
    node.range.end = m_at;
    if (node.kind >= JsonNode::Kind::Text) {
        node.written = m_text.mid(node.range.begin, m_at - node.range.begin);
    }
    return node;
}

void Scanner::scanChildren(JsonNode& node, char end, int depth)
{
    ++m_at;
    skipBlanks();
    while (!isAtEnd() && here() != end && depth < maxDepth) {
        const int before = m_at;
        node.children.push_back(node.kind == JsonNode::Kind::Object ? scanMember(depth + 1)
                                                                    : scanValue(depth + 1));
        skipBlanks();
        if (here() == ',') {
            ++m_at;
            skipBlanks();
        }
        if (m_at == before) {
            return; // the text is not JSON
        }
    }
    m_at = qMin(m_at + 1, m_text.size());
}

JsonNode Scanner::scanMember(int depth)
{
    Range name{m_at, m_at};
    skipString();
    name.end = m_at;
    skipBlanks();
    if (here() == ':') {
        ++m_at;
    }
    JsonNode node = scanValue(depth);
    node.nameRange = name;
    node.name = decoded(m_text.mid(name.begin, name.end - name.begin));
    return node;
}

void Scanner::skipString()
{
    if (here() != '"') {
        return;
    }
    ++m_at;
    while (!isAtEnd() && here() != '"') {
        m_at += here() == '\\' ? 2 : 1;
    }
    m_at = qMin(m_at + 1, m_text.size());
}

void Scanner::skipScalar()
{
    static const QByteArray ends = QByteArrayLiteral(",:]}\" \t\r\n");
    while (!isAtEnd() && !ends.contains(here())) {
        ++m_at;
    }
}

void Scanner::skipBlanks()
{
    static const QByteArray blanks = QByteArrayLiteral(" \t\r\n");
    while (!isAtEnd() && blanks.contains(here())) {
        ++m_at;
    }
}

} // namespace

const JsonNode* JsonNode::member(const QString& wanted) const
{
    const auto last = std::find_if(children.rbegin(), children.rend(),
                                   [&](const JsonNode& child) { return child.name == wanted; });
    return kind == Kind::Object && last != children.rend() ? &*last : nullptr;
}

bool JsonNode::keepsLast() const
{
    constexpr size_t maxMembers = 16;
    return children.size() <= maxMembers;
}

bool JsonNode::isWrittenLike(const JsonNode& other) const
{
    const auto areAlike = [](const JsonNode& a, const JsonNode& b) {
        return a.name == b.name && a.isWrittenLike(b);
    };
    return kind == other.kind && written == other.written &&
           std::equal(children.begin(), children.end(), other.children.begin(), other.children.end(),
                      areAlike);
}

JsonNode JsonText::scan(const QByteArray& text)
{
    return Scanner(text).scanRoot();
}

} // namespace checker
