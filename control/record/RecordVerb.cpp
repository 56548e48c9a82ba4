// SPDX-License-Identifier: MIT
#include "control/record/RecordVerb.h"

#include "control/Options.h"
#include "control/record/Recorder.h"
#include "control/record/RecorderSocket.h"
#include "control/record/StopSignals.h"
#include "simulator/script/ScriptWords.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QSaveFile>
#include <QTimer>

#include <cerrno>
#include <cstring>
#include <optional>

using std::chrono::seconds;

namespace control {

namespace {

/// How much the unit keeps.
constexpr std::chrono::minutes keptTime{10};
constexpr seconds maxTime = std::chrono::hours(24);

const QString recorderFolder = QStringLiteral("/run/keyboard-handler-recorder");
const QString recorderUnit = QStringLiteral("keyboard-handler-recorder");

const QString forOption = QStringLiteral("for");
const QString outputOption = QStringLiteral("output");
const QString saveOption = QStringLiteral("save");
const QString serveOption = QStringLiteral("serve");

QString socketPath()
{
    return recorderFolder + QStringLiteral("/socket");
}

/// A file that is whole or not there.
bool writeFile(const QString& path, const QByteArray& content, QString& fault)
{
    QSaveFile file(path);
    // `commit` does not see that the last part of the buffer could not be written.
    const bool isWritten = file.open(QIODevice::WriteOnly) && file.write(content) == content.size() &&
                           file.flush() && file.commit();
    fault = isWritten ? QString() : QStringLiteral("%1 cannot be written: %2.").arg(path, file.errorString());
    return isWritten;
}

/// Complains before the recording, not after it.
QString outputFault(const QString& path)
{
    const QFileInfo existing(path);
    if (existing.exists() && !existing.isFile()) {
        return QStringLiteral(
                   "%1 is not a regular file, and a recording replaces its file as a whole. Without "
                   "--output, it goes to the standard output.")
            .arg(path);
    }
    QSaveFile file(path);
    if (path.isEmpty() || file.open(QIODevice::WriteOnly)) {
        file.cancelWriting();
        return {};
    }
    return QStringLiteral("%1 cannot be written: %2.").arg(path, file.errorString());
}

/// A reader of the standard output that hangs must not keep Ctrl-C from ending the program.
void print(const Call& call, const QByteArray& script, StopSignals* stop)
{
    if (stop != nullptr) {
        stop->release();
    }
    call.out.lines(QString::fromUtf8(script));
}

Status write(const Call& call, const QByteArray& script, StopSignals* stop)
{
    const QString path = call.options.value(outputOption);
    QString fault;
    if (path.isEmpty()) {
        print(call, script, stop);
        return Done;
    }
    if (writeFile(path, script, fault)) {
        return Done;
    }
    // What was recorded cannot be repeated.
    print(call, script, stop);
    return call.complain(Unusable, fault + QStringLiteral(" It is on the standard output instead."));
}

Status save(const Call& call)
{
    const auto timeout = Options::timeoutOf(call);
    if (!timeout) {
        return Unusable;
    }
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(*timeout);
    int error = 0;
    const QByteArray script = RecorderSocket::fetch(socketPath(), seconds, error);
    if (error == 0) {
        return write(call, script, nullptr);
    }
    const QString text = QString::fromLocal8Bit(std::strerror(error));
    if (error == EACCES) {
        return call.complain(
            NoRights,
            QStringLiteral("%1: %2. Run this as root, or become a member of the group %3 (sudo adduser "
                           "\"$USER\" %3) and log in again.")
                .arg(socketPath(), text, QStringLiteral(KEYBOARD_HANDLER_SERVICE_GROUP)));
    }
    if (error == ETIMEDOUT) {
        return call.complain(
            NoAnswer, QStringLiteral("%1: the recorder does not answer in %2 s: it hangs. See systemctl "
                                     "status %3.")
                          .arg(socketPath())
                          .arg(seconds.count())
                          .arg(recorderUnit));
    }
    return call.complain(
        Unusable,
        QStringLiteral("%1: %2. The recorder does not run, unless systemctl enable --now %3 started it; "
                       "it knows only what happens from then on.")
            .arg(socketPath(), text, recorderUnit));
}

/// Runs until a signal or until the bus ends.
Status serve(const Call& call)
{
    StopSignals stop;
    const auto prefix = Options::prefixOf(call);
    if (!prefix) {
        return Unusable;
    }
    Recorder recorder(*prefix);
    recorder.keepOnly(keptTime);
    RecorderSocket socket([&recorder] { return recorder.script(); });
    const BusFault fault = recorder.begin();
    if (fault.isFault()) {
        return call.complain(fault.status, fault.text);
    }
    const QString socketFault = socket.listen(socketPath());
    if (!socketFault.isEmpty()) {
        return call.complain(Unusable, socketFault);
    }
    QObject::connect(&stop, &StopSignals::received, [] { QCoreApplication::exit(Done); });
    QObject::connect(&recorder, &Recorder::busLost, [] { QCoreApplication::exit(NoBus); });
    return static_cast<Status>(QCoreApplication::exec());
}

Status record(const Call& call, std::optional<seconds> time)
{
    StopSignals stop;
    const auto prefix = Options::prefixOf(call);
    if (!prefix) {
        return Unusable;
    }
    Recorder recorder(*prefix);
    const BusFault fault = recorder.begin();
    if (fault.isFault()) {
        return call.complain(fault.status, fault.text);
    }
    call.err.line(time ? QStringLiteral("Recording for %1 s; Ctrl-C ends it earlier.").arg(time->count())
                       : QStringLiteral("Recording; Ctrl-C ends it."));
    QObject::connect(&stop, &StopSignals::received, [] { QCoreApplication::exit(Done); });
    QObject::connect(&recorder, &Recorder::busLost, [&call] {
        call.err.line(QStringLiteral("The bus ended, and with it the recording."));
        QCoreApplication::exit(NoBus);
    });
    QObject::connect(&recorder, &Recorder::filled, [&call] {
        call.err.line(QStringLiteral("The recording is full."));
        QCoreApplication::exit(Done);
    });
    if (time) {
        QTimer::singleShot(*time, QCoreApplication::instance(), [] { QCoreApplication::exit(Done); });
    }
    const auto end = static_cast<Status>(QCoreApplication::exec());
    const Status written = write(call, recorder.script(), &stop);
    return written == Done ? end : written;
}

Status runRecord(const Call& call)
{
    const bool isSave = call.options.isSet(saveOption);
    const bool isServe = call.options.isSet(serveOption);
    const bool hasTime = call.options.isSet(forOption);
    if (!call.words.isEmpty()) {
        return call.complain(Unusable,
                             QStringLiteral("\"%1\" is one word too many.").arg(call.words.first()));
    }
    if (int(isSave) + int(isServe) + int(hasTime) > 1) {
        return call.complain(Unusable, QStringLiteral("--for, --save and --serve exclude each other."));
    }
    if (isServe && call.options.isSet(outputOption)) {
        return call.complain(Unusable, QStringLiteral("--serve writes no file; use --save."));
    }
    const auto time = ScriptWords::number(call.options.value(forOption), 1, maxTime.count());
    if (hasTime && !time) {
        return call.complain(Unusable,
                             QStringLiteral("The time is a whole number of seconds, from 1 to 86400."));
    }
    const QString unwritable = outputFault(call.options.value(outputOption));
    if (!unwritable.isEmpty()) {
        return call.complain(Unusable, unwritable);
    }
    if (isSave) {
        return save(call);
    }
    return isServe ? serve(call) : record(call, time ? std::optional(seconds(*time)) : std::nullopt);
}

} // namespace

Verb recordVerb()
{
    return {
        QStringLiteral("record"),
        {},
        QStringLiteral("Record keys and announcements as a key script. Sends the daemon nothing."),
        QStringLiteral(
            "The input devices are read next to the daemon. Where a command or lost records may have "
            "played a part, the script says \"unknown\". All keys are recorded, so treat the file like a "
            "log of what was typed."),
        {QStringLiteral("record --for 30 --output feed.keys"),
         QStringLiteral("record --save --output last.keys")},
        {Options::prefix(),
         Options::timeout(),
         {forOption, QStringLiteral("End after this time (default: Ctrl-C)."), QStringLiteral("seconds")},
         {outputOption, QStringLiteral("Write the script to this file, not to the standard output."),
          QStringLiteral("file")},
         {saveOption, QStringLiteral("Write the last 10 minutes, which %1.service keeps.").arg(recorderUnit)},
         {serveOption, QStringLiteral("Keep the last 10 minutes in memory for --save; the unit runs this.")}},
        runRecord};
}

} // namespace control
