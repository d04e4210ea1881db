// SPDX-License-Identifier: BSL-1.0
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <cstdint>
#include <cstring>

#include "../support/read_json.h"
#include "scene.h"

namespace bench {
namespace {

using eWriter = rapidjson::Writer<rapidjson::StringBuffer>;

rapidjson::SizeType Length(size_t length) {
    return static_cast<rapidjson::SizeType>(length);
}

void Write(eWriter& writer, const eRecord& record) {
    writer.StartObject();
    writer.Key("item", 4);
    writer.String(record.name.data(), Length(record.name.size()));
    writer.Key("count", 5);
    writer.Int(record.count);
    writer.Key("pos", 3);
    writer.StartArray();
    for (const double each : record.decimals)
        writer.Double(each);
    writer.EndArray();
    writer.Key("tag", 3);
    writer.String(record.tag, Length(std::strlen(record.tag)));
    writer.Key("ids", 3);
    writer.StartArray();
    for (const int each : record.ids)
        writer.Int(each);
    writer.EndArray();
    writer.EndObject();
}

void Write(eWriter& writer, const eTextBlock& block) {
    writer.StartObject();
    writer.Key("text", 4);
    writer.StartArray();
    for (const std::string& text : block.texts)
        writer.String(text.data(), Length(text.size()));
    writer.EndArray();
    writer.EndObject();
}

void Write(eWriter& writer, const eNumberRow& row) {
    writer.StartObject();
    writer.Key("row", 3);
    writer.StartArray();
    for (int i = 0; i < kNumbersOfEachKind; ++i) {
        writer.Int(row.ints[i]);
        writer.Double(row.decimals[i]);
    }
    writer.EndArray();
    writer.EndObject();
}

void Write(eWriter& writer, const eNodeChain& chain) {
    for (int i = 0; i < kChainDepth; ++i) {
        writer.StartObject();
        writer.Key("node", 4);
        writer.StartArray();
        writer.Int(chain.numbers[i]);
        writer.String(chain.names[i].data(), Length(chain.names[i].size()));
    }
    for (int i = 0; i < kChainDepth; ++i) {
        writer.EndArray();
        writer.EndObject();
    }
}

template <class eItems>
void WriteAll(rapidjson::StringBuffer& to, eItems items) {
    eWriter writer(to);
    writer.StartObject();
    writer.Key("scene", 5);
    writer.StartArray();
    for (const auto& item : items)
        Write(writer, item);
    writer.EndArray();
    writer.EndObject();
}

template <class eItems>
size_t Size(eItems items) {
    rapidjson::StringBuffer text;
    WriteAll(text, items);
    return text.GetSize();
}

template <class eItems>
std::uint64_t Check(eItems items) {
    rapidjson::StringBuffer text;
    WriteAll(text, items);
    return ReadJsonText<rapidjson::kParseFullPrecisionFlag>(text.GetString());
}

const eContender contender(1, [](eSuite& suite) {
    ForEachScene(suite, [&](const eScene& scene, auto items) {
        const auto size = [=] { return SizeOfAll(scene, items, [](auto each) { return Size(each); }); };
        const auto check = [=] { return CheckOfAll(scene, items, [](auto each) { return Check(each); }); };
        suite.Add(scene.work, scene.values,
                  {"RapidJSON Writer to StringBuffer", eKind::Peer, 0.85, size(), {}, size, check});
    });
});

} // namespace
} // namespace bench
