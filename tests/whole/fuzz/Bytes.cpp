// SPDX-License-Identifier: MIT
#include "tests/whole/fuzz/Bytes.h"

#include <algorithm>

uint8_t Bytes::next()
{
    if (isEmpty()) {
        return 0;
    }
    --m_size;
    return *m_data++;
}

int Bytes::below(int count)
{
    return next() % count;
}

QByteArray Bytes::take(int size)
{
    const size_t count = std::min(static_cast<size_t>(size), m_size);
    const QByteArray bytes(reinterpret_cast<const char*>(m_data), static_cast<int>(count));
    m_data += count;
    m_size -= count;
    return bytes;
}

QString Bytes::text()
{
    return QString::fromUtf8(take(next()));
}
