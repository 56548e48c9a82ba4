// SPDX-License-Identifier: MIT
#pragma once

#include "model/Input.h"
#include "model/KeyLists.h"
#include "model/Situation.h"

#include <QStringList>

#include <memory>

/// The daemon's classes as a step function: sets their state to a situation, passes them an input, and reads
/// the next situation from them.
class DaemonStep
{
public:
    struct Result
    {
        model::Situation situation;
        /// The action of the long press that is timed, if any.
        QString armedAction;
        /// In the words of key scripts, without the senders of announcements.
        QStringList outputs;
    };

    explicit DaemonStep(const model::KeyLists& lists);
    ~DaemonStep();

    /// `variant` selects one of the states of the classes that correspond to the situation: they differ in
    /// the keys of a dead sequence and in the remains of an earlier long press.
    Result step(const model::Situation& situation, model::Input input, quint32 variant);

private:
    class Daemon;

    std::unique_ptr<Daemon> m_daemon;
};
