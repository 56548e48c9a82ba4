// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>

#include <cstddef>
#include <cstdint>
#include <iterator>

/// The bytes of one run, read from the front. Reading past the end returns zeros, so every sequence of bytes
/// is valid.
class Bytes
{
public:
    /// Does not copy: `data` must outlive this object.
    Bytes(const uint8_t* data, size_t size) : m_data(data), m_size(size) {}

    bool isEmpty() const { return m_size == 0; }

    uint8_t next();
    /// A number from 0 to `count` - 1; `count` is 1 to 256.
    int below(int count);
    /// An integer, made of as many bytes as its size.
    template <typename Number>
    Number number();
    /// At most `size` bytes.
    QByteArray take(int size);
    /// All remaining bytes.
    QByteArray rest() { return take(static_cast<int>(m_size)); }
    /// A string of at most 255 bytes; invalid UTF-8 becomes replacement characters.
    QString text();
    /// One of the elements of `list`, which must have 1 to 256.
    template <typename List>
    auto pick(const List& list)
    {
        return *std::next(list.begin(), below(static_cast<int>(list.size())));
    }

private:
    const uint8_t* m_data;
    size_t m_size;
};

template <typename Number>
Number Bytes::number()
{
    uint64_t value = 0;
    for (size_t i = 0; i < sizeof(Number); ++i) {
        value = value << 8 | next();
    }
    return static_cast<Number>(value);
}
