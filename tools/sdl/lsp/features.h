// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <cstddef>

#include <nlohmann/json.hpp>

#include "lsp/open_text.h"

// What the language server answers, in the forms of the protocol. Null: nothing is known.

// What is wrong in the text, and what breaks the rules of its schema.
nlohmann::json DiagnosticsOf(const eOpenText& text);

// Its blocks, each within its parent.
nlohmann::json OutlineOf(const eOpenText& text);

// Blocks and comments of several lines.
nlohmann::json FoldsOf(const eOpenText& text);

// The kind and value of what is at the offset, and what the schema says of it.
nlohmann::json HoverAt(const eOpenText& text, std::size_t offset);

// The changes that lay the text out as `sdl format` does; the options are those of the request. Null for a text with
// mistakes.
nlohmann::json FormattingOf(const eOpenText& text, const nlohmann::json& options);

// The file that the include at the offset names, if there is one.
nlohmann::json DefinitionAt(const eOpenText& text, std::size_t offset);

// The names that may stand at the offset by the schema. Without one, those that blocks of the same name as the one
// around have within them elsewhere in the document: of blocks after a {, otherwise words.
nlohmann::json CompletionsAt(const eOpenText& text, std::size_t offset);
