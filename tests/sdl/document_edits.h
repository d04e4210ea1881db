// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <string>
#include <tuple>
#include <vector>

#include <qzl_io/sdl/document.h>

#include "sdl/document_model.h"

// Edits of a document beside a plain model: the list of all parts but blanks.

using eModelPart = std::tuple<eSDLKind, std::string, unsigned long long>;
using eModelParts = std::vector<eModelPart>;

inline eModelParts PartsOf(const eSDLDocument& document) {
    eModelParts parts;
    for (const eSDLPart& part : document.Parts())
        if (part.kind != eSDLKind::Blank)
            parts.emplace_back(part.kind, part.text, part.depth);
    return parts;
}

inline eModelParts PartsOf(const eSDLItem& item, unsigned long long depth) {
    eModelParts parts = PartsOf(eSDLDocument(item.Text()));
    for (auto& [kind, text, its] : parts)
        its += depth;
    return parts;
}

// Below 256, each number is one of them.
inline eSDLItem ItemOf(unsigned kind, unsigned which) {
    const char* const sources[] = {"1 2",     "a \"b\" {c}", "; note", "; note\n5", "{x\n\t1\n}",
                                   "(\"c\")", "{##h x}",     "-",      "+ 1"};
    const float floats[] = {1.5F, -0.0F, 3, 1e20F, 1e-7F};
    const double doubles[] = {0.1, 1e300, -0.0, 5000000000.0, 2};
    const char* const strings[] = {"", "s", "a \"quote\"", "two\r\nlines", "back\\", "; } {"};
    switch (kind % 8) {
    case 0:
        return static_cast<int>(which * 0x1234567);
    case 1:
        return floats[which % std::size(floats)];
    case 2:
        return doubles[which % std::size(doubles)];
    case 3:
        return strings[which % std::size(strings)];
    case 4:
        return eSDLItem::Word(which % 2 ? "e5" : "word");
    case 5:
        return eSDLItem::Block(which % 3 ? "block" : "", which / 3 % 3 ? "" : which % 2 ? "m" : "#h");
    case 6:
        return eSDLItem(static_cast<long long>(which) << 31);
    default:
        return eSDLItem::Source(sources[which % std::size(sources)]);
    }
}

enum class eEdit { Set, Rename, Before, After, Append, Remove };

// The parts before the edit, as indices: the part itself and what is after it and all within it.
struct eRange {
    std::size_t begin = 0;
    std::size_t end = 0;
};

inline eRange RangeOf(const eModelParts& parts, std::size_t index) {
    eRange range{index, index + 1};
    const auto& [kind, text, depth] = parts[index];
    if (kind == eSDLKind::Block)
        while (range.end < parts.size() &&
               !(std::get<0>(parts[range.end]) == eSDLKind::BlockEnd && std::get<2>(parts[range.end]) == depth))
            ++range.end;
    if (kind == eSDLKind::Block)
        range.end = std::min(parts.size(), range.end + 1);
    return range;
}

inline eModelParts Replaced(const eModelParts& parts, std::size_t begin, std::size_t end, const eModelParts& by) {
    eModelParts result(parts.begin(), parts.begin() + static_cast<std::ptrdiff_t>(begin));
    result.insert(result.end(), by.begin(), by.end());
    result.insert(result.end(), parts.begin() + static_cast<std::ptrdiff_t>(end), parts.end());
    return result;
}

