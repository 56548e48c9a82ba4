// SPDX-License-Identifier: MIT
#include "checker/Printable.h"

#include <unistd.h>

namespace checker {

QString printable(const QString& text)
{
    QString result;
    for (int i = 0; i < text.size(); ++i) {
        const QChar c = text.at(i);
        const bool isPair = c.isHighSurrogate() && i + 1 < text.size() && text.at(i + 1).isLowSurrogate();
        if (isPair) {
            result += text.mid(i, 2);
            ++i;
        } else if (c == QLatin1Char('\t')) {
            result += QLatin1Char(' ');
        } else if (c.isPrint() && !c.isSurrogate()) {
            result += c;
        } else {
            constexpr int digits = 4;
            constexpr int base = 16;
            result += QStringLiteral("\\u%1").arg(c.unicode(), digits, base, QLatin1Char('0'));
        }
    }
    return result;
}

bool hasColours()
{
    return isatty(STDOUT_FILENO) != 0 && qEnvironmentVariableIsEmpty("NO_COLOR");
}

} // namespace checker
