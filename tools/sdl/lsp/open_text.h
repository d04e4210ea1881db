// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

#include <qzl_io/sdl/document.h>
#include <qzl_io/sdl/schema.h>

#include "lsp/text_lines.h"

// A document that is open in the editor, as it is there: perhaps not saved, perhaps broken.
class eOpenText {
public:
    eOpenText(std::string itsUri, std::string itsText) : uri(std::move(itsUri)), text(std::move(itsText)) {}

    const std::string& Uri() const { return uri; }
    const std::string& Text() const { return text; }
    void Replace(std::string newText);
    // Replaces the text from one position to another.
    void Replace(ePosition begin, ePosition end, std::string_view newText);

    const eTextLines& Lines() const;
    const eSDLDocument& Document() const;
    // The document's schema as it is on the disk; null if there is none, or if it has mistakes.
    const eSDLSchema* Schema() const;

private:
    void Forget();

    std::string uri;
    std::string text;
    mutable std::optional<eTextLines> lines; // made when asked for
    mutable std::optional<eSDLDocument> document;
    mutable std::optional<eSDLSchema> schema;
    mutable bool schemaSought = false;
};

// A part and the place of its bytes.
struct eLocatedPart {
    eSDLPart part;
    std::size_t begin = 0;
    std::size_t end = 0;
};

// The number of blocks that are open before a part.
std::size_t OpenBefore(const eSDLPart& part);

// Calls the function for each part in order, until it returns false.
void WalkParts(const eOpenText& text, const std::function<bool(const eLocatedPart&)>& take);

// The part with the byte at the offset; of kind None beyond the last one.
eLocatedPart PartAt(const eOpenText& text, std::size_t offset);

// Forms of the protocol.
ePosition PositionIn(const nlohmann::json& position);
nlohmann::json ToJson(ePosition position);
nlohmann::json RangeOf(const eOpenText& text, std::size_t begin, std::size_t end);
