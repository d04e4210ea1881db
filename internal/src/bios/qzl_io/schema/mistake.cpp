// SPDX-License-Identifier: BSL-1.0
#include "schema/mistake.h"

#include <algorithm>
#include <utility>

#include <qzl_base/format.h>

#include "sdl/nearest.h"

namespace xSDL {
namespace {

constexpr std::size_t kMostShown = 40; // bytes of a name or a value
constexpr std::size_t kMostListed = 8;

bool IsAscii(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

// Marks the name in place of the whole block, if both are on one line and what is between them has as many bytes in the
// document as in the excerpt.
void MarkName(std::string_view name, xError::eExcerpt* excerpt) {
    const std::size_t begin = name.empty() ? std::string::npos : excerpt->text.find(name, excerpt->markBegin);
    if (begin == std::string::npos ||
        !IsAscii(std::string_view(excerpt->text).substr(excerpt->markBegin, begin - excerpt->markBegin)))
        return;
    const auto passed = static_cast<int>(begin - excerpt->markBegin);
    excerpt->place.offset += static_cast<unsigned>(passed);
    excerpt->place.column += passed;
    excerpt->place.byteColumn += passed;
    excerpt->markBegin = begin;
    excerpt->markEnd = begin + name.size();
}

} // namespace

std::string Shortened(std::string text) {
    if (text.size() <= kMostShown)
        return text;
    std::size_t end = kMostShown;
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80)
        --end;
    return text.substr(0, end) + "...";
}

std::string Listed(const std::vector<std::string>& names) {
    std::string list;
    const std::size_t shown = std::min(names.size(), kMostListed);
    for (std::size_t index = 0; index < shown; ++index) {
        const bool last = index + 1 == names.size();
        list += index == 0 ? "" : last ? " or " : ", ";
        list += Shortened(names[index]);
    }
    return shown < names.size() ? list + " ..." : list;
}

std::string Described(const eSDLNode& node) {
    switch (node.Kind()) {
    case eSDLKind::Block:
        return node.Name().empty() ? "a block without a name"
                                   : "the block '" + Shortened(std::string(node.Name())) + "'";
    case eSDLKind::Word:
        return "the word '" + Shortened(std::string(node.Name())) + "'";
    case eSDLKind::String:
        return "the string " + Shortened(node.Text());
    case eSDLKind::Int:
    case eSDLKind::Float:
        return "the number " + Shortened(node.Text());
    case eSDLKind::Calculation:
        return "the calculation " + Shortened(node.Text());
    default:
        return Shortened(node.Text());
    }
}

xError::eDiagnostic MistakeAt(const eSDLNode& node, std::string message) {
    xError::eDiagnostic mistake;
    mistake.message = std::move(message);
    mistake.excerpt = node.Excerpt();
    if (node.IsBlock())
        MarkName(node.Name(), &mistake.excerpt);
    mistake.found = Described(node);
    return mistake;
}

xError::eDiagnostic UnknownAt(const eSDLNode& node, std::string_view what, const std::string& name,
                              const std::vector<std::string>& right) {
    xError::eDiagnostic mistake = MistakeAt(node, (format("Unknown %1% '%2%'!") % what % Shortened(name)).str());
    mistake.expected = Listed(right);
    eNearest nearest(name);
    for (const std::string& each : right)
        nearest.Try(each);
    mistake.suggestion = nearest.Word();
    return mistake;
}

} // namespace xSDL