// The lists of parts of which the edit may give one.
inline std::vector<eModelParts> Expected(const eModelParts& before, eEdit edit, std::size_t index, const eSDLItem& item,
                                         bool hasName) {
    const eRange range = RangeOf(before, index);
    const auto depth = std::get<2>(before[index]);
    const eModelParts added = PartsOf(item, edit == eEdit::Append ? depth + 1 : depth);
    const bool comment = range.end < before.size() && std::get<0>(before[range.end]) == eSDLKind::Comment;
    const std::size_t after = comment ? range.end + 1 : range.end;
    switch (edit) {
    case eEdit::Set:
        return {Replaced(before, index, index + 1, added)};
    case eEdit::Rename: {
        std::size_t at = index + 1;
        while (hasName && std::get<0>(before[at]) != eSDLKind::Word)
            ++at;
        const eModelParts name = {{eSDLKind::Word, "renamed", depth + 1}};
        // A hidden block before the name has words of its own.
        std::vector<eModelParts> possible;
        if (!hasName)
            return {Replaced(before, at, at, name)};
        for (; at < range.end; ++at)
            if (std::get<0>(before[at]) == eSDLKind::Word && std::get<2>(before[at]) == depth + 1)
                possible.push_back(Replaced(before, at, at + 1, name));
        return possible;
    }
    case eEdit::Before:
        return {Replaced(before, index, index, added)};
    case eEdit::After:
        return {Replaced(before, range.end, range.end, added), Replaced(before, after, after, added)};
    case eEdit::Append:
        return {Replaced(before, range.end - 1, range.end - 1, added)};
    case eEdit::Remove:
        return {Replaced(before, range.begin, range.end, {}), Replaced(before, range.begin, after, {})};
    }
    return {};
}

inline bool Apply(eSDLDocument& document, eEdit edit, const eSDLNode& node, const eSDLItem& item) {
    switch (edit) {
    case eEdit::Set:
        return document.Set(node, item);
    case eEdit::Rename:
        return document.Rename(node, "renamed");
    case eEdit::Before:
        return static_cast<bool>(document.InsertBefore(node, item));
    case eEdit::After:
        return static_cast<bool>(document.InsertAfter(node, item));
    case eEdit::Append:
        return static_cast<bool>(document.Append(node, item));
    case eEdit::Remove:
        return document.Remove(node);
    }
    return false;
}

// The bytes of the first text, apart from blanks, that are not the same before or after a place in the second.
inline std::size_t BytesTouched(const std::string& before, const std::string& after) {
    const auto head = static_cast<std::size_t>(
        std::mismatch(before.begin(), before.end(), after.begin(), after.end()).first - before.begin());
    const auto tail = static_cast<std::size_t>(
        std::mismatch(before.rbegin(), before.rend(), after.rbegin(), after.rend()).first - before.rbegin());
    std::size_t touched = 0;
    for (std::size_t at = head; at + tail < before.size(); ++at)
        touched += std::string(" \t\r\n=").find(before[at]) == std::string::npos;
    return touched;
}

// Edits the part with that index, blanks not counted. The result is a sentence about what is not as promised, or empty.
inline std::string EditAndCompare(eSDLDocument& document, std::size_t index, eEdit edit, const eSDLItem& item) {
    std::vector<eSDLPart> all;
    for (const eSDLPart& part : document.Parts())
        if (part.kind != eSDLKind::Blank)
            all.push_back(part);
    if (all.empty())
        return {};
    index %= all.size();
    const eSDLNode node = all[index].node;
    const bool blockEnd = all[index].kind == eSDLKind::BlockEnd;
    const eModelParts before = PartsOf(document);
    const std::string text = document.Text();
    const std::size_t size = node.Text().size();
    const std::size_t name = node.Name().size();
    const bool good = ReadAsReader(text).has_value();
    const bool done = Apply(document, edit, node, item);
    const std::string edited = document.Text();
    const eModelParts parts = PartsOf(document);
    if (JoinedParts(document) != edited)
        return "the parts are not the text";
    if (PartsOf(eSDLDocument(edited)) != parts)
        return "the text has other parts when it is read again";
    if (!done)
        return edited == text ? "" : "an edit that is refused changes the text";
    if (const auto read = ReadAsReader(edited); good && (!read || *read != ShownItems(document)))
        return "a reader reads something else";
    if (blockEnd)
        return {}; // its node is the block, which the model has under another index
    const std::vector<eModelParts> expected = Expected(before, edit, index, item, name != 0);
    if (std::find(expected.begin(), expected.end(), parts) == expected.end())
        return "the parts are not what was meant";
    // A comment at the end of the line goes with what is removed.
    const std::size_t most = edit == eEdit::Set ? size : edit == eEdit::Rename ? name : 0;
    if (edit != eEdit::Remove && BytesTouched(text, edited) > most)
        return "bytes beside the edit have changed";
    return {};
}
