// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QVariantMap>

/// A fake state handler, linked with a service proxy that uses no bus.
namespace FakeStateHandler {

/// Answers the next queries with `state`.
void setState(const QString& state);
/// Answers the next queries with `reply`.
void setReply(const QVariantMap& reply);
/// The queries since the last call.
QList<QVariantMap> takeRequests();
/// Announces `state` with a valid notification.
void announce(const QString& state);
/// Sends any notification.
void notify(const QVariantMap& notification);

} // namespace FakeStateHandler
