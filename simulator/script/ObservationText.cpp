// SPDX-License-Identifier: MIT
#include "simulator/script/ObservationText.h"

#include "simulator/script/SentenceFiles.h"
#include "vocabulary/Vocabulary.h"

#include <ls/Identifiers.h>
#include <ls/MessageKeys.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonValue>
#include <QSet>
#include <QStringList>

#include <algorithm>

namespace {

const QString logWord = QStringLiteral("log ");

QString compactJson(const QVariant& value)
{
    // QJsonDocument cannot hold a bare value, so the value is written as an array's only element.
    const QByteArray text =
        QJsonDocument(QJsonArray{QJsonValue::fromVariant(value)}).toJson(QJsonDocument::Compact);
    return QString::fromUtf8(text.mid(1, text.size() - 2));
}

QString word(const QVariant& value)
{
    if (value.type() == QVariant::Map || value.type() == QVariant::List ||
        value.type() == QVariant::StringList) {
        return compactJson(value);
    }
    const QString text = value.toString();
    if (text.isEmpty()) {
        return QStringLiteral("-");
    }
    const bool plain = text != QLatin1String("-") &&
                       std::none_of(text.begin(), text.end(), [](QChar c) { return c.isSpace() || c < ' '; });
    return plain ? text : compactJson(text);
}

bool isKeyboardChange(const QVariantMap& notification)
{
    static const QSet<QString> usualKeys{ls::notificationIdKey, ls::actionIdKey, ls::receiverIdKey,
                                         ls::senderIdKey,       ls::firstKeyKey, ls::secondKeyKey};
    const QStringList keys = notification.keys();
    return notification.value(ls::notificationIdKey) == ls::KeyboardHandlerNotifId::KeyboardChange &&
           std::all_of(keys.begin(), keys.end(),
                       [](const QString& key) { return usualKeys.contains(key); }) &&
           (notification.contains(ls::firstKeyKey) || !notification.contains(ls::secondKeyKey));
}

} // namespace

namespace ObservationText {

QString announcement(const QVariantMap& notification)
{
    if (!isKeyboardChange(notification)) {
        return QStringLiteral("announce ") + compactJson(notification);
    }
    QStringList words{QStringLiteral("announce"), word(notification.value(ls::actionIdKey)),
                      word(notification.value(ls::receiverIdKey)), word(notification.value(ls::senderIdKey))};
    for (const QString& key : {ls::firstKeyKey, ls::secondKeyKey}) {
        if (notification.contains(key)) {
            words << word(notification.value(key));
        }
    }
    return words.join(' ');
}

QString speech(const QVariantMap& request)
{
    const QString file = SentenceFiles::nameOf(request.value(vocabulary::speechServiceIdKey, -1).toInt());
    if (file.isEmpty() || !request.contains(vocabulary::speechSentenceIdKey)) {
        return QStringLiteral("speak ") + compactJson(request);
    }
    QStringList words{QStringLiteral("speak"), file, word(request.value(vocabulary::speechSentenceIdKey))};
    if (request.contains(vocabulary::speechArgumentsKey)) {
        words << word(request.value(vocabulary::speechArgumentsKey));
    }
    return words.join(' ');
}

QString cancellation()
{
    return QStringLiteral("cancel");
}

QString logLine(const QString& line)
{
    // Leading blanks may be intended.
    int length = line.size();
    while (length > 0 && line.at(length - 1).isSpace()) {
        --length;
    }
    return logWord + line.left(length);
}

QString answer(const QVariantMap& response)
{
    QStringList words{QStringLiteral("answer")};
    for (auto entry = response.begin(); entry != response.end(); ++entry) {
        words << entry.key() + '=' + word(entry.value());
    }
    return words.join(' ');
}

bool isAnnouncement(const QString& text)
{
    return text.startsWith(QLatin1String("announce "));
}

bool isLogLine(const QString& text)
{
    return text.startsWith(logWord);
}

} // namespace ObservationText
