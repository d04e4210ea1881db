// SPDX-License-Identifier: BSL-1.0
#include <qzl_io/streams.h>

#include <memory>
#include <string>
#include <string_view>

#include "../typed_values/values.h"
#include "texts.h"

namespace bench {
namespace {

void PutStrings(IO::eStream& stream, const eTexts& texts) {
    for (size_t round = 0; round < eTexts::kRounds; ++round)
        for (const std::string& text : texts.texts)
            stream << text;
}

void PutPointers(IO::eStream& stream, const eTexts& texts) {
    for (size_t round = 0; round < eTexts::kRounds; ++round)
        for (const std::string& text : texts.texts)
            stream << text.c_str();
}

// Moves the position to where the texts begin.
void Rewind(IO::eMemoryStream& stream, ePlace place) {
    if (place == ePlace::AtEnd)
        stream.Clear();
    else
        stream.Reset();
}

// `put` is a constant, so that the compiler sees the loop around it, as in an application.
template <void (*put)(IO::eStream&, const eTexts&)>
void Add(eSuite& suite, ePlace place, const eTexts& texts, const char* contender) {
    const size_t size = texts.Bytes() + 64;
    const auto stream = std::make_shared<IO::eMemoryStream>(size, 0);
    stream->Write(std::string(size, '.').data(), size);
    eRow row;
    row.contender = contender;
    row.pass = [=, &texts] {
        Rewind(*stream, place);
        put(*stream, texts);
        return stream->Position();
    };
    row.check = [=, &texts] {
        const std::string_view written(reinterpret_cast<const char*>(stream->Buffer()), texts.Bytes());
        return SameSum(SumOfBytes(written), SumOfTexts(texts));
    };
    AddRow(suite, place, texts, row);
}

const eContender contender(0, [](eSuite& suite) {
    for (const eTexts& texts : AllTexts(suite.Options()))
        for (const ePlace place : {ePlace::AtEnd, ePlace::Among}) {
            Add<PutStrings>(suite, place, texts, "std::string");
            Add<PutPointers>(suite, place, texts, "const char*");
        }
});

} // namespace
} // namespace bench
