// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include <qzl_io/sdl/schema.h>

// The schema in a file. A mistake in it is shown; then, and if it cannot be read, throws eTrouble.
eSDLSchema OpenSchema(const std::string& name);

// The schema of a document, if there is one in its folder or in one above: in the nearest folder that has either
// NAME.sdls, for a document NAME.sdl, or else SIGNATURE.sdls, for one that begins with {SIGNATURE. A document NAME.sdls
// is itself a schema, and has the schema of schemas. Throws as OpenSchema does.
std::optional<eSDLSchema> NearestSchema(const std::filesystem::path& file, const eSDLDocument& document);
