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
    bool accepts(Bytes bytes) override;
    void run(Bytes& bytes) override;
};

/// Qt's reader confuses names that have the character U+0000 or begin with a byte order mark: which of the
/// members it keeps depends on the others.
bool JsonPlacesTarget::accepts(Bytes bytes)
{
    const QByteArray text = bytes.rest();
    return !text.contains('\0') && !text.contains("\"\xEF\xBB\xBF") && !JsonLeaks::occurIn(text);
}

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
