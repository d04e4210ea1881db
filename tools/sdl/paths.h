// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include <qzl_io/sdl/document.h>

#include "verb.h"

// Verbs that work on what is at a path in a document.

struct ePathArguments {
    std::string file;
    std::string path;
    bool all = false;
};

// Declares FILE, PATH and --all.
void DeclarePath(CLI::App* verb, const char* fileHelp, ePathArguments* arguments);
inline constexpr const char* kEditedHelp = "the document; - writes the result to standard output";

// Opens the document and returns what is at the path: all of it, or only the first. Says that there is nothing, if so.
// Throws eTrouble for a path that is none, and for a document that cannot be read.
std::vector<eSDLNode> OpenAt(eSDLDocument* document, const ePathArguments& arguments);

// Throw eTrouble with the path.
[[noreturn]] void Refuse(const ePathArguments& arguments, const std::string& why);
// Says why what is there cannot be "set" or "removed".
[[noreturn]] void RefuseEdit(const ePathArguments& arguments, const eSDLDocument& document, const std::string& edit);
