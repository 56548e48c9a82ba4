// SPDX-License-Identifier: MIT
#pragma once

namespace control {

/// The exit statuses of the program, the same for all verbs.
enum Status {
    Done = 0,
    /// The daemon refused the command, or a check found a failure.
    Failed = 1,
    /// Arguments or files that cannot be used, or an output that cannot be written.
    Unusable = 2,
    NoBus = 3,
    /// The bus refused a message, or a file or an input device may not be opened.
    NoRights = 4,
    /// No daemon owns the name.
    NoDaemon = 5,
    /// A daemon runs and does not own its name yet.
    NotReady = 6,
    /// The daemon owns the name and does not answer.
    NoAnswer = 7,
    /// A check gave a warning, or was not possible.
    Doubtful = 8,
};

} // namespace control
