// SPDX-License-Identifier: BSL-1.0
#include <qzl_io/sdl/document.h>
#include <qzl_io/sdl/layout.h>

#include <cstdint>
#include <memory>
#include <string>

#include "work.h"

namespace bench {
namespace {

struct eOurs {
    static constexpr const char* kName = "eSDLDocument";
    static constexpr eKind kKind = eKind::Ours;
    static constexpr eFormat kFormat = eFormat::Sdl;

    static std::shared_ptr<eSDLDocument> Parse(const std::string& text) { return std::make_shared<eSDLDocument>(text); }

    static std::uint64_t CountOf(const eSDLNode& record) {
        return static_cast<std::uint64_t>(record.Value(1).As<int>().value_or(0));
    }

    static std::uint64_t Load(const std::string& text) {
        const eSDLDocument document(text);
        std::uint64_t records = 0;
        for (const eSDLNode& child : document.Find("scene"))
            records += child.IsBlock();
        return records;
    }

    static std::uint64_t Find(const eSDLDocument& document, std::size_t items) {
        std::uint64_t sum = 0;
        const eSDLNode scene = document.Find("scene");
        for (std::size_t item = 0; item < items; item += kFoundEvery)
            sum += static_cast<std::uint64_t>(scene.Find("item[" + std::to_string(item) + "]/1").As<int>().value_or(0));
        return sum;
    }

    static std::uint64_t Sum(const eSDLDocument& document) {
        std::uint64_t sum = 0;
        for (const eSDLNode& record : document.Find("scene"))
            sum += CountOf(record);
        return sum;
    }

    static std::string Set(const std::string& text) {
        eSDLDocument document(text);
        std::size_t item = 0;
        for (const eSDLNode& record : document.Find("scene"))
            if (item++ % kSetEvery == 0)
                document.Set(record.Value(1), 7);
        return document.Text();
    }

    // Comments stay.
    static std::string Format(const std::string& text) { return eSDLLayout().Format(eSDLDocument(text)); }
};

const eContender contender(0, AddAllRows<eOurs>);

} // namespace
} // namespace bench
