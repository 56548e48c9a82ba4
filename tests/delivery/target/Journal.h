// SPDX-License-Identifier: MIT
#pragma once

#include <QStringList>

struct sd_journal;

/// The journal of the daemon's unit from the construction on, without messages of the service manager.
class Journal
{
public:
    Journal();
    ~Journal();

    Journal(const Journal&) = delete;
    Journal& operator=(const Journal&) = delete;

    /// The new lines since the last call.
    QStringList takeLines();

private:
    sd_journal* m_journal = nullptr;
};
