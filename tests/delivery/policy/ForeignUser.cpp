// SPDX-License-Identifier: MIT
#include "tests/delivery/policy/ForeignUser.h"

#include <QtGlobal>

#include <grp.h>
#include <pwd.h>
#include <unistd.h>

ForeignUser::ForeignUser(const QByteArray& name)
{
    const passwd* user = getpwnam(name.constData());
    if (!user || initgroups(name.constData(), user->pw_gid) != 0 || setegid(user->pw_gid) != 0 ||
        seteuid(user->pw_uid) != 0) {
        qFatal("cannot act as %s", name.constData());
    }
}

ForeignUser::~ForeignUser()
{
    if (seteuid(0) != 0 || setegid(0) != 0 || setgroups(0, nullptr) != 0) {
        qFatal("cannot act as root again");
    }
}
