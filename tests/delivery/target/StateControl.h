// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/device/StateHandlerStandIn.h"

/// How a test reaches the state handler in its process of its own: an object on the bus, beside the
/// service's.
class StateControl : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", KEYBOARD_HANDLER_BUS_PREFIX ".StateControl")

public:
    explicit StateControl(StateHandlerStandIn& stateHandler, QObject* parent = nullptr)
        : QObject(parent), m_stateHandler(stateHandler)
    {}

    /// The state to answer with, without announcing it.
    Q_SCRIPTABLE void setState(const QString& state) { m_stateHandler.setInitialState(state); }
    /// Changes the state and announces it.
    Q_SCRIPTABLE void changeState(const QString& state) { m_stateHandler.changeState(state); }

private:
    StateHandlerStandIn& m_stateHandler;
};
