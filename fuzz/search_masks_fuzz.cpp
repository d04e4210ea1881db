// SPDX-License-Identifier: BSL-1.0
#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

#include "platform/pure/search_mask.h"

#include "services/mask_model.h"

#include "require.h"
#include "script.h"
#include "target.h"

// The bytes are a name and a search pattern, which are compared as the system compares them.

namespace {

std::wstring Folded(std::wstring text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](wchar_t c) { return c >= L'A' && c <= L'Z' ? static_cast<wchar_t>(c + 32) : c; });
    return text;
}

constexpr std::size_t kLongest = 64; // of a name and a pattern: the model takes time for the product

// Most masks and names are made of the few characters that mean something, so that they match now and then.
std::wstring MaskText(std::string_view bytes, bool few) {
    constexpr std::wstring_view kFew = L"ab.*?. A";
    if (!few)
        return WideText(bytes);
    std::wstring text;
    for (const char byte : bytes)
        text += kFew[static_cast<unsigned char>(byte) % kFew.size()];
    return text;
}

// The operators of the system's expressions are not characters of masks or names.
bool HasOperators(const std::wstring& text) {
    return text.find_first_of(L"<>\"") != text.npos;
}

} // namespace

void Check(std::string_view input) {
    eScript script(input);
    const bool few = script.Below(4) != 0;
    const std::wstring name = MaskText(script.Text().substr(0, kLongest), few);
    const std::wstring pattern = MaskText(script.Rest().substr(0, kLongest), few);
    const IO::eSearchPattern<wchar_t> parts(pattern);
    RequireEqual(std::wstring(parts.folder) + std::wstring(parts.mask), pattern, "folder and mask together");
    Require(parts.mask.find(L'/') == parts.mask.npos, "a mask with a slash");
    Require(parts.folder.empty() || parts.folder.ends_with(L'/'), "a folder without a slash");

    const IO::eSearchMask mask(parts.mask);
    const bool matches = mask.Matches(name);
    if (!HasOperators(pattern) && !HasOperators(name) && !name.empty())
        Require(matches == MatchesInTheSystem(Folded(std::wstring(parts.mask)), Folded(name)),
                "the match of " + Shown(parts.mask) + " and " + Shown(name));
    Require(!mask.MatchesAll() || matches, "a mask that matches all");
}

// Names have at most 255 characters in file systems. A comparison takes time for each of them and each of the mask's.
void Work(std::string_view input) {
    constexpr std::size_t kLongestName = 255, kUsualMask = 16;
    for (; input.size() > kLongestName + kUsualMask; input.remove_prefix(kLongestName + kUsualMask)) {
        const std::wstring mask = WideText(input.substr(0, kUsualMask));
        IO::eSearchMask(mask).Matches(WideText(input.substr(kUsualMask, kLongestName)));
    }
}
