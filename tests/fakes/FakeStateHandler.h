// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QVariantMap>

/// The state-handler service as the daemon sees it through a service proxy that has no bus behind it.
namespace FakeStateHandler {

/// Answers the next queries with `state`.
void setState(const QString& state);
/// Answers the next queries with `reply`, whatever it is.
void setReply(const QVariantMap& reply);
/// The queries since the last call.
QList<QVariantMap> takeRequests();
/// Announces `state` in the proper form.
void announce(const QString& state);
/// Sends a notification of any form.
void notify(const QVariantMap& notification);

} // namespace FakeStateHandler
