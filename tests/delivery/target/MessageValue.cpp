// SPDX-License-Identifier: MIT
#include "tests/delivery/target/MessageValue.h"

#include <QStringList>

#include <systemd/sd-bus.h>

namespace {

QVariant next(sd_bus_message* message);

template <typename Number>
QVariant number(sd_bus_message* message, char type)
{
    Number value{};
    sd_bus_message_read_basic(message, type, &value);
    return QVariant::fromValue(value);
}

QVariant text(sd_bus_message* message, char type)
{
    const char* value = nullptr;
    sd_bus_message_read_basic(message, type, &value);
    return QString::fromUtf8(value);
}

QVariant map(sd_bus_message* message)
{
    QVariantMap entries;
    while (sd_bus_message_enter_container(message, 0, nullptr) > 0) {
        const QString key = next(message).toString();
        entries.insert(key, next(message));
        sd_bus_message_exit_container(message);
    }
    return entries;
}

QVariant list(sd_bus_message* message)
{
    QVariantList values;
    while (sd_bus_message_at_end(message, 0) == 0) {
        values.append(next(message));
    }
    return values;
}

QVariant container(sd_bus_message* message, char type, const QByteArray& contents)
{
    sd_bus_message_enter_container(message, type, contents.constData());
    QVariant value;
    if (type == SD_BUS_TYPE_VARIANT) {
        value = next(message);
    } else if (contents.startsWith('{')) {
        value = map(message);
    } else {
        value = list(message);
    }
    sd_bus_message_exit_container(message);
    return value;
}

QVariant next(sd_bus_message* message)
{
    char type = 0;
    const char* contents = nullptr;
    if (sd_bus_message_peek_type(message, &type, &contents) <= 0) {
        return {};
    }
    switch (type) {
    case SD_BUS_TYPE_BOOLEAN:
        return number<int>(message, type).toBool();
    case SD_BUS_TYPE_INT32:
        return number<qint32>(message, type);
    case SD_BUS_TYPE_UINT32:
        return number<quint32>(message, type);
    case SD_BUS_TYPE_INT64:
        return number<qint64>(message, type);
    case SD_BUS_TYPE_DOUBLE:
        return number<double>(message, type);
    case SD_BUS_TYPE_STRING:
    case SD_BUS_TYPE_OBJECT_PATH:
        return text(message, type);
    case SD_BUS_TYPE_ARRAY:
    case SD_BUS_TYPE_VARIANT:
    case SD_BUS_TYPE_STRUCT:
        return container(message, type, contents);
    default:
        // The keyboard service sends no such values, so only the type is returned.
        sd_bus_message_skip(message, nullptr);
        return QStringLiteral("value of type %1").arg(QLatin1Char(type));
    }
}

} // namespace

namespace MessageValue {

QVariant first(sd_bus_message* message)
{
    return next(message);
}

} // namespace MessageValue
