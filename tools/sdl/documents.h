// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <string>

#include <qzl_io/sdl/document.h>

// Documents of files, or of standard input and output for "-". Failures throw eTrouble.

void OpenDocument(eSDLDocument* document, const std::string& name);

// Opens a document that must have no errors: the first one is shown.
void OpenFaultless(eSDLDocument* document, const std::string& name);
// Shows the first mistake of a document that has one, and throws eTrouble.
[[noreturn]] void RefuseFaulty(const eSDLDocument& document, const std::string& name);

void SaveDocument(const eSDLDocument& document, const std::string& name);
