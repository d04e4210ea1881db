// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <string>
#include <vector>

#include <qzl_io/sdl/document.h>

namespace xSDL {

// The text of a schema that accepts the documents.
std::string DraftOf(const std::vector<const eSDLDocument*>& documents);

} // namespace xSDL
