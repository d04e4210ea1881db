// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "../support/checksum.h"
#include "../support/documents.h"
#include "../support/suite.h"

namespace bench {

// Documents to write one after the other: the name of the work, and the size of all of them.
struct eScene {
    std::string work;
    double values;
    size_t bytes; // of their SDL text
    size_t documents;
};

// Small documents are many, for a processor learns to predict the branches of one that is written again and again.
constexpr unsigned kSmallKilobytes = 10;
constexpr size_t kSmallDocuments = 100;

// The first `count` items of their kind, ready to be written.
template <class eItem, eItem (*make)(std::uint64_t)>
std::span<const eItem> Made(size_t count) {
    static std::vector<eItem> items;
    while (items.size() < count)
        items.push_back(make(items.size()));
    return {items.data(), count};
}

template <class eItem, eItem (*make)(std::uint64_t), class eAdd>
void AddScene(const eSuite& suite, eDocument document, unsigned kilobytes, eAdd add) {
    const size_t documents = kilobytes == kSmallKilobytes ? kSmallDocuments : 1;
    const std::string number = documents > 1 ? std::to_string(documents) + " of " : "";
    const std::string work = std::string("write to memory: ") + Name(document) + ", " + number + SizeName(kilobytes);
    if (!suite.Wants(work))
        return;
    const size_t count = Items(document, kilobytes);
    Made<eItem, make>(documents * count);
    const double values = static_cast<double>(documents) * Values(document, kilobytes);
    const size_t bytes = documents * Text(document, kilobytes, eFormat::Sdl).size();
    add(eScene{work, values, bytes, documents},
        [=](size_t each) { return Made<eItem, make>(documents * count).subspan(each * count, count); });
}

// Calls add(scene, items) for the documents of each size that are wanted; items(n) are the content of the nth.
template <class eItem, eItem (*make)(std::uint64_t), class eAdd>
void ForEachSize(const eSuite& suite, eDocument document, eAdd add) {
    if (!suite.Options().small)
        AddScene<eItem, make>(suite, document, kSmallKilobytes, add);
    for (const unsigned kilobytes : suite.Options().kilobytes)
        AddScene<eItem, make>(suite, document, kilobytes, add);
}

// The same for the documents of each shape.
template <class eAdd>
void ForEachScene(const eSuite& suite, eAdd add) {
    ForEachSize<eRecord, Record>(suite, eDocument::Records, add);
    ForEachSize<eTextBlock, TextBlock>(suite, eDocument::Strings, add);
    ForEachSize<eNumberRow, NumberRow>(suite, eDocument::Numbers, add);
    ForEachSize<eNodeChain, NodeChain>(suite, eDocument::Nested, add);
}

// The sum of `size` over all documents.
template <class eItems, class eSize>
size_t SizeOfAll(const eScene& scene, eItems items, eSize size) {
    size_t all = 0;
    for (size_t each = 0; each < scene.documents; ++each)
        all += size(items(each));
    return all;
}

// One checksum of those of all documents.
template <class eItems, class eCheck>
std::uint64_t CheckOfAll(const eScene& scene, eItems items, eCheck check) {
    eChecksum sum;
    for (size_t each = 0; each < scene.documents; ++each)
        sum.Integer(static_cast<std::int64_t>(check(items(each))));
    return sum.Value();
}

} // namespace bench
