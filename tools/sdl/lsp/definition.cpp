// SPDX-License-Identifier: BSL-1.0
#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>

#include "lsp/features.h"
#include "lsp/file_uri.h"

using nlohmann::json;

json DefinitionAt(const eOpenText& text, std::size_t offset) {
    const eLocatedPart located = PartAt(text, offset);
    const std::string_view control = located.part.text;
    const auto folder = PathOfUri(text.Uri());
    if (located.part.kind != eSDLKind::Control || control.size() < 2 || !folder)
        return nullptr;
    const eSDLDocument content(control.substr(1, control.size() - 2));
    const eSDLNode word = *content.begin();
    std::string name;
    if (!word.Is("include") || !word.Next().Get(&name))
        return nullptr;
    const std::filesystem::path file = folder->parent_path() / std::u8string(name.begin(), name.end());
    std::error_code failure;
    if (!std::filesystem::is_regular_file(file, failure))
        return nullptr;
    constexpr ePosition kBegin;
    return {{"uri", UriOfPath(file.lexically_normal())},
            {"range", {{"start", ToJson(kBegin)}, {"end", ToJson(kBegin)}}}};
}
