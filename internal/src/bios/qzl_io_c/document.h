// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include <qzl_base/diagnostic.h>
#include <qzl_io/sdl/document.h>

#include "call.h"

struct qzl_document : xC::eHandle {
    // Takes the place of the content.
    void Replace(eSDLDocument&& other);
    // Throws xC::eRefusal with what the document says of a failed opening or saving.
    [[noreturn]] void Fail() const;

    // What is at a path, found once for each path and edit.
    const std::vector<eSDLNode>& NodesAt(std::string_view path);
    // After each edit.
    void Forget() { searched = false; }

    eSDLDocument document;
    qzl_limits limits = xC::kNoLimits;
    std::string text; // that was given to the caller; of a node its text
    std::string name; // and these
    std::string mark;
    std::vector<xError::eDiagnostic> mistakes;
    xC::eTelling shown; // the mistake that was asked for last

private:
    bool searched = false;
    std::string searchedPath;
    std::vector<eSDLNode> found;
};

namespace xC {

// The path; throws eRefusal for a text that is none.
std::string_view PathOf(const char* path, std::size_t size);

} // namespace xC
