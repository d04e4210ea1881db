// SPDX-License-Identifier: BSL-1.0
#include <qzl_io/sdl.h>
#include <qzl_io/streams.h>

#include <cstdint>
#include <string>

#include "../support/keywords.h"
#include "../support/read_bare.h"
#include "../support/write_record.h"
#include "scene.h"

namespace bench {
namespace {

void Write(eSDLWriter& writer, const eRecord& record) {
    WriteRecord(writer, record);
}

void Write(eSDLWriter& writer, const eTextBlock& block) {
    writer << ::block{wordText} << endl;
    for (const std::string& text : block.texts)
        writer << text << endl;
    writer << endb << endl;
}

void Write(eSDLWriter& writer, const eNumberRow& row) {
    writer << block{wordRow};
    for (int i = 0; i < kNumbersOfEachKind; ++i)
        writer << row.ints[i] << row.floats[i];
    writer << endb << endl;
}

void Write(eSDLWriter& writer, const eNodeChain& chain) {
    for (int i = 0; i < kChainDepth; ++i)
        writer << block{wordNode} << chain.numbers[i] << chain.names[i] << endl;
    for (int i = 0; i < kChainDepth; ++i)
        writer << endb << endl;
}

template <class eItems>
void WriteAll(IO::eMemoryStream& to, eItems items) {
    eSDLWriter writer(&to, nullptr);
    writer.PushKeywords(SceneKeywords());
    writer << block{wordScene} << endl;
    for (const auto& item : items)
        Write(writer, item);
    writer << endb << endl;
}

template <class eItems>
size_t Size(eItems items) {
    IO::eMemoryStream text;
    WriteAll(text, items);
    return text.Size();
}

template <class eItems>
std::uint64_t Check(eItems items) {
    IO::eMemoryStream text;
    WriteAll(text, items);
    const std::string whole(reinterpret_cast<const char*>(text.Buffer()), text.Size());
    return ReadBare(whole.c_str());
}

const eContender contender(0, [](eSuite& suite) {
    ForEachScene(suite, [&](const eScene& scene, auto items) {
        const auto size = [=] { return SizeOfAll(scene, items, [](auto each) { return Size(each); }); };
        const auto check = [=] { return CheckOfAll(scene, items, [](auto each) { return Check(each); }); };
        suite.Add(scene.work, scene.values, {"eSDLWriter", eKind::Ours, 0, scene.bytes, {}, size, check});
    });
});

} // namespace
} // namespace bench
