// SPDX-License-Identifier: MIT
#pragma once

#include <QStringList>

struct sd_journal;

/// The journal of the daemon's unit: what the daemon itself logs, from now on.
class Journal
{
public:
    Journal();
    ~Journal();

    Journal(const Journal&) = delete;
    Journal& operator=(const Journal&) = delete;

    /// The lines that came since the last call.
    QStringList takeLines();

private:
    sd_journal* m_journal = nullptr;
};
