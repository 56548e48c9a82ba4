// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QVariantMap>

/// The one way in which observations are put into words, for key scripts, recordings and transcripts.
///
/// An empty word is written "-"; a word with blanks in it is quoted as in JSON. A map that is not of the
/// usual shape is written whole, as JSON, so that nothing in it goes unnoticed.
namespace ObservationText {

/// "announce ACTION RECEIVER SENDER [FIRSTKEY [SECONDKEY]]" for a notification of the keyboard service.
QString announcement(const QVariantMap& notification);
/// "speak FILE NUMBER" for a request as the speech daemon receives it.
QString speech(const QVariantMap& request);
/// "cancel": pending speech was abandoned.
QString cancellation();
/// "log TEXT" for one line of the daemon's log; blanks at its end do not count.
QString logLine(const QString& line);
/// "answer KEY=VALUE ...", in the order of the keys, for the response to a command.
QString answer(const QVariantMap& response);

/// Whether `text` is about the daemon's log, which reaches an observer on a way of its own.
bool isLogLine(const QString& text);

} // namespace ObservationText
