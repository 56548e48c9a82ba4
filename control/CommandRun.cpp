// SPDX-License-Identifier: MIT
#include "control/CommandRun.h"

#include "control/Answers.h"
#include "control/Bus.h"
#include "control/Options.h"

namespace control {

namespace {

void printAnswer(const Call& call, const QVariantMap& command, const QVariantMap& response)
{
    if (Options::hasJson(call)) {
        call.out.object(QJsonObject::fromVariantMap(response));
        return;
    }
    Output& output = Answers::isFailure(response) ? call.err : call.out;
    const QStringList lines = Answers::linesOf(command, response);
    for (const QString& line : lines) {
        output.line(line);
    }
}

} // namespace

Status sendCommands(const Call& call, const QVector<QVariantMap>& commands)
{
    const auto prefix = Options::prefixOf(call);
    const auto timeout = Options::timeoutOf(call);
    if (!prefix || !timeout) {
        return Unusable;
    }
    Bus bus(*prefix, *timeout);
    for (const QVariantMap& command : commands) {
        BusFault fault;
        const QVariantMap response = bus.send(command, fault);
        if (fault.isFault()) {
            call.err.line(fault.text);
            return fault.status;
        }
        printAnswer(call, command, response);
        if (Answers::isFailure(response)) {
            return Failed;
        }
    }
    return Done;
}

} // namespace control
