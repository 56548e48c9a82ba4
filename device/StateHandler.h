// SPDX-License-Identifier: MIT
#pragma once

#include <ls/EnumKey.h>

#include <QObject>
#include <QVariantMap>

/// The device's operating state as the state-handler service reports it. Keeps no copy of the state: the
/// router asks once and then follows the changes.
class StateHandler : public QObject
{
    Q_OBJECT

public:
    /// Subscribes to the state-handler service, whether or not it is on the bus now.
    explicit StateHandler(QObject* parent);

    /// Asks the state-handler service and blocks until it answers. Returns an identifier of `ls::StateId`, or
    /// "Undefined" after a log line if the answer is missing or invalid.
    const ls::EnumKey getState() const;

Q_SIGNALS:
    /// A state was announced, whether or not it differs from the one before.
    void stateChange(ls::EnumKey state);

private Q_SLOTS:
    void onNotification(const QVariantMap& notification);
};
