// SPDX-License-Identifier: MIT
#include "model/Environment.h"

#include <QStringList>

namespace model {

namespace {

QString subjectOf(const Environment& environment)
{
    switch (environment.kind) {
    case Environment::Kind::AnyInput:
        return QStringLiteral("any input");
    case Environment::Kind::Services:
        return QStringLiteral("any input and services that simulate keys");
    case Environment::Kind::Person:
        break;
    }
    return environment.fingers == 1 ? QStringLiteral("a person with one finger")
                                    : QStringLiteral("a person with %1 fingers").arg(environment.fingers);
}

QString changesToText(int max)
{
    return max == 0   ? QStringLiteral("the state stays as it is")
           : max == 1 ? QStringLiteral("the state changes at most once")
                      : QStringLiteral("the state changes at most %1 times").arg(max);
}

} // namespace

Environment Environment::person()
{
    Environment environment;
    environment.kind = Kind::Person;
    environment.stateChanges = false;
    environment.keyboardTest = false;
    return environment;
}

QVector<Environment> Environment::growth() const
{
    QVector<Environment> parts;
    if (kind == Kind::Person) {
        Environment part = *this;
        part.devices = 1;
        for (part.fingers = 1; part.fingers <= fingers; ++part.fingers) {
            parts.append(part);
        }
    }
    return kind == Kind::Person && devices == 1 ? parts : parts << *this;
}

QString Environment::toText() const
{
    QStringList parts{subjectOf(*this)};
    if (kind == Kind::Person && devices < deviceCount) {
        parts << QStringLiteral("on one device");
    }
    if (panelKeysOnly) {
        parts << QStringLiteral("only keys of the panel");
    }
    if (pace > std::chrono::milliseconds::zero()) {
        parts << QStringLiteral("at least %1 ms between two movements").arg(pace.count());
    }
    if (!stateChanges) {
        parts << changesToText(maxStateChanges);
    }
    if (!keyboardTest) {
        parts << QStringLiteral("no keyboard test");
    }
    if (time == Time::Digital) {
        parts << QStringLiteral("on a clock of %1 ms").arg(tick.count());
    }
    return parts.join(QStringLiteral(", "));
}

} // namespace model
