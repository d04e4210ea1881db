// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include <qzl_base/diagnostic.h>

#include "document/lines.h"
#include "document/source.h"

namespace xSDL {

// What is wrong in the text, in the order of the places, at most so many.
std::vector<xError::eDiagnostic> ListMistakes(const eSource& source, const eLines& lines, const std::string& name,
                                              std::size_t most);

} // namespace xSDL
