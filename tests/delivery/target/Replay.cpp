// SPDX-License-Identifier: MIT
#include "tests/delivery/target/Replay.h"

#include "simulator/script/KeyScriptText.h"
#include "tests/delivery/target/Command.h"

#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <algorithm>

using namespace std::chrono_literals;
using std::chrono::milliseconds;

namespace {

/// After this time without keys, the daemon has forgotten all of them.
constexpr milliseconds quietTime = 1500ms;
/// How much earlier or later an announcement of the replay may come.
constexpr milliseconds tolerance = 100ms;

/// The player, with empty folders in place of those of the running daemon.
const QString playerLine =
    QStringLiteral("unshare --mount sh -c 'for folder in /dev/input /var/lib /run; do "
                   "mount -t tmpfs tmpfs $folder || exit; done; "
                   "KEY_SCRIPTS=\"$0\" exec /usr/lib/keyboard-handler-tests/GoldenTest' %1");

/// Whether the recording says of the part with this time that a replay may differ. A part ends when a key
/// comes after all keys have been forgotten.
bool isNearLimit(const KeyScript& script, milliseconds time)
{
    bool isMarked = false;
    int keysDown = 0;
    milliseconds lastChange{0};
    for (const ScriptStep& step : script.steps) {
        if (step.at > time + tolerance) {
            break;
        }
        const bool isPress = step.kind == ScriptStep::Kind::Press;
        if (step.kind == ScriptStep::Kind::Heading) {
            isMarked = step.text.endsWith(QLatin1String("of a time limit: a replay may differ"));
        } else if (isPress || step.kind == ScriptStep::Kind::Release) {
            isMarked = isMarked && (keysDown > 0 || step.at < lastChange + quietTime);
            keysDown += isPress ? 1 : -1;
        } else {
            continue;
        }
        lastChange = step.at;
    }
    return isMarked;
}

} // namespace

Replay Replay::of(const QByteArray& recording)
{
    const ParsedScript parsed = parseScriptFile(recording);
    if (!parsed.faults.isEmpty()) {
        return {parsed.faults.first().text, {}, {}};
    }
    const QTemporaryDir folder(QStringLiteral("/tmp/replay"));
    QFile file(folder.filePath(QStringLiteral("recorded.keys")));
    if (!file.open(QIODevice::WriteOnly) || file.write(recording) != recording.size() || !file.flush()) {
        return {file.errorString(), {}, {}};
    }
    const Command::Result played = Command::shell(playerLine.arg(folder.path()));
    Replay replay;
    static const QRegularExpression line(QStringLiteral("(missing|unexpected) +(\\d+) ms: [^\\n]*"));
    for (auto match = line.globalMatch(played.output); match.hasNext();) {
        const QRegularExpressionMatch found = match.next();
        const milliseconds time(found.captured(2).toLongLong());
        (isNearLimit(parsed.script, time) ? replay.apart : replay.differences) << found.captured();
    }
    const bool isPlayed = played.output.contains(QLatin1String("scriptGoesAsExpected(recorded)"));
    const bool isExplained = played.status == 0 || !replay.differences.isEmpty() || !replay.apart.isEmpty();
    if (!isPlayed || !isExplained) {
        replay.fault = played.output;
    }
    return replay;
}
