// SPDX-License-Identifier: BSL-1.0
#include <cpprest/json.h>

#include <string>

#include "hand_text.h"
#include "work.h"

namespace bench {
namespace {

bool IsTree(const web::json::value& value) {
    return value.is_object() || value.is_array();
}

void Put(eHandText& out, const web::json::value& value) {
    switch (value.type()) {
    case web::json::value::Number:
        if (value.as_number().is_int32())
            out.Number(value.as_number().to_int32());
        else
            out.Number(static_cast<float>(value.as_number().to_double()));
        break;
    case web::json::value::Boolean:
        out.Bool(value.as_bool());
        break;
    case web::json::value::String:
        out.String(value.as_string());
        break;
    case web::json::value::Object:
        for (const auto& [name, inner] : value.as_object())
            out.Member(name, IsTree(inner), [&] { Put(out, inner); });
        break;
    case web::json::value::Array:
        for (const web::json::value& inner : value.as_array())
            out.Element(IsTree(inner), [&] { Put(out, inner); });
        break;
    case web::json::value::Null:
        break;
    }
}

web::json::value Parsed(const std::string& text) {
    web::json::keep_object_element_order(true);
    return web::json::value::parse(text);
}

size_t Convert(const std::string& from, const std::string& to) {
    eHandText written;
    Put(written, Parsed(WholeJson(from)));
    return WriteConverted(to, written.text);
}

const eContender contender(1, [](eSuite& suite) {
    for (const eJsonWork& work : JsonWorks(suite.Options())) {
        if (!suite.Wants(work.name))
            continue;
        const std::string in = work.Input();
        const std::string out = WorkFile("peer.sdl");
        const std::string& text = work.Json();
        const auto check = [=] {
            Convert(in, out);
            return SumOfConverted(out);
        };
        suite.Add(work.name, work.Count(),
                  {"cpprestsdk's parse and hand-written text",
                   eKind::Peer,
                   0.9,
                   text.size(),
                   {},
                   [=] { return Convert(in, out); },
                   check});
        suite.Add(work.name, work.Count(),
                  {"cpprestsdk's parse alone",
                   eKind::Limit,
                   1.3,
                   text.size(),
                   {},
                   [&text] { return Parsed(text).size(); },
                   check});
    }
});

} // namespace
} // namespace bench
