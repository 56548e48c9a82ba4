// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QVariantMap>

/// The text of observations in key scripts, recordings and transcripts.
///
/// An empty word is written "-"; a word with blanks is quoted as in JSON. A map of unusual shape is written
/// completely, as JSON, so that no member goes unnoticed.
namespace ObservationText {

/// "announce ACTION RECEIVER SENDER [FIRSTKEY [SECONDKEY]]" for a notification of the keyboard service.
QString announcement(const QVariantMap& notification);
/// "speak FILE NUMBER" for a request to the speech daemon.
QString speech(const QVariantMap& request);
/// "cancel": pending speech was abandoned.
QString cancellation();
/// "log TEXT" for one line of the daemon's log, without trailing blanks.
QString logLine(const QString& line);
/// "answer KEY=VALUE ...", sorted by key, for the response to a command.
QString answer(const QVariantMap& response);

/// Whether `text` is a line of the daemon's log. Log lines do not arrive over the bus, so their order
/// relative to other observations is not fixed.
bool isLogLine(const QString& text);

/// Whether `text` is a notification of the keyboard service.
bool isAnnouncement(const QString& text);

} // namespace ObservationText
