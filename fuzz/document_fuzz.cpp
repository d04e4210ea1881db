// SPDX-License-Identifier: BSL-1.0
#include <cstddef>
#include <string>
#include <string_view>

#include <qzl_io/sdl/document.h>

#include "sdl/document_edits.h"

#include "require.h"
#include "script.h"
#include "target.h"

// The bytes are edits and a text: the text comes back whatever it is, it has an error where a reader refuses it, and
// each edit gives what was meant and nothing else.

void Check(std::string_view input) {
    eScript script(input);
    eScript edits(script.Text());
    const std::string text(script.Rest());
    eSDLDocument document(text);
    RequireEqual(document.Text(), text, "the text");
    RequireEqual(JoinedParts(document), text, "the parts");
    const auto read = ReadAsReader(text);
    Require((document.ErrorCount() == 0) == read.has_value(), "an error where a reader refuses the text");
    Require(document.Errors(100).size() <= 100, "as many errors as asked for");
    Require(!read || ShownItems(document) == *read, "the items that a reader reads");
    for (int left = 24; left > 0 && !edits.IsOver(); --left) {
        const std::size_t index = edits.Byte();
        const auto edit = static_cast<eEdit>(edits.Below(6));
        const unsigned kind = edits.Byte();
        const std::string wrong = EditAndCompare(document, index, edit, ItemOf(kind, edits.Byte()));
        Require(wrong.empty(), wrong + " in " + Shown(document.Text()));
    }
}

void Work(std::string_view input) {
    eSDLDocument document(input);
    std::size_t bytes = 0;
    for (const eSDLPart& part : document.Parts())
        bytes += part.text.size();
    Require(bytes == input.size(), "the parts");
    document.Find("*/a[a=1]/0");
    document.Append(document.Root(), 1);
    document.Errors(10);
}
