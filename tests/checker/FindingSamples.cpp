// SPDX-License-Identifier: MIT
#include "tests/checker/FindingSamples.h"

using namespace checker;
using model::List;

namespace {

const QByteArray text("{\n  \"\xF0\x9F\x94\x91\": \"a\xFF\x1B[31m\"\n}\n");

SourceFile& fileOf(ListSources& sources, List list)
{
    return sources.files[static_cast<size_t>(list)];
}

Range rangeOf(const char* part)
{
    const int begin = text.indexOf(part);
    return {begin, begin + static_cast<int>(qstrlen(part))};
}

model::Proof proof()
{
    model::Proof proof;
    proof.environment.kind = model::Environment::Kind::Person;
    proof.situations = 5'000'000'000;
    proof.steps = 2;
    proof.isComplete = true;
    return proof;
}

Finding fullFinding()
{
    Finding finding;
    finding.id = QStringLiteral("never");
    finding.level = Level::Error;
    finding.message = QStringLiteral("no keys announce \"{0}\x1b") + QChar(0xD800) + QStringLiteral("\"");
    finding.row = {List::Combinations, 1};
    finding.place = {List::Combinations, rangeOf("a"), QStringLiteral("row 2")};
    const Place other{List::Combinations, rangeOf("\"\xF0\x9F\x94\x91\""), QStringLiteral("row 1")};
    finding.related = {other, other};
    finding.proof = ProofNote{QStringLiteral("Orvane"), proof()};
    finding.help = QStringLiteral("move row 1");
    finding.witness = QStringLiteral("state Idle\ntap Help\n");
    return finding;
}

} // namespace

ListSources FindingSamples::sources()
{
    ListSources sources;
    fileOf(sources, List::LongPresses) = SourceFile(QStringLiteral("/etc/long keys.json"), "{}");
    fileOf(sources, List::Combinations) = SourceFile(QStringLiteral("my lists/ü:100%.json"), text);
    sources.found = {List::LongPresses, List::Combinations};
    return sources;
}

CheckResult FindingSamples::result()
{
    Finding finding;
    finding.id = QStringLiteral("section");
    finding.level = Level::Warning;
    finding.message = QStringLiteral("is \"LongKey\" misspelt?");
    CheckResult result;
    result.findings = {finding, fullFinding()};
    result.situations = 7;
    result.steps = 8;
    return result;
}
