// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include <qzl_base/diagnostic.h>
#include <qzl_io/sdl/document.h>

// What is told of a document that breaks a rule.

namespace xSDL {

// A mistake at a node; of a block, at its name.
xError::eDiagnostic MistakeAt(const eSDLNode& node, std::string message);

// A name that is not among the right ones, which it names with the nearest. `what` is such as "block".
xError::eDiagnostic UnknownAt(const eSDLNode& node, std::string_view what, const std::string& name,
                              const std::vector<std::string>& right);

// What stands there, for people: "the block 'light'", "7".
std::string Described(const eSDLNode& node);

// "a, b or c", of many only the first.
std::string Listed(const std::vector<std::string>& names);

// Of a text that may be a whole document, what a sentence shows.
std::string Shortened(std::string text);

} // namespace xSDL
