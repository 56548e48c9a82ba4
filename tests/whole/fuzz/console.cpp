// SPDX-License-Identifier: MIT
// The console: the bytes come on standard input.
#include "tests/whole/fuzz/FuzzedDaemon.h"
#include "tests/whole/fuzz/Log.h"
#include "tests/whole/fuzz/Target.h"

namespace {

// Bytes that no text has, so that a text file is an input as well.
constexpr char pauseMark = '\xfe';  // what follows is written later
constexpr char repeatMark = '\xff'; // two bytes follow: how many times 256, and of which byte
constexpr int repeatUnit = 256;
constexpr int mostRepeated = 70'000; // enough for a line that is too long

const QString answerLine = QStringLiteral("Process command response");

class ConsoleTarget : public Target
{
public:
    ConsoleTarget();
    void run(Bytes& bytes) override;

private:
    void typeUpToPause(Bytes& bytes);
    QByteArray repeated(Bytes& bytes);

    FuzzedDaemon m_daemon;
    int m_repeated = 0;
};

ConsoleTarget::ConsoleTarget()
{
    m_daemon.setRichKeyLists();
    m_daemon.start();
}

void ConsoleTarget::run(Bytes& bytes)
{
    m_repeated = 0;
    while (!bytes.isEmpty()) {
        typeUpToPause(bytes);
    }
    m_daemon.type("\n");
    Log::clear();
    m_daemon.type("C 4\nC 4\n");
    Log::require(Log::count(answerLine) == 2, "the next lines are answered once each");
    m_daemon.requireThatItWorks();
}

void ConsoleTarget::typeUpToPause(Bytes& bytes)
{
    QByteArray typed;
    while (!bytes.isEmpty()) {
        const char byte = static_cast<char>(bytes.next());
        if (byte == pauseMark) {
            break;
        }
        typed.append(byte == repeatMark ? repeated(bytes) : QByteArray(1, byte));
    }
    m_daemon.type(typed);
}

/// Only so much in one run, and no line ends: each has a help screen of its own.
QByteArray ConsoleTarget::repeated(Bytes& bytes)
{
    const int count = qMin(bytes.next() * repeatUnit, mostRepeated - m_repeated);
    const char byte = static_cast<char>(bytes.next());
    m_repeated += count;
    return byte == '\n' ? QByteArray() : QByteArray(count, byte);
}

} // namespace

std::unique_ptr<Target> Target::make()
{
    return std::make_unique<ConsoleTarget>();
}
