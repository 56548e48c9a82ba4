// SPDX-License-Identifier: MIT
#pragma once

#include "control/record/Recording.h"
#include "model/KeyLists.h"
#include "simulator/script/KeyListJson.h"

namespace control {

/// The device of a recording, as far as its files show it.
struct RecordedDevice
{
    /// The contents of the key lists, by file name.
    KeyListJson::Files files;
    bool isOrvane = false;
    /// Sentences about the recording, which become comments at its beginning.
    QStringList remarks;
};

/// A key script of the kind "recorded announcements": the keys, the changes of the state and the
/// announcements. Where it is not known what keys do, all of them are headings that begin with "?", so that a
/// replay leaves them out.
QByteArray scriptOf(const Recording& recording, std::chrono::microseconds end, const RecordedDevice& device);

} // namespace control
