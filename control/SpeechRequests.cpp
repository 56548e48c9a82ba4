// SPDX-License-Identifier: MIT
#include "control/SpeechRequests.h"

#include "checker/OutputWords.h"
#include "simulator/script/ObservationText.h"
#include "simulator/script/SentenceFiles.h"
#include "vocabulary/Vocabulary.h"

#include <ls/Identifiers.h>

#include <QSocketNotifier>
#include <QTimer>

#include <cstdlib>
#include <cstring>

#include <systemd/sd-bus.h>

namespace control {

namespace {

constexpr int maxMessages = 64;
const QString cancelAll = QStringLiteral("cancelAll");

QString busNameOf(const QString& prefix, const QString& id)
{
    return prefix + QLatin1Char('.') + id;
}

/// The value of a bus variant; invalid if the daemon sends no such type.
QVariant readValue(sd_bus_message* message, const char* type)
{
    char** list = nullptr;
    const char* text = nullptr;
    int32_t number = 0;
    if (std::strcmp(type, "i") == 0 && sd_bus_message_read_basic(message, 'i', &number) > 0) {
        return number;
    }
    if (std::strcmp(type, "s") == 0 && sd_bus_message_read_basic(message, 's', &text) > 0) {
        return QString::fromUtf8(text);
    }
    if (std::strcmp(type, "as") != 0 || sd_bus_message_read_strv(message, &list) < 0 || list == nullptr) {
        sd_bus_message_skip(message, type);
        return {};
    }
    QStringList texts;
    for (char** each = list; *each != nullptr; ++each) {
        texts.append(QString::fromUtf8(*each));
        ::free(*each);
    }
    ::free(list);
    return texts;
}

/// The map a{sv} of a request, as far as it can be read.
QVariantMap readMap(sd_bus_message* message)
{
    QVariantMap map;
    if (sd_bus_message_enter_container(message, SD_BUS_TYPE_ARRAY, "{sv}") <= 0) {
        return map;
    }
    while (sd_bus_message_enter_container(message, SD_BUS_TYPE_DICT_ENTRY, "sv") > 0) {
        const char* key = nullptr;
        const char* type = nullptr;
        if (sd_bus_message_read_basic(message, 's', &key) <= 0 ||
            sd_bus_message_peek_type(message, nullptr, &type) <= 0 ||
            sd_bus_message_enter_container(message, SD_BUS_TYPE_VARIANT, type) <= 0) {
            break;
        }
        map.insert(QString::fromUtf8(key), readValue(message, type));
        const bool hasLeftValue = sd_bus_message_exit_container(message) >= 0;
        if (!hasLeftValue || sd_bus_message_exit_container(message) < 0) {
            break;
        }
    }
    return map;
}

QString speechOf(const QVariantMap& request)
{
    const QVariant sentence = request.value(vocabulary::speechSentenceIdKey);
    const QString file = SentenceFiles::nameOf(request.value(vocabulary::speechServiceIdKey, -1).toInt());
    if (file.isEmpty() || sentence.type() != QVariant::Int) {
        return ObservationText::speech(request);
    }
    model::Output output;
    output.kind = model::Output::Kind::Speak;
    output.text = file;
    output.sentence = sentence.toInt();
    const QStringList arguments = request.value(vocabulary::speechArgumentsKey).toStringList();
    return checker::OutputWords::of(output) +
           (arguments.isEmpty() ? QString() : QStringLiteral(", with ") + arguments.join(QLatin1Char(' ')));
}

} // namespace

SpeechRequests::SpeechRequests(Report report) : m_report(std::move(report)) {}

SpeechRequests::~SpeechRequests() = default;

QString SpeechRequests::open(const QString& prefix)
{
    QString fault = BusSocket::join(m_bus);
    if (!fault.isEmpty()) {
        return fault;
    }
    const QString speech = busNameOf(prefix, QStringLiteral("SpeechDaemon"));
    const QString rule = QStringLiteral("type='method_call',sender='%1',destination='%2',interface='%2'")
                             .arg(busNameOf(prefix, ls::ServiceId::KeyboardHandler), speech);
    sd_bus_error error = SD_BUS_ERROR_NULL;
    const QByteArray bytes = rule.toUtf8();
    const int result = sd_bus_call_method(m_bus.get(), "org.freedesktop.DBus", "/org/freedesktop/DBus",
                                          "org.freedesktop.DBus.Monitoring", "BecomeMonitor", &error, nullptr,
                                          "asu", 1U, bytes.constData(), 0U);
    const QString reason = QString::fromUtf8(error.message);
    sd_bus_error_free(&error);
    if (result < 0) {
        m_bus.reset();
        return QStringLiteral(
                   "Speech is not shown, because the bus does not let you monitor it (%1); root may.")
            .arg(reason.trimmed());
    }
    m_notifier = std::make_unique<QSocketNotifier>(sd_bus_get_fd(m_bus.get()), QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, [this] { readSome(); });
    QTimer::singleShot(0, this, [this] { readSome(); }); // what came with the reply
    return {};
}

/// The event loop continues from time to time: a flood must not hold up the announcements.
void SpeechRequests::readSome()
{
    for (int count = 0; count < maxMessages; ++count) {
        if (!m_bus || !readOne()) {
            return;
        }
    }
    if (!m_isPending) {
        m_isPending = true;
        QTimer::singleShot(0, this, [this] {
            m_isPending = false;
            readSome();
        });
    }
}

/// Returns whether more may be there.
bool SpeechRequests::readOne()
{
    sd_bus_message* message = nullptr;
    const int result = sd_bus_process(m_bus.get(), &message);
    if (message != nullptr) {
        take(message);
        sd_bus_message_unref(message);
    }
    if (result < 0) {
        close();
        const QString words = QStringLiteral("speech is no longer shown: the bus has closed the connection");
        m_report(words, {{QStringLiteral("remark"), words}});
    }
    return result > 0;
}

void SpeechRequests::close()
{
    if (m_notifier) {
        m_notifier->setEnabled(false); // its signal may be being delivered
        m_notifier.release()->deleteLater();
    }
    m_bus.reset();
}

void SpeechRequests::take(sd_bus_message* message)
{
    uint8_t type = 0;
    const QString method = QString::fromUtf8(sd_bus_message_get_member(message));
    if (sd_bus_message_get_type(message, &type) < 0 || type != SD_BUS_MESSAGE_METHOD_CALL) {
        return;
    }
    const QVariantMap request = readMap(message);
    m_report(method == cancelAll ? QStringLiteral("cancels earlier speech") : speechOf(request),
             {{QStringLiteral("method"), method},
              {QStringLiteral("request"), QJsonObject::fromVariantMap(request)}});
}

} // namespace control
