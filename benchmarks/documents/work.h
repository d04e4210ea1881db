// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <tuple>
#include <utility>

#include "../support/documents.h"
#include "../support/suite.h"

namespace bench {

// Works on documents of records: the load returns the number of records, the others a sum of their counts, so that each
// contender must have found the same.

constexpr std::size_t kFoundEvery = 1000;
constexpr std::size_t kSetEvery = 100;
// Some of the peers take a second for a pass over a large document.
constexpr unsigned kLargest = 1000; // KB, that is repeated as often as the run demands
constexpr int kRepetitionsOfLarger = 5;

// Adds the rows of one library on one size. Its struct has
//
//     static constexpr const char* kName;
//     static constexpr eKind kKind;                                            // Ours or Peer
//     static constexpr eFormat kFormat;                                        // of the text
//     static std::shared_ptr<...> Parse(const std::string& text);
//     static std::uint64_t Load(const std::string& text);                      // the number of records
//     static std::uint64_t Find(const ...& document, std::size_t items);       // the sum of one count in kFoundEvery
//     static std::uint64_t Sum(const ...& document);                           // the sum of all counts
//
// and, if it writes documents, two functions that return the text:
//
//     static std::string Set(const std::string& text);                         // one count in kSetEvery is 7
//     static std::string Format(const std::string& text);
template <class Library>
void AddRows(eSuite& suite, unsigned kilobytes) {
    const bool isPeer = Library::kKind == eKind::Peer;
    // `make` makes the pass, with what it works on, and its check.
    const auto add = [&](const std::string& title, std::size_t every, double target, const char* unit, auto make) {
        const std::string work = title + ": records, " + SizeName(kilobytes);
        if (!suite.Wants(work, Library::kName))
            return;
        const std::string& text = Text(eDocument::Records, kilobytes, Library::kFormat);
        const std::size_t items = Items(eDocument::Records, kilobytes);
        const eKind kind = isPeer && target == 0 ? eKind::Note : Library::kKind;
        eRow row{Library::kName, kind, isPeer ? target : 0, text.size(), {}, {}, {}};
        std::tie(row.pass, row.check) = make(text, items);
        row.repetitions = kilobytes > kLargest ? kRepetitionsOfLarger : 0;
        suite.Add(work, static_cast<double>((items + every - 1) / every), std::move(row), unit);
    };
    using ePass = std::function<std::uint64_t()>;
    using ePasses = std::pair<ePass, ePass>;
    decltype(Library::Parse(std::string())) document;
    const auto parsed = [&document](const std::string& text) {
        if (!document)
            document = Library::Parse(text);
        return document;
    };
    add("load to be edited", 1, 0.1, "record",
        [](const std::string& text, std::size_t) { return ePasses([&text] { return Library::Load(text); }, {}); });
    add("find one in a thousand by index", kFoundEvery, 0, "path", [&](const std::string& text, std::size_t items) {
        return ePasses([known = parsed(text), items] { return Library::Find(*known, items); }, {});
    });
    add("look at every record", 1, 0, "record", [&](const std::string& text, std::size_t) {
        return ePasses([known = parsed(text)] { return Library::Sum(*known); }, {});
    });
    if constexpr (requires { Library::Set(std::string()); }) {
        const auto addWriting = [&](const char* title, std::size_t every, const char* unit,
                                    std::string (*write)(const std::string&)) {
            add(title, every, 0.2, unit, [write](const std::string& text, std::size_t) {
                return ePasses([&text, write] { return std::uint64_t{!write(text).empty()}; },
                               [&text, write] { return Library::Sum(*Library::Parse(write(text))); });
            });
        };
        addWriting("load, set one value in a hundred, write the text", kSetEvery, "edit", Library::Set);
        addWriting("load and write with a fixed layout", 1, "record", Library::Format);
    }
}

template <class Library>
void AddAllRows(eSuite& suite) {
    for (const unsigned kilobytes : suite.Options().kilobytes)
        AddRows<Library>(suite, kilobytes);
}

} // namespace bench
