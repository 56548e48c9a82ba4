// SPDX-License-Identifier: MIT
#include "checker/Commands.h"
#include "checker/KeyArguments.h"
#include "checker/ListSources.h"
#include "checker/Printable.h"
#include "checker/ScriptArgument.h"
#include "checker/WhatAnswer.h"
#include "model/KeyFacts.h"

namespace checker {

namespace {

void print(const WhatAnswer& answer, QTextStream& out)
{
    for (const QString& line : answer.lines) {
        out << printable(line) << '\n';
    }
    if (answer.goesOn) {
        out << "The long press repeats while the key is held.\n";
    }
    if (!answer.isPerceived) {
        out << WhatAnswer::nothing() << ".\n";
    }
}

} // namespace

Status Commands::what(const QStringList& arguments, QTextStream& out, QTextStream& err)
{
    KeyArguments line(QStringLiteral("what"), QStringLiteral("STATEMENTS"),
                      QStringLiteral("Says what keys do: all speech and all announcements, with their times. "
                                     "The statements are those of key scripts, separated by semicolons, "
                                     "with times in milliseconds, such as 'tap Help; hold Feed 1300'; the "
                                     "state is Idle, if not given."));
    if (const auto status = line.read(arguments, out, err)) {
        return *status;
    }
    ScriptArgument argument = ScriptArgument::ofStatements(line.subject());
    const ListSources sources = ListSources::read(line.paths());
    if (!sources.fault.isEmpty()) {
        argument.faults << sources.fault;
    }
    for (const QString& fault : qAsConst(argument.faults)) {
        err << printable(fault) << '\n';
    }
    if (!argument.faults.isEmpty()) {
        return Unusable;
    }
    const QStringList remarks = sources.remarks();
    for (const QString& note : remarks) {
        err << "note: " << printable(note) << '\n';
    }
    argument.script.initialState = model::Alphabet::nameOf(line.state().value_or(model::KeyFacts::idle));
    print(WhatAnswer::of(sources.lists(line.isOrvane()), argument.script), out);
    return Clean;
}

} // namespace checker
