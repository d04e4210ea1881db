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

void WriteAll(rapidjson::StringBuffer& to, eRecords records) {
    eWriter writer(to);
    writer.StartObject();
    writer.Key("scene", 5);
    writer.StartArray();
    for (const eRecord& record : records)
        Write(writer, record);
    writer.EndArray();
    writer.EndObject();
}

size_t Size(eRecords records) {
    rapidjson::StringBuffer text;
    WriteAll(text, records);
    return text.GetSize();
}

std::uint64_t Check(eRecords records) {
    rapidjson::StringBuffer text;
    WriteAll(text, records);
    return ReadJsonText(text.GetString());
}

const eContender contender(1, [](eSuite& suite) {
    for (const unsigned kilobytes : suite.Options().kilobytes) {
        if (!suite.Wants(WriteWork(kilobytes)))
            continue;
        const size_t count = Items(eDocument::Records, kilobytes);
        suite.Add(WriteWork(kilobytes), Values(eDocument::Records, kilobytes),
                  {"RapidJSON Writer to StringBuffer",
                   eKind::Peer,
                   1.0,
                   Size(Records(count)),
                   {},
                   [count] { return Size(Records(count)); },
                   [count] { return Check(Records(count)); }});
    }
});

} // namespace
} // namespace bench
