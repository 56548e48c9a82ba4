// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>

/// Makes this process, which must run as root, act as another user with that user's groups during the
/// object's lifetime.
class ForeignUser
{
public:
    /// Aborts if the user does not exist.
    explicit ForeignUser(const QByteArray& name);
    ~ForeignUser();
    ForeignUser(const ForeignUser&) = delete;
    ForeignUser& operator=(const ForeignUser&) = delete;
};
