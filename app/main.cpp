// SPDX-License-Identifier: MIT
#include "app/LogOutput.h"
#include "app/SystemCheck.h"
#include "console/Console.h"
#include "service/KeyboardHandler.h"
#include "service/KeyboardHandlerAdaptor.h"

#include <servicewatcher/ServiceWatcher.h>

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QMutexLocker>
#include <QTextCodec>

#include <fcntl.h>
#include <unistd.h>

namespace {

const QString serviceName = QStringLiteral("keyboard-handler");

/// Opens /dev/null for each closed standard stream. Otherwise the next file opened would become descriptor 0,
/// and the console would read commands from it.
void fillStandardStreams()
{
    for (int fd = STDIN_FILENO; fd <= STDERR_FILENO; ++fd) {
        if (::fcntl(fd, F_GETFD) == -1) {
            ::open("/dev/null", O_RDWR); // returns the lowest free number, which is `fd`
        }
    }
}

void waitForServices()
{
    StartupGate& gate = startupGate();
    const QMutexLocker locker(&gate.mutex);
    while (!gate.servicesReady) {
        gate.opened.wait(&gate.mutex);
    }
}

} // namespace

int main(int argc, char* argv[])
{
    // First, so that a failure of the next step can be logged.
    fillStandardStreams();
    LogOutput::install();
    ServiceWatcher::setReady(serviceName, false);
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
    QCoreApplication application(argc, argv);

    SystemCheck systemCheck;
    systemCheck.start(QThread::InheritPriority);
    waitForServices();

    QCoreApplication::setOrganizationName(QStringLiteral("Vantre"));
    QCoreApplication::setOrganizationDomain(QStringLiteral("vantre.com"));
    QCoreApplication::setApplicationName(serviceName);
    QCoreApplication::setApplicationVersion(QStringLiteral("1.0.3"));
    QCommandLineParser parser;
    parser.addHelpOption();
    parser.addVersionOption();
    parser.process(application);

    auto* handler = new KeyboardHandler(&application);
    new KeyboardHandlerAdaptor(handler);
    new Console(handler);
    handler->init();

    ServiceWatcher::setReady(serviceName, true);
    return QCoreApplication::exec();
}
