// SPDX-License-Identifier: MIT
// Like minimal-qt, but announces as the daemon does: with the signal of an adaptor, which Qt relays. Shows
// the cost of the relay.
#include "benchmarks/references/QtReference.h"

#include <QDBusAbstractAdaptor>

class Announcer : public QObject
{
    Q_OBJECT

Q_SIGNALS:
    void notification(const QVariantMap&);
};

class Adaptor : public QDBusAbstractAdaptor
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", SERVICE)

public:
    explicit Adaptor(Announcer* announcer) : QDBusAbstractAdaptor(announcer) { setAutoRelaySignals(true); }

Q_SIGNALS:
    void notification(const QVariantMap&);
};

int main(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    Announcer announcer;
    new Adaptor(&announcer);
    QDBusConnection::systemBus().registerObject(QStringLiteral("/"), &announcer,
                                                QDBusConnection::ExportAdaptors);
    return run([&announcer] { Q_EMIT announcer.notification(announcement()); });
}

#include "relaying-qt.moc"
