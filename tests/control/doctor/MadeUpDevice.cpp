// SPDX-License-Identifier: MIT
#include "tests/control/doctor/MadeUpDevice.h"

#include <ls/Identifiers.h>

using namespace control;

namespace {

constexpr qint64 process = 412;
const FileId firstNode{5, 64};
const FileId secondNode{5, 65};

BusFacts bus()
{
    BusFacts facts;
    facts.prefix = QStringLiteral("com.vantre");
    facts.names.append(facts.nameOf(QStringLiteral("SpeechDaemon")));
    for (const QString& service : ls::ServiceId::meta.keys()) {
        facts.names.append(facts.nameOf(service));
    }
    facts.owner = process;
    facts.answer = BusFacts::Answer::Answered;
    facts.state = ls::StateId::Idle;
    return facts;
}

NodeFacts node(int number, FileId id)
{
    NodeFacts facts;
    facts.path = QStringLiteral("/dev/input/event%1").arg(number);
    facts.kind = NodeFacts::Kind::InputDevice;
    facts.id = id;
    facts.name = QStringLiteral("embosser-panel-%1").arg(number);
    facts.hasAutorepeat = true;
    facts.repeatDelay = 250;
    facts.repeatPeriod = 33;
    for (const int code : ls::KeyId::meta.values()) {
        facts.codes.insert(code);
    }
    return facts;
}

} // namespace

Facts MadeUpDevice::healthy(const QString& folder)
{
    const QDateTime started(QDate(2026, 3, 2), QTime(8, 0, 5));
    Facts facts;
    facts.user = {QStringLiteral("root"), true, QStringLiteral("embosser-services"), true, false, false};
    facts.bus = bus();
    facts.unit = {true, {}, QStringLiteral("loaded"), QStringLiteral("active"), QStringLiteral("success")};
    facts.daemons = {{process, QLatin1Char('S'), started, QVector<FileId>{firstNode, secondNode}, {}}};
    facts.readiness = {{}, started.addSecs(1)};
    facts.panel.nodes = {node(0, firstNode), node(1, secondNode)};
    facts.panel.names = QStringList{QStringLiteral("embosser-panel-0"), QStringLiteral("embosser-panel-1")};
    facts.lists.sources = checker::ListSources::read({folder});
    facts.lists.result.rows = facts.lists.sources.lists(false).ids().size();
    facts.lists.changed.fill(started.addDays(-1));
    return facts;
}
