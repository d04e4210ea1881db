// SPDX-License-Identifier: BSL-1.0
#include <simdjson.h>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "../support/checksum.h"
#include "../support/work_folder.h"
#include "scene.h"

namespace bench {
namespace {

// Reads the items of a scene as an application does that knows their names and order, copying each text.
class eOnDemandSum {
public:
    using eValue = simdjson::simdjson_result<simdjson::ondemand::value>;

    void Record(eValue item) {
        simdjson::ondemand::object record = item.get_object();
        Text(record.find_field("item"));
        Int(record.find_field("count"));
        for (eValue each : record.find_field("pos").get_array())
            Float(each);
        Text(record.find_field("tag"));
        for (eValue each : record.find_field("ids").get_array())
            Int(each);
    }
    void Strings(eValue item) {
        for (eValue each : item.find_field("text").get_array())
            Text(each);
    }
    void Numbers(eValue item) {
        bool isInt = true;
        for (eValue each : item.find_field("row").get_array()) {
            if (isInt)
                Int(each);
            else
                Float(each);
            isInt = !isInt;
        }
    }
    void Chain(eValue item) {
        for (eValue each : item.find_field("node").get_array())
            switch (static_cast<simdjson::ondemand::json_type>(each.type())) {
            case simdjson::ondemand::json_type::number:
                Int(each);
                break;
            case simdjson::ondemand::json_type::string:
                Text(each);
                break;
            default:
                Chain(each);
            }
    }
    std::uint64_t Value() const { return sum.Value(); }

private:
    void Int(eValue value) { sum.Integer(static_cast<int>(value.get_int64())); }
    void Float(eValue value) { sum.Real(static_cast<float>(static_cast<double>(value.get_double()))); }
    void Text(eValue value) {
        text = static_cast<std::string_view>(value.get_string());
        sum.Text(text);
    }

    eChecksum sum;
    std::string text;
};

// The checksum of a document's values, with a parser of its own.
std::uint64_t ReadOnDemand(eDocument document, simdjson::padded_string_view text) {
    simdjson::ondemand::parser parser;
    simdjson::ondemand::document whole = parser.iterate(text);
    eOnDemandSum sum;
    for (eOnDemandSum::eValue item : whole.find_field("scene").get_array())
        switch (document) {
        case eDocument::Records:
        case eDocument::Comments:
            sum.Record(item);
            break;
        case eDocument::Strings:
            sum.Strings(item);
            break;
        case eDocument::Numbers:
            sum.Numbers(item);
            break;
        case eDocument::Nested:
            sum.Chain(item);
            break;
        }
    return sum.Value();
}

std::uint64_t ReadOnDemandFile(const std::string& file) {
    const simdjson::padded_string text = simdjson::padded_string::load(file);
    return ReadOnDemand(eDocument::Records, text);
}

const eContender contender(1, [](eSuite& suite) {
    ForEachDocument(suite.Options(), [&](eDocument document, unsigned kilobytes) {
        // It refuses comments.
        if (!suite.Wants(ReadWork(document, kilobytes)) || document == eDocument::Comments)
            return;
        const auto text = std::make_shared<simdjson::padded_string>(Text(document, kilobytes, eFormat::Json));
        suite.Add(ReadWork(document, kilobytes), Values(document, kilobytes),
                  {"simdjson On-Demand",
                   eKind::Peer,
                   1.0,
                   text->size(),
                   {},
                   [document, text] { return ReadOnDemand(document, *text); },
                   {}});
    });
    for (const unsigned kilobytes : suite.Options().kilobytes) {
        if (!suite.Wants(FileWork(kilobytes)))
            continue;
        const std::string& text = Text(eDocument::Records, kilobytes, eFormat::Json);
        const std::string file = WorkFile("simdjson" + std::to_string(kilobytes) + ".json");
        WriteWhole(file, text);
        suite.Add(
            FileWork(kilobytes), Values(eDocument::Records, kilobytes),
            {"simdjson On-Demand", eKind::Peer, 1.0, text.size(), {}, [file] { return ReadOnDemandFile(file); }, {}});
    }
});

} // namespace
} // namespace bench
