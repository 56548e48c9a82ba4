// SPDX-License-Identifier: MIT
#include "control/Verbs.h"

#include "control/CommandVerbs.h"
#include "control/DoctorVerb.h"
#include "control/MonitorVerb.h"
#include "control/record/RecordVerb.h"

namespace control {

const QVector<Verb>& verbs()
{
    static const QVector<Verb> all{
        monitorVerb(),
        CommandVerbs::lastKey(),
        CommandVerbs::times(),
        CommandVerbs::lists(),
        CommandVerbs::simulate(),
        CommandVerbs::combine(),
        CommandVerbs::shortcut(),
        CommandVerbs::test(),
        doctorVerb(),
        recordVerb(),
    };
    return all;
}

} // namespace control
