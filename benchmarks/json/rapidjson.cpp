// SPDX-License-Identifier: BSL-1.0
#include <rapidjson/document.h>

#include <string>
#include <string_view>

#include "hand_text.h"
#include "work.h"

namespace bench {
namespace {

std::string_view View(const rapidjson::Value& string) {
    return {string.GetString(), string.GetStringLength()};
}

bool IsTree(const rapidjson::Value& value) {
    return value.IsObject() || value.IsArray();
}

void Put(eHandText& out, const rapidjson::Value& value) {
    switch (value.GetType()) {
    case rapidjson::kNumberType:
        if (value.IsInt())
            out.Number(value.GetInt());
        else
            out.Number(static_cast<float>(value.GetDouble()));
        break;
    case rapidjson::kFalseType:
    case rapidjson::kTrueType:
        out.Bool(value.GetBool());
        break;
    case rapidjson::kStringType:
        out.String(View(value));
        break;
    case rapidjson::kObjectType:
        for (const auto& member : value.GetObject())
            out.Member(View(member.name), IsTree(member.value), [&] { Put(out, member.value); });
        break;
    case rapidjson::kArrayType:
        for (const rapidjson::Value& inner : value.GetArray())
            out.Element(IsTree(inner), [&] { Put(out, inner); });
        break;
    case rapidjson::kNullType:
        break;
    }
}

size_t Convert(const std::string& from, const std::string& to) {
    const std::string text = WholeJson(from);
    rapidjson::Document tree;
    tree.Parse(text.data(), text.size());
    eHandText written;
    Put(written, tree);
    return WriteConverted(to, written.text);
}

const eContender contender(2, [](eSuite& suite) {
    for (const eJsonWork& work : JsonWorks(suite.Options())) {
        if (!suite.Wants(work.name))
            continue;
        const std::string in = work.Input();
        const std::string out = WorkFile("rapidjson.sdl");
        suite.Add(work.name, work.Count(),
                  {"RapidJSON's tree and hand-written text",
                   KeepsTree() ? eKind::Note : eKind::Peer,
                   KeepsTree() ? 0 : 0.9,
                   work.Json().size(),
                   {},
                   [=] { return Convert(in, out); },
                   [=] {
                       Convert(in, out);
                       return SumOfConverted(out);
                   }});
    }
});

} // namespace
} // namespace bench
