// SPDX-License-Identifier: MIT
// The console: the bytes are standard input.
#include "tests/whole/fuzz/FuzzedDaemon.h"
#include "tests/whole/fuzz/Log.h"
#include "tests/whole/fuzz/Target.h"

namespace {

// Bytes that are invalid in text, so that any text file is an input.
constexpr char pauseMark = '\xfe';  // a pause in the input
constexpr char repeatMark = '\xff'; // followed by a count in units of 256 and the byte to repeat
constexpr int repeatUnit = 256;
constexpr int maxRepetitions = 70'000; // enough for an overlong line

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

/// Limited in each run, and without line ends, because each of them prints a help screen.
QByteArray ConsoleTarget::repeated(Bytes& bytes)
{
    const int count = qMin(bytes.next() * repeatUnit, maxRepetitions - m_repeated);
    const char byte = static_cast<char>(bytes.next());
    m_repeated += count;
    return byte == '\n' ? QByteArray() : QByteArray(count, byte);
}

} // namespace

std::unique_ptr<Target> Target::make()
{
    return std::make_unique<ConsoleTarget>();
}
