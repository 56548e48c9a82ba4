// SPDX-License-Identifier: MIT
#include "tests/whole/system/SystemTest.h"

#include <ls/BusNames.h>

#include <QDBusMessage>
#include <QXmlStreamReader>

namespace {

const QString introspectable = QStringLiteral("org.freedesktop.DBus.Introspectable");

/// The interface `name` of a description: a line for each member and argument. Input and output arguments are
/// numbered separately.
QStringList membersOf(const QString& description, const QString& name)
{
    static const QStringList memberElements{"method", "signal", "property"};
    QStringList lines;
    QString member;
    QHash<QString, int> counts;
    bool inside = false;
    QXmlStreamReader xml(description);
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement) {
            continue;
        }
        const QString element = xml.name().toString();
        const QXmlStreamAttributes attributes = xml.attributes();
        if (element == QLatin1String("interface")) {
            inside = attributes.value(QLatin1String("name")) == name;
        } else if (inside && memberElements.contains(element)) {
            member = element + ' ' + attributes.value(QLatin1String("name")).toString();
            lines.append(member);
        } else if (inside && element == QLatin1String("arg")) {
            const bool inward = attributes.value(QLatin1String("direction")) == QLatin1String("in");
            const QString argument = member + (inward ? QStringLiteral(" in ") : QStringLiteral(" out "));
            lines.append(argument + QString::number(counts[argument]++) + ' ' +
                         attributes.value(QLatin1String("type")).toString());
        }
    }
    lines.sort();
    return xml.hasError() ? QStringList{xml.errorString()} : lines;
}

} // namespace

class InterfaceDescriptionTest : public SystemTest
{
    Q_OBJECT

private Q_SLOTS:
    void theDescriptionMatchesTheDaemon();
    void eachMemberAndArgumentIsExplained();

private:
    static QString description();
};

void InterfaceDescriptionTest::theDescriptionMatchesTheDaemon()
{
    QVERIFY(launch());
    BusConnection client(device().bus().address());
    const QString name = ls::busName(ls::ServiceId::KeyboardHandler);
    const QDBusMessage reply = client.get().call(
        QDBusMessage::createMethodCall(name, ls::busPath, introspectable, QStringLiteral("Introspect")));
    const QStringList members = membersOf(reply.arguments().value(0).toString(), name);
    QCOMPARE(members.size(), 5); // a method, its two arguments, a signal, its argument
    QCOMPARE(membersOf(description(), name), members);
}

void InterfaceDescriptionTest::eachMemberAndArgumentIsExplained()
{
    QXmlStreamReader xml(description());
    int explained = 0;
    while (!xml.atEnd()) {
        xml.readNext();
        const QString element = xml.isStartElement() ? xml.name().toString() : QString();
        if (element == QLatin1String("method") || element == QLatin1String("signal") ||
            element == QLatin1String("arg")) {
            const QString member = xml.attributes().value(QLatin1String("name")).toString();
            QVERIFY2(xml.readNextStartElement() && xml.qualifiedName() == QLatin1String("doc:doc"),
                     qPrintable(member));
            ++explained;
        }
    }
    QVERIFY2(!xml.hasError(), qPrintable(xml.errorString()));
    QCOMPARE(explained, 5);
}

QString InterfaceDescriptionTest::description()
{
    QFile file(QStringLiteral(INTERFACE_DESCRIPTION));
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

QTEST_GUILESS_MAIN(InterfaceDescriptionTest)
#include "InterfaceDescriptionTest.moc"
