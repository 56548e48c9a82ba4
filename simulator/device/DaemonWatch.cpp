// SPDX-License-Identifier: MIT
#include "simulator/device/DaemonWatch.h"

#include <ls/BusNames.h>
#include <ls/Identifiers.h>

using namespace std::chrono_literals;

namespace {

constexpr auto interval = 500ms;
/// Counts ticks, not milliseconds, so that a delay of the simulator itself is not blamed on the daemon.
constexpr int maxUnansweredTicks = 4;

} // namespace

DaemonWatch::DaemonWatch(const QString& address, QObject* parent) : QObject(parent), m_bus(address)
{
    connect(&m_timer, &QTimer::timeout, this, &DaemonWatch::tick);
    m_timer.start(interval);
    ask();
}

void DaemonWatch::onAnswer()
{
    m_isAsked = false;
    setAnswering(true);
}

void DaemonWatch::onError(const QDBusError& error)
{
    m_isAsked = false;
    // Any other error is an answer, perhaps from the bus because the policy denies the daemon its name.
    if (error.type() != QDBusError::NoReply) {
        setAnswering(true);
    }
}

void DaemonWatch::tick()
{
    if (!m_isAsked) {
        ask();
    } else if (++m_unansweredTicks >= maxUnansweredTicks) {
        setAnswering(false);
    }
}

void DaemonWatch::ask()
{
    m_isAsked = true;
    m_unansweredTicks = 0;
    const QDBusMessage question = QDBusMessage::createMethodCall(
        ls::busName(ls::ServiceId::KeyboardHandler), ls::busPath,
        QStringLiteral("org.freedesktop.DBus.Introspectable"), QStringLiteral("Introspect"));
    m_bus.get().callWithCallback(question, this, SLOT(onAnswer()), SLOT(onError(QDBusError)));
}

void DaemonWatch::setAnswering(bool isAnswering)
{
    if (m_isAnswering != isAnswering) {
        m_isAnswering = isAnswering;
        Q_EMIT changed(isAnswering);
    }
}
