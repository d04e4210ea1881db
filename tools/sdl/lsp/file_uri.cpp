// SPDX-License-Identifier: BSL-1.0
#include "lsp/file_uri.h"

#include <charconv>

namespace {

constexpr std::string_view kScheme = "file://";

bool IsPlain(unsigned char c) {
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '/' || c == '-' ||
           c == '_' || c == '.' || c == '~';
}

std::optional<std::string> Decoded(std::string_view text) {
    std::string decoded;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] != '%') {
            decoded += text[at];
            continue;
        }
        unsigned value = 0;
        const std::string_view digits = text.substr(at + 1, 2);
        const auto [end, failure] = std::from_chars(digits.data(), digits.data() + digits.size(), value, 16);
        if (failure != std::errc() || digits.size() != 2 || end != digits.data() + 2 || value == 0)
            return std::nullopt;
        decoded += static_cast<char>(value);
        at += 2;
    }
    return decoded;
}

// "/c:/folder" is a name on a drive.
bool HasDrive(std::string_view name) {
    return name.size() > 2 && name[0] == '/' && name[2] == ':';
}

} // namespace

std::optional<std::filesystem::path> PathOfUri(std::string_view uri) {
    if (!uri.starts_with(kScheme))
        return std::nullopt;
    uri.remove_prefix(kScheme.size());
    auto name = Decoded(uri);
    if (!name || name->empty())
        return std::nullopt;
    if (HasDrive(*name))
        name->erase(0, 1);
    else if (name->front() != '/')
        name->insert(0, "//"); // a server's name, of a share
    return std::filesystem::path(std::u8string(name->begin(), name->end()));
}

std::string UriOfPath(const std::filesystem::path& path) {
    const std::u8string name = path.generic_u8string();
    std::string uri(kScheme);
    if (!name.starts_with(u8'/'))
        uri += '/';
    for (const char8_t c : std::u8string_view(name).substr(name.starts_with(u8"//") ? 2 : 0)) {
        const auto byte = static_cast<unsigned char>(c);
        constexpr std::string_view kDigits = "0123456789ABCDEF";
        if (IsPlain(byte))
            uri += static_cast<char>(byte);
        else
            uri.append(1, '%').append(1, kDigits[byte >> 4]).append(1, kDigits[byte & 15]);
    }
    return uri;
}
