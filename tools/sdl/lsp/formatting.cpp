// SPDX-License-Identifier: BSL-1.0
#include <algorithm>
#include <string>

#include "layout_settings.h"
#include "lsp/features.h"
#include "lsp/file_uri.h"

namespace {

using nlohmann::json;

// The editor's wishes, unless the file .sdlformat has others. Lines end as they do in the text.
eSDLLayout LayoutOf(const eOpenText& text, const json& options) {
    const std::size_t lineFeed = text.Text().find('\n');
    eSDLLayout layout;
    layout.crLf = lineFeed != std::string::npos && lineFeed > 0 && text.Text()[lineFeed - 1] == '\r';
    if (options.value("insertSpaces", false))
        layout.indent = std::clamp(options.value("tabSize", 4), 0, kWidestIndent);
    if (const auto file = PathOfUri(text.Uri()))
        TakeSettings(*file, &layout);
    return layout;
}

} // namespace

json FormattingOf(const eOpenText& text, const json& options) {
    if (text.Document().ErrorCount() > 0)
        return nullptr;
    const std::string formatted = LayoutOf(text, options).Format(text.Document());
    if (formatted == text.Text())
        return json::array();
    return json::array({{{"range", RangeOf(text, 0, text.Text().size())}, {"newText", formatted}}});
}
