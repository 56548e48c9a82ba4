// SPDX-License-Identifier: MIT
// The places of values: the bytes are a text. If Qt's reader accepts it, each place has the value that Qt
// reads.
#include "tests/checker/JsonPlaces.h"
#include "tests/whole/fuzz/JsonLeaks.h"
#include "tests/whole/fuzz/Log.h"
#include "tests/whole/fuzz/Target.h"

namespace {

class JsonPlacesTarget : public Target
{
public:
    bool accepts(Bytes bytes) override { return !JsonLeaks::occurIn(bytes.rest()); }
    void run(Bytes& bytes) override;
};

void JsonPlacesTarget::run(Bytes& bytes)
{
    const QByteArray text = bytes.rest();
    const checker::JsonNode root = checker::JsonText::scan(text);
    Log::require(JsonPlaces::areWithin(root, {0, text.size()}), "each place is a part of the text");
    const QString fault = JsonPlaces::faultIn(root, text);
    Log::require(fault.isEmpty(), qPrintable(fault));
}

} // namespace

std::unique_ptr<Target> Target::make()
{
    return std::make_unique<JsonPlacesTarget>();
}
