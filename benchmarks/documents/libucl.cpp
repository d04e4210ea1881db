// SPDX-License-Identifier: BSL-1.0
#include <ucl.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>

#include "work.h"

namespace bench {
namespace {

struct eLibucl {
    static constexpr const char* kName = "libucl";
    static constexpr eKind kKind = eKind::Peer;
    static constexpr eFormat kFormat = eFormat::Json;

    // Numbers with a unit of time are not looked for, and keys and strings are copied: the text need not stay.
    static std::shared_ptr<ucl_object_t> Parse(const std::string& text) {
        ucl_parser* const parser = ucl_parser_new(UCL_PARSER_NO_TIME | UCL_PARSER_DISABLE_MACRO);
        ucl_parser_add_string(parser, text.data(), text.size());
        const std::shared_ptr<ucl_object_t> object(ucl_parser_get_object(parser), ucl_object_unref);
        ucl_parser_free(parser);
        return object;
    }

    static const ucl_object_t* Records(const ucl_object_t& document) { return ucl_object_lookup(&document, "scene"); }

    static std::uint64_t Load(const std::string& text) { return ucl_array_size(Records(*Parse(text))); }

    static std::uint64_t Find(const ucl_object_t& document, std::size_t items) {
        std::uint64_t sum = 0;
        for (std::size_t item = 0; item < items; item += kFoundEvery)
            sum += static_cast<std::uint64_t>(ucl_object_toint(
                ucl_object_lookup_path(&document, ("scene." + std::to_string(item) + ".count").c_str())));
        return sum;
    }

    static std::uint64_t Sum(const ucl_object_t& document) {
        std::uint64_t sum = 0;
        ucl_object_iter_t iterator = nullptr;
        while (const ucl_object_t* record = ucl_object_iterate(Records(document), &iterator, true))
            sum += static_cast<std::uint64_t>(ucl_object_toint(ucl_object_lookup(record, "count")));
        return sum;
    }

    static std::string Set(const std::string& text) {
        const auto document = Parse(text);
        const unsigned records = ucl_array_size(Records(*document));
        for (unsigned item = 0; item < records; item += kSetEvery) {
            auto* const record = const_cast<ucl_object_t*>(ucl_array_find_index(Records(*document), item));
            ucl_object_replace_key(record, ucl_object_fromint(7), "count", 0, true);
        }
        return Written(*document);
    }

    static std::string Format(const std::string& text) { return Written(*Parse(text)); }

    static std::string Written(const ucl_object_t& document) {
        std::size_t bytes = 0;
        unsigned char* const text = ucl_object_emit_len(&document, UCL_EMIT_JSON, &bytes);
        std::string copy(reinterpret_cast<const char*>(text), bytes);
        std::free(text);
        return copy;
    }
};

const eContender contender(1, AddAllRows<eLibucl>);

} // namespace
} // namespace bench
