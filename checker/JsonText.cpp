// SPDX-License-Identifier: MIT
#include "checker/JsonText.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <algorithm>

namespace checker {

namespace {

/// Qt's reader rejects deeper texts.
constexpr int maxDepth = 1024;
constexpr QChar byteOrderMark{0xFEFF};
const QByteArray encodedMark = QByteArrayLiteral("\xEF\xBB\xBF");

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
    m_at = m_text.startsWith(encodedMark) ? encodedMark.size() : 0;
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
    const QByteArray written = m_text.mid(name.begin, name.end - name.begin);
    node.name = decoded(written);
    // Qt keeps a name with escape sequences in another encoding, in which it does not remove a mark.
    const bool losesMark = written.startsWith('"' + encodedMark) && !written.contains('\\');
    node.key = losesMark ? byteOrderMark + node.name : node.name;
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
    if (kind != Kind::Object) {
        return nullptr;
    }
    const JsonNode* found = nullptr;
    for (auto child = children.rbegin(); child != children.rend(); ++child) {
        const bool isPreferred = !found || child->key.size() > found->key.size();
        if (child->name == wanted && isPreferred && !isReplaced(*child)) {
            found = &*child;
        }
    }
    return found;
}

/// Whether a later member has the same key but another name, which a mark and its escape sequence make.
bool JsonNode::isReplaced(const JsonNode& child) const
{
    return child.key.startsWith(byteOrderMark) &&
           std::any_of(&child + 1, &children.back() + 1,
                       [&child](const JsonNode& later) { return later.key == child.key; });
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
