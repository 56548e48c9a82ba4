// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/device/StateHandlerStandIn.h"

/// A bus object with which a test controls the state handler's process, in addition to the service's object.
class StateControl : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", KEYBOARD_HANDLER_BUS_PREFIX ".StateControl")

public:
    explicit StateControl(StateHandlerStandIn& stateHandler, QObject* parent = nullptr)
        : QObject(parent), m_stateHandler(stateHandler)
    {}

    /// Sets the state without announcing it.
    Q_SCRIPTABLE void setState(const QString& state) { m_stateHandler.setInitialState(state); }
    /// Changes the state and announces it.
    Q_SCRIPTABLE void changeState(const QString& state) { m_stateHandler.changeState(state); }

private:
    StateHandlerStandIn& m_stateHandler;
};
