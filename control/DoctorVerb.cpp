// SPDX-License-Identifier: MIT
#include "control/DoctorVerb.h"

#include "control/Options.h"
#include "control/RunningDaemon.h"
#include "control/doctor/Checks.h"
#include "control/doctor/Probes.h"
#include "control/doctor/Report.h"

namespace control {

namespace {

Status runDoctor(const Call& call)
{
    if (!call.words.isEmpty()) {
        call.err.line(QStringLiteral("doctor takes no words."));
        return Unusable;
    }
    const auto prefix = Options::prefixOf(call);
    if (!prefix) {
        return Unusable;
    }
    const Facts facts = Probes::facts(*prefix, RunningDaemon::processes(), RunningDaemon::awaitedServices());
    const Diagnoses diagnoses = Checks::all(facts);
    if (Options::hasJson(call)) {
        call.out.object(Report::toObject(diagnoses));
    } else {
        const QStringList lines = Report::toLines(diagnoses);
        for (const QString& line : lines) {
            call.out.line(line);
        }
    }
    return Report::statusOf(diagnoses);
}

} // namespace

Verb doctorVerb()
{
    return {
        QStringLiteral("doctor"),
        {},
        QStringLiteral("Find out why keys do nothing."),
        QStringLiteral("It looks at the daemon, the panel, the key lists and the services, and names the "
                       "cause and the remedy of each fault. It sends the daemon no command, so the next "
                       "announcement names the same sender as without it. Root sees most. The status is 0 "
                       "if all is ok, 1 after a failure, and 8 after a warning or a check that was not "
                       "possible."),
        {QStringLiteral("doctor"), QStringLiteral("doctor --json")},
        {Options::json(), Options::prefix()},
        runDoctor};
}

} // namespace control
