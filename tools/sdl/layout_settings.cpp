// SPDX-License-Identifier: BSL-1.0
#include "layout_settings.h"

#include <string>
#include <system_error>

#include "documents.h"
#include "files.h"
#include "reports.h"
#include "verb.h"

namespace {

constexpr const char* kFileName = ".sdlformat";

// Empty if there is none.
std::string NearestFile(const std::filesystem::path& document) {
    std::error_code unknown;
    std::filesystem::path folder = std::filesystem::absolute(document, unknown);
    while (folder.has_relative_path()) {
        folder = folder.parent_path();
        if (std::filesystem::is_regular_file(folder / kFileName, unknown)) {
            const std::u8string name = (folder / kFileName).generic_u8string();
            return {name.begin(), name.end()};
        }
    }
    return {};
}

[[noreturn]] void RejectSetting(const eSDLNode& setting, const std::string& allowed) {
    xError::eDiagnostic mistake;
    mistake.message = "This is no setting of sdl format!";
    mistake.excerpt = setting.Excerpt();
    mistake.expected = allowed;
    ShowDiagnostic(mistake);
    throw eTrouble(ShownName(mistake.excerpt.place.source) + ": the configuration is wrong");
}

void TakeSetting(const eSDLNode& setting, eSDLLayout* layout) {
    const eSDLNode value = setting.Value();
    if (setting.Is("indent") && value.Is("tab"))
        layout->indent = eSDLLayout::kTab;
    else if (const auto width = value.As<int>();
             setting.Is("indent") && width && *width >= 0 && *width <= kWidestIndent)
        layout->indent = *width;
    else if (setting.Is("lines") && (value.Is("lf") || value.Is("crlf")))
        layout->crLf = value.Is("crlf");
    else
        RejectSetting(setting, "{indent tab}, {indent 0} to {indent 16}, {lines crlf} or {lines lf}");
}

} // namespace

void TakeSettings(const std::filesystem::path& document, eSDLLayout* layout) {
    const std::string name = NearestFile(document);
    if (name.empty())
        return;
    eSDLDocument settings;
    OpenFaultless(&settings, name);
    for (const eSDLNode& setting : settings.Root())
        TakeSetting(setting, layout);
}
