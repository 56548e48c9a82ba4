// SPDX-License-Identifier: MIT
// All of `keyboard-handler-keys check`: the bytes are the content of all three lists. The findings are
// printed in each format, and what has a safe mend is mended.
#include "checker/FindingJson.h"
#include "checker/FindingSarif.h"
#include "checker/FindingText.h"
#include "checker/Mending.h"
#include "checker/Printable.h"
#include "tests/whole/fuzz/JsonLeaks.h"
#include "tests/whole/fuzz/Log.h"
#include "tests/whole/fuzz/Target.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

using checker::CheckResult;
using checker::ListSources;

namespace {

constexpr int maxRows = 12;
/// Enough for most lists of so few rows, and quick.
constexpr model::Limits fewSteps{20'000, 300'000};

ListSources sourcesOf(const QByteArray& text)
{
    ListSources sources;
    for (const model::List list : model::allLists) {
        sources.files[static_cast<size_t>(list)] = checker::SourceFile(model::KeyLists::fileOf(list), text);
        sources.found.append(list);
    }
    return sources;
}

CheckResult findAll(const ListSources& sources)
{
    checker::CheckOptions options;
    options.limits = fewSteps;
    return checker::check(sources, options);
}

bool isJson(const QByteArray& text)
{
    return !QJsonDocument::fromJson(text).isNull();
}

class ChecksTarget : public Target
{
public:
    bool accepts(Bytes bytes) override;
    void run(Bytes& bytes) override;

private:
    static void print(const ListSources& sources, const CheckResult& result);
    static void mend(const ListSources& sources);
};

bool ChecksTarget::accepts(Bytes bytes)
{
    const QByteArray text = bytes.rest();
    return !JsonLeaks::occurIn(text) && sourcesOf(text).lists(false).ids().size() <= maxRows;
}

void ChecksTarget::run(Bytes& bytes)
{
    const ListSources sources = sourcesOf(bytes.rest());
    print(sources, findAll(sources));
    mend(sources);
}

void ChecksTarget::print(const ListSources& sources, const CheckResult& result)
{
    const checker::FindingText text(sources, false);
    QString report = text.summary(result);
    for (const checker::Finding& finding : result.findings) {
        report += text.describe(finding);
    }
    Log::require(checker::printable(report.remove('\n')) == report, "all that is printed is visible");
    const QByteArray json = checker::FindingJson::of(result, sources);
    const QJsonArray findings = QJsonDocument::fromJson(json).object().value("findings").toArray();
    Log::require(findings.size() == result.findings.size(), "the JSON has all findings");
    Log::require(isJson(checker::FindingSarif::of(result, sources)), "the SARIF document is JSON");
}

void ChecksTarget::mend(const ListSources& sources)
{
    const checker::Mending first(sources, findAll);
    for (const model::List list : first.changed()) {
        Log::require(isJson(first.sources().file(list).text()), "mended lists are JSON");
    }
    Log::require(first.made().isEmpty() == first.changed().isEmpty(), "what is reported is done");
    if (!first.made().isEmpty()) {
        Log::require(checker::Mending(first.sources(), findAll).changed().isEmpty(),
                     "a second run changes nothing");
    }
}

} // namespace

std::unique_ptr<Target> Target::make()
{
    return std::make_unique<ChecksTarget>();
}
