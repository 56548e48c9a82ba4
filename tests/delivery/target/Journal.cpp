// SPDX-License-Identifier: MIT
#include "tests/delivery/target/Journal.h"

#include <systemd/sd-journal.h>

namespace {

constexpr const char* unit = "_SYSTEMD_UNIT=keyboard-handler.service";
constexpr int fieldNameLength = 8; // "MESSAGE="

} // namespace

Journal::Journal()
{
    sd_journal_open(&m_journal, SD_JOURNAL_LOCAL_ONLY);
    sd_journal_seek_tail(m_journal);
    // The tail is after the last entry, but sd_journal_next() must start from an entry.
    sd_journal_previous(m_journal);
    sd_journal_add_match(m_journal, unit, 0);
}

Journal::~Journal()
{
    sd_journal_close(m_journal);
}

QStringList Journal::takeLines()
{
    QStringList lines;
    sd_journal_process(m_journal);
    while (sd_journal_next(m_journal) > 0) {
        const void* data = nullptr;
        size_t size = 0;
        if (sd_journal_get_data(m_journal, "MESSAGE", &data, &size) >= 0) {
            lines << QString::fromUtf8(static_cast<const char*>(data), int(size)).mid(fieldNameLength);
        }
    }
    return lines;
}
