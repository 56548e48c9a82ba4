// SPDX-License-Identifier: MIT
#include "checker/Commands.h"

#include <QCoreApplication>
#include <QMap>

#include <csignal>

namespace {

using Command = checker::Status (*)(const QStringList&, QTextStream&, QTextStream&);

const QMap<QString, Command>& commands()
{
    using namespace checker;
    static const QMap<QString, Command> all{
        {QStringLiteral("card"), Commands::card},       {QStringLiteral("check"), Commands::check},
        {QStringLiteral("explain"), Commands::explain}, {QStringLiteral("how"), Commands::how},
        {QStringLiteral("what"), Commands::what},       {QStringLiteral("why"), Commands::why},
        {QStringLiteral("diff"), Commands::diff},       {QStringLiteral("schema"), Commands::schema}};
    return all;
}

} // namespace

int main(int argc, char* argv[])
{
    std::signal(SIGPIPE, SIG_DFL); // a pager that was left is the end of the output
    const QCoreApplication application(argc, argv);
    QTextStream out(stdout);
    QTextStream err(stderr);
    out.setCodec("UTF-8");
    err.setCodec("UTF-8");
    const QStringList arguments = QCoreApplication::arguments().mid(1);
    const Command command = commands().value(arguments.value(0));
    if (!command) {
        const bool asksForHelp =
            QStringList{QStringLiteral("--help"), QStringLiteral("-h")}.contains(arguments.value(0));
        (asksForHelp ? out : err) << "Usage: keyboard-handler-keys COMMAND [ARGUMENT...]\nThe commands are: "
                                  << commands().keys().join(QStringLiteral(", ")) << ".\n";
        return asksForHelp ? checker::Clean : checker::Unusable;
    }
    const checker::Status status = command(arguments, out, err);
    out.flush();
    if (out.status() != QTextStream::Ok) {
        err << "The output could not be written.\n";
        return checker::Unusable;
    }
    return status;
}
