// SPDX-License-Identifier: MIT
// stoppable-service NAME ADDRESS: a stand-in for "state-handler" or "speechd" on the bus at ADDRESS. Prints
// "ready" when it is on the bus. The state handler announces each state that it reads; the speech daemon
// prints each sentence.
#include "simulator/device/SpeechDaemonStandIn.h"
#include "simulator/device/StateHandlerStandIn.h"
#include "simulator/script/ObservationText.h"

#include <QCoreApplication>
#include <QSocketNotifier>

#include <array>
#include <cstdio>

#include <unistd.h>

namespace {

int run(bool appeared)
{
    if (!appeared) {
        std::fprintf(stderr, "stoppable-service: cannot join the bus\n");
        return 1;
    }
    std::puts("ready");
    std::fflush(stdout);
    return QCoreApplication::exec();
}

int runStateHandler(const QString& address)
{
    StateHandlerStandIn stateHandler;
    QByteArray typed;
    QSocketNotifier input(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&input, &QSocketNotifier::activated, [&] {
        std::array<char, 4096> chunk{};
        const ssize_t count = ::read(STDIN_FILENO, chunk.data(), chunk.size());
        input.setEnabled(count > 0);
        typed.append(chunk.data(), int(qMax<ssize_t>(count, 0)));
        for (int end = typed.indexOf('\n'); end != -1; end = typed.indexOf('\n')) {
            stateHandler.changeState(QString::fromUtf8(typed.left(end)));
            typed.remove(0, end + 1);
        }
    });
    return run(stateHandler.appear(address));
}

int runSpeechDaemon(const QString& address)
{
    BusConnection bus(address);
    SpeechDaemonStandIn speech(bus.get());
    QObject::connect(&speech, &SpeechDaemonStandIn::spoken, [](const QVariantMap& request) {
        std::puts(qPrintable(ObservationText::speech(request)));
        std::fflush(stdout);
    });
    return run(speech.appear());
}

} // namespace

int main(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const QString address = arguments.value(2);
    return arguments.value(1) == QLatin1String("speechd") ? runSpeechDaemon(address)
                                                          : runStateHandler(address);
}
