// SPDX-License-Identifier: MIT
#include "tests/whole/random/Epilogue.h"
#include "tests/whole/random/Invariants.h"

using namespace std::chrono_literals;

namespace invariants {

QString nothingHappensInTheQuietTime(const Facts& facts)
{
    const auto begin = Epilogue::quietBegin(facts.script());
    const auto end = Epilogue::lastPress(facts.script());
    for (const PlayEvent& event : facts.play().events) {
        if (event.at >= begin && event.at <= end) {
            return described(event);
        }
    }
    return {};
}

QString theNextKeyWorks(const Facts& facts)
{
    constexpr auto window = 1500ms;
    const auto release = Epilogue::lastRelease(facts.script());
    QVector<QPair<std::chrono::milliseconds, QString>> seen;
    for (const PlayEvent& event : facts.play().events) {
        if (event.at > Epilogue::lastPress(facts.script())) {
            seen.append({event.at, event.text});
        }
    }
    const bool isSpoken =
        seen.size() == 2 && seen.first() == qMakePair(release, QStringLiteral("speak EmbosserCore 24"));
    const QStringList words = isSpoken ? seen.last().second.split(QLatin1Char(' ')) : QStringList();
    const bool isSent = words.mid(0, 3).join(' ') == QLatin1String("announce SingleKey UserMenu") &&
                        words.mid(4) == QStringList(ls::KeyId::Up) && seen.last().first == release + window;
    return isSent ? QString() : QStringLiteral("the last key causes %1 events").arg(seen.size());
}

} // namespace invariants
