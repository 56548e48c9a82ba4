// SPDX-License-Identifier: MIT
#include "simulator/demonstration/TranscriptPrinter.h"

#include "simulator/session/DeviceSession.h"

namespace {

constexpr double millisecondsPerSecond = 1000;
constexpr int labelWidth = 10;

QString member(const QJsonObject& entry, const char* name)
{
    return entry.value(QLatin1String(name)).toVariant().toString();
}

QString announcement(const QJsonObject& entry)
{
    const QStringList keys = entry.value(QLatin1String("keys")).toVariant().toStringList();
    const QString sender = member(entry, "sender");
    return QStringLiteral("%1 %2  to %3, %4")
        .arg(member(entry, "action"), keys.join(QStringLiteral(" + ")), member(entry, "receiver"),
             sender.isEmpty() ? QStringLiteral("no sender") : QStringLiteral("sender ") + sender);
}

QString speech(const QJsonObject& entry)
{
    return QStringLiteral("\"%1\"  (%2)")
        .arg(member(entry, "text"), member(entry, "observation").section(' ', 1));
}

QString record(const QJsonObject& entry)
{
    return QStringLiteral("type %1, code %2, value %3  (device %4)")
        .arg(member(entry, "recordType"), member(entry, "code"), member(entry, "value"),
             member(entry, "device"));
}

/// The label and the text of an entry that is one line; an empty label for one that is not.
QPair<QString, QString> lineOf(const QJsonObject& entry)
{
    const QString type = member(entry, "type");
    if (type == QLatin1String("announcement")) {
        return {QStringLiteral("announced"), announcement(entry)};
    }
    if (type == QLatin1String("speech")) {
        return {QStringLiteral("spoken"), speech(entry)};
    }
    if (type == QLatin1String("cancel")) {
        return {QStringLiteral("hushed"), QStringLiteral("all speech is cancelled")};
    }
    if (type == QLatin1String("record")) {
        return {type, record(entry)};
    }
    if (type == QLatin1String("state")) {
        return {type, member(entry, "state")};
    }
    if (type == QLatin1String("command") || type == QLatin1String("service")) {
        return {type, member(entry, "text")};
    }
    if (type == QLatin1String("console")) {
        return {QStringLiteral("typed"), member(entry, "text")};
    }
    if (type == QLatin1String("answer")) {
        const QString message =
            entry.value(QLatin1String("response")).toObject().value(QLatin1String("message")).toString();
        const QString answer = member(entry, "text").section(' ', 1);
        return message.isEmpty() ? qMakePair(QStringLiteral("answered"), answer)
                                 : qMakePair(QStringLiteral("failed"), message);
    }
    return {};
}

} // namespace

TranscriptPrinter::TranscriptPrinter(DeviceSession& session, QObject* parent)
    : QObject(parent), m_output(stdout)
{
    m_output.setCodec("UTF-8");
    connect(&session, &DeviceSession::added, this, &TranscriptPrinter::printEntry);
}

void TranscriptPrinter::printText(const QString& text)
{
    m_output << text << '\n';
    m_output.flush();
}

void TranscriptPrinter::printEntry(const QJsonObject& entry)
{
    m_now = entry.value(QLatin1String("at")).toDouble();
    const QString type = member(entry, "type");
    const auto [label, text] = lineOf(entry);
    if (!label.isEmpty()) {
        print(label, text);
    } else if (type == QLatin1String("device")) {
        printDevice(entry);
    } else if (type == QLatin1String("key")) {
        printKey(entry);
    } else if (type == QLatin1String("heading")) {
        printText(QStringLiteral("\n") + member(entry, "text"));
    } else if (type == QLatin1String("log")) {
        printLogLine(member(entry, "text"));
    } else if (type == QLatin1String("replay")) {
        printReplay(entry);
    }
}

void TranscriptPrinter::printDevice(const QJsonObject& entry)
{
    const QString status = member(entry, "status");
    if (status == QLatin1String("starting")) {
        m_ready = 0;
        printText(QStringLiteral("An embosser of the model %1, in the state %2.")
                      .arg(member(entry, "model"), member(entry, "state")));
    } else if (status == QLatin1String("ready")) {
        m_ready = m_now;
    } else {
        printText(member(entry, "reason"));
    }
}

void TranscriptPrinter::printReplay(const QJsonObject& entry)
{
    if (member(entry, "status") != QLatin1String("finished")) {
        return;
    }
    const QStringList differences = entry.value(QLatin1String("differences")).toVariant().toStringList();
    if (differences.isEmpty()) {
        printText(QStringLiteral("\nAll %1 expectations came true, and nothing else happened.")
                      .arg(member(entry, "expectations")));
    } else {
        printText(QStringLiteral("\nNot as expected:\n") + differences.join('\n'));
    }
}

void TranscriptPrinter::printKey(const QJsonObject& entry)
{
    const QString text = QStringLiteral("%1  (device %2)").arg(member(entry, "key"), member(entry, "device"));
    const int value = entry.value(QLatin1String("value")).toInt();
    // Repetitions would bury everything else.
    if (value == 1) {
        print(QStringLiteral("press"), text);
    } else if (value == 0) {
        print(QStringLiteral("release"), text);
    }
}

void TranscriptPrinter::printLogLine(const QString& line)
{
    if (line.trimmed().isEmpty()) {
        return;
    }
    const bool refused = line.contains(QLatin1String("Expected state is:"));
    print(refused ? QStringLiteral("refused") : QStringLiteral("log"), line);
}

void TranscriptPrinter::print(const QString& label, const QString& text)
{
    const double seconds = (m_now - m_ready) / millisecondsPerSecond;
    printText(QStringLiteral("%1 s  %2 %3").arg(seconds, 7, 'f', 2).arg(label, -labelWidth).arg(text));
}
