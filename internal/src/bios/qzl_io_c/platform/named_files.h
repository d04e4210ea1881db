// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <memory>
#include <string>

#include <qzl_io/sdl/document.h>
#include <qzl_io/streams.h>

// Files by names in UTF-8, whatever form of name can name every file of the system.

namespace xC {

// As eSDLDocument::Open and Save.
bool OpenDocument(eSDLDocument* document, const std::string& name, const eSDLLimits& limits);
bool SaveDocument(const eSDLDocument& document, const std::string& name);

// As IO::GetStream, for reading.
std::unique_ptr<IO::eStream> OpenStream(const std::string& name);

} // namespace xC
