// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <string>
#include <vector>

#include <qzl_io/sdl/document.h>

#include "verb.h"

// Paths as arguments.

inline constexpr const char* kPathHelp = "where in the document, as in scene/light[0]/power or light[name=\"sun\"]";

// Throws eTrouble for a path that is none.
void RequirePath(const std::string& path);

// What is at the path: all of it, or only the first.
std::vector<eSDLNode> NodesAt(const eSDLDocument& document, const std::string& path, bool all);

// Says that there is nothing, and returns eEnd::Findings.
eEnd NothingAt(const std::string& path);
