// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>

/// Makes this process, which must be root's, act as another user with that user's groups, until the end of
/// the object.
class ForeignUser
{
public:
    /// Ends the process if there is no such user.
    explicit ForeignUser(const QByteArray& name);
    ~ForeignUser();
    ForeignUser(const ForeignUser&) = delete;
    ForeignUser& operator=(const ForeignUser&) = delete;
};
