// SPDX-License-Identifier: BSL-1.0
#include <qzl_io/sdl/document.h>
#include <qzl_io/sdl/layout.h>

#include <cstdint>
#include <memory>
#include <string>

#include "work.h"

namespace bench {
namespace {

std::uint64_t CountOf(const eSDLNode& record) {
    return static_cast<std::uint64_t>(record.Value(1).As<int>().value_or(0));
}

std::uint64_t Load(const std::string& text) {
    const eSDLDocument document(text);
    std::uint64_t records = 0;
    for (const eSDLNode& child : document.Find("scene"))
        records += child.IsBlock();
    return records;
}

std::uint64_t Find(const eSDLDocument& document, std::size_t items) {
    std::uint64_t sum = 0;
    const eSDLNode scene = document.Find("scene");
    for (std::size_t item = 0; item < items; item += kFoundEvery)
        sum += static_cast<std::uint64_t>(scene.Find("item[" + std::to_string(item) + "]/1").As<int>().value_or(0));
    return sum;
}

std::uint64_t Sum(const eSDLDocument& document) {
    std::uint64_t sum = 0;
    for (const eSDLNode& record : document.Find("scene"))
        sum += CountOf(record);
    return sum;
}

// Returns the sum of what the written text holds.
std::string Set(const std::string& text) {
    eSDLDocument document(text);
    std::size_t item = 0;
    for (const eSDLNode& record : document.Find("scene"))
        if (item++ % kSetEvery == 0)
            document.Set(record.Value(1), 7);
    return document.Text();
}

// Comments stay.
std::string Format(const std::string& text) {
    return eSDLLayout().Format(eSDLDocument(text));
}

const eContender contender(0, [](eSuite& suite) {
    for (const unsigned kilobytes : suite.Options().kilobytes) {
        const std::string& text = Text(eDocument::Records, kilobytes, eFormat::Sdl);
        const std::size_t items = Items(eDocument::Records, kilobytes);
        const auto count = static_cast<double>(items);
        const auto document = std::make_shared<eSDLDocument>(text);
        const char* const name = "eSDLDocument";
        if (suite.Wants(LoadWork(kilobytes)))
            suite.Add(LoadWork(kilobytes), count,
                      {name, eKind::Ours, 0, text.size(), {}, [&] { return Load(text); }, {}}, "record");
        if (suite.Wants(FindWork(kilobytes)))
            suite.Add(FindWork(kilobytes), Each(items, kFoundEvery),
                      {name, eKind::Ours, 0, text.size(), {}, [=] { return Find(*document, items); }, {}}, "path");
        if (suite.Wants(SumWork(kilobytes)))
            suite.Add(SumWork(kilobytes), count,
                      {name, eKind::Ours, 0, text.size(), {}, [=] { return Sum(*document); }, {}}, "record");
        if (suite.Wants(SetWork(kilobytes)))
            suite.Add(SetWork(kilobytes), Each(items, kSetEvery),
                      {name,
                       eKind::Ours,
                       0,
                       text.size(),
                       {},
                       [&] { return std::uint64_t{Set(text).size() != 0}; },
                       [&] { return Sum(eSDLDocument(Set(text))); }},
                      "edit");
        if (suite.Wants(FormatWork(kilobytes)))
            suite.Add(FormatWork(kilobytes), count,
                      {name,
                       eKind::Ours,
                       0,
                       text.size(),
                       {},
                       [&] { return std::uint64_t{Format(text).size() != 0}; },
                       [&] { return Sum(eSDLDocument(Format(text))); }},
                      "record");
    }
});

} // namespace
} // namespace bench
