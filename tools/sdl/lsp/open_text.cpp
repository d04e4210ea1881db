// SPDX-License-Identifier: BSL-1.0
#include "lsp/open_text.h"

#include <algorithm>
#include <utility>

#include "lsp/file_uri.h"
#include "schemas.h"
#include "verb.h"

void eOpenText::Forget() {
    lines.reset();
    document.reset();
    schema.reset();
    schemaSought = false;
}

void eOpenText::Replace(std::string newText) {
    Forget();
    text = std::move(newText);
}

void eOpenText::Replace(ePosition begin, ePosition end, std::string_view newText) {
    const std::size_t from = Lines().OffsetOf(begin);
    const std::size_t to = std::max(from, Lines().OffsetOf(end));
    Forget();
    text.replace(from, to - from, newText);
}

const eTextLines& eOpenText::Lines() const {
    if (!lines)
        lines.emplace(text);
    return *lines;
}

const eSDLDocument& eOpenText::Document() const {
    if (!document)
        document.emplace(text, uri);
    return *document;
}

const eSDLSchema* eOpenText::Schema() const {
    const auto file = PathOfUri(uri);
    if (!schemaSought && file) {
        try {
            schema = NearestSchema(*file, Document());
        } catch (const eTrouble&) { // the editor's user sees it where the schema is open
        }
    }
    schemaSought = true;
    return schema ? &*schema : nullptr;
}

std::size_t OpenBefore(const eSDLPart& part) {
    return static_cast<std::size_t>(part.depth) + (part.kind == eSDLKind::BlockEnd ? 1 : 0);
}

void WalkParts(const eOpenText& text, const std::function<bool(const eLocatedPart&)>& take) {
    std::size_t begin = 0;
    for (const eSDLPart& part : text.Document().Parts()) {
        const std::size_t end = begin + part.text.size();
        if (!take({part, begin, end}))
            return;
        begin = end;
    }
}

eLocatedPart PartAt(const eOpenText& text, std::size_t offset) {
    eLocatedPart found;
    WalkParts(text, [&](const eLocatedPart& located) {
        if (offset < located.end)
            found = located;
        return offset >= located.end;
    });
    return found;
}

ePosition PositionIn(const nlohmann::json& position) {
    return {position.at("line").get<std::size_t>(), position.at("character").get<std::size_t>()};
}

nlohmann::json ToJson(ePosition position) {
    return {{"line", position.line}, {"character", position.unit}};
}

nlohmann::json RangeOf(const eOpenText& text, std::size_t begin, std::size_t end) {
    return {{"start", ToJson(text.Lines().PositionOf(begin))}, {"end", ToJson(text.Lines().PositionOf(end))}};
}
