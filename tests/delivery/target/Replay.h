// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/script/KeyScript.h"

#include <QStringList>

/// A recording that was played again on the daemon's classes, on a virtual clock.
struct Replay
{
    /// Why the recording could not be played; empty if it was.
    QString fault;
    /// The announcements that differ from those recorded.
    QStringList differences;
    /// Likewise, near a time limit, where the recording says that a replay may differ.
    QStringList apart;

    static Replay of(const QByteArray& recording);
};
