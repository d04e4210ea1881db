// SPDX-License-Identifier: BSL-1.0
#include "schemas.h"

#include <system_error>
#include <vector>

#include "documents.h"
#include "files.h"
#include "reports.h"
#include "verb.h"

namespace {

constexpr const char* kExtension = ".sdls";

std::string NameOf(const std::filesystem::path& path) {
    const std::u8string name = path.generic_u8string();
    return {name.begin(), name.end()};
}

// The names that the schema of a document may have, the first one first.
std::vector<std::filesystem::path> SchemaNames(const std::filesystem::path& file, const eSDLDocument& document) {
    std::vector<std::filesystem::path> names;
    if (file.has_stem())
        names.push_back(file.stem().concat(kExtension));
    const eSDLNode first = *document.begin();
    if (first.IsBlock() && !first.Name().empty())
        names.push_back(std::filesystem::path(first.Name()).concat(kExtension));
    return names;
}

// Empty if there is none.
std::string NearestFile(const std::filesystem::path& file, const eSDLDocument& document) {
    const auto names = SchemaNames(file, document);
    std::error_code unknown;
    std::filesystem::path folder = std::filesystem::absolute(file, unknown);
    while (folder.has_relative_path()) {
        folder = folder.parent_path();
        for (const auto& name : names)
            if (std::filesystem::is_regular_file(folder / name, unknown))
                return NameOf(folder / name);
    }
    return {};
}

} // namespace

eSDLSchema OpenSchema(const std::string& name) {
    eSDLDocument document;
    OpenDocument(&document, name);
    eSDLSchema schema(document);
    if (schema.Errors().empty())
        return schema;
    ShowDiagnostic(schema.Errors().front());
    throw eTrouble(ShownName(name) + ": " + Counted(schema.Errors().size(), "mistake") +
                   " in the schema; 'sdl check' lists them");
}

std::optional<eSDLSchema> NearestSchema(const std::filesystem::path& file, const eSDLDocument& document) {
    if (file.extension() == kExtension)
        return eSDLSchema::OfSchemas();
    const std::string name = NearestFile(file, document);
    return name.empty() ? std::nullopt : std::optional(OpenSchema(name));
}
