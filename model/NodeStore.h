// SPDX-License-Identifier: MIT
#pragma once

#include "model/Input.h"

#include <array>
#include <cstring>
#include <memory>
#include <type_traits>
#include <vector>

namespace model {

/// The nodes of a search in the order of their discovery, each with its predecessor: a hash table with open
/// addressing over blocks that never move. Nodes are compared and hashed as bytes.
template <typename Node>
class NodeStore
{
    static_assert(std::has_unique_object_representations_v<Node> && sizeof(Node) % sizeof(quint64) == 0);

public:
    static constexpr quint32 noNode = ~quint32(0);

    NodeStore() : m_table(minTableSize, noNode) {}

    quint32 size() const { return m_size; }
    const Node& at(quint32 index) const { return entry(index).node; }
    /// The node from which `index` was found, and the input between them; `noNode` for an initial node.
    quint32 parent(quint32 index) const { return entry(index).parent; }
    Input input(quint32 index) const { return entry(index).input; }

    /// The index of `node`, which is added if it is new.
    quint32 insert(const Node& node, quint32 parent, Input input);

    /// In bytes.
    size_t memory() const { return m_blocks.size() * sizeof(Block) + m_table.capacity() * sizeof(quint32); }

private:
    struct Entry
    {
        Node node;
        quint32 parent;
        Input input;
    };
    static constexpr quint32 blockBits = 14;
    static constexpr quint32 blockSize = 1U << blockBits;
    static constexpr size_t minTableSize = 1U << 12;
    using Block = std::array<Entry, blockSize>;

    static size_t hash(const Node& node);
    const Entry& entry(quint32 index) const
    {
        return (*m_blocks[index >> blockBits])[index & (blockSize - 1)];
    }
    size_t slotOf(const Node& node) const;
    void append(const Entry& entry);
    void grow();

    std::vector<std::unique_ptr<Block>> m_blocks;
    std::vector<quint32> m_table; // a power of two in size, at most half full
    quint32 m_size = 0;
};

template <typename Node>
quint32 NodeStore<Node>::insert(const Node& node, quint32 parent, Input input)
{
    quint32& found = m_table[slotOf(node)];
    if (found != noNode) {
        return found;
    }
    const quint32 index = m_size;
    found = index;
    append({node, parent, input});
    if (m_size > m_table.size() / 2) {
        grow();
    }
    return index;
}

template <typename Node>
size_t NodeStore<Node>::hash(const Node& node)
{
    constexpr size_t wordCount = sizeof(Node) / sizeof(quint64);
    std::array<quint64, wordCount> words;
    std::memcpy(words.data(), &node, sizeof node);
    quint64 sum = 0;
    for (const quint64 word : words) {
        sum = (sum ^ word) * Q_UINT64_C(0x9e3779b97f4a7c15);
        sum ^= sum >> 29;
    }
    return static_cast<size_t>(sum ^ (sum >> 32));
}

/// The slot of `node`, or the empty slot for it.
template <typename Node>
size_t NodeStore<Node>::slotOf(const Node& node) const
{
    const size_t mask = m_table.size() - 1;
    size_t slot = hash(node) & mask;
    while (m_table[slot] != noNode && std::memcmp(&at(m_table[slot]), &node, sizeof node) != 0) {
        slot = (slot + 1) & mask;
    }
    return slot;
}

template <typename Node>
void NodeStore<Node>::append(const Entry& entry)
{
    if (m_size % blockSize == 0) {
        m_blocks.push_back(std::make_unique<Block>());
    }
    (*m_blocks.back())[m_size & (blockSize - 1)] = entry;
    ++m_size;
}

template <typename Node>
void NodeStore<Node>::grow()
{
    std::vector<quint32>(m_table.size() * 2, noNode).swap(m_table);
    for (quint32 index = 0; index < m_size; ++index) {
        m_table[slotOf(at(index))] = index;
    }
}

} // namespace model
