// SPDX-License-Identifier: MIT
// A minimal Qt program that announces each released key as the daemon announces Up in the state Print.
#include "benchmarks/references/QtReference.h"

#include <QDBusMessage>

int main(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    return run([] {
        QDBusMessage message = QDBusMessage::createSignal(QStringLiteral("/"), QStringLiteral(SERVICE),
                                                          QStringLiteral("notification"));
        message << announcement();
        QDBusConnection::systemBus().send(message);
    });
}
