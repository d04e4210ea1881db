// SPDX-License-Identifier: BSL-1.0
#include "lsp/channel.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <string_view>

#include "verb.h"

namespace {

constexpr unsigned long long kLongestMessage = 1ULL << 30;
constexpr std::size_t kPiece = 1 << 16;

bool IsLengthField(std::string_view name) {
    constexpr std::string_view kLength = "content-length";
    return std::equal(name.begin(), name.end(), kLength.begin(), kLength.end(), [](char one, char other) {
        return std::tolower(static_cast<unsigned char>(one)) == static_cast<unsigned char>(other);
    });
}

// The value of the field, if the header line is the one that tells the length.
std::optional<unsigned long long> LengthIn(std::string_view line) {
    const std::size_t colon = line.find(':');
    if (colon == std::string_view::npos || !IsLengthField(line.substr(0, colon)))
        return std::nullopt;
    const std::size_t begin = std::min(line.find_first_not_of(' ', colon + 1), line.size());
    unsigned long long length = 0;
    const auto [end, failure] = std::from_chars(line.data() + begin, line.data() + line.size(), length);
    if (failure != std::errc() || end != line.data() + line.size() || length > kLongestMessage)
        throw eTrouble("a message of the editor has no length that makes sense");
    return length;
}

} // namespace

std::optional<unsigned long long> eChannel::ReadLength() {
    std::optional<unsigned long long> length;
    for (std::string line; std::getline(in, line);) {
        if (line.ends_with('\r'))
            line.pop_back();
        if (!line.empty()) {
            const auto told = LengthIn(line);
            length = told ? told : length;
        } else if (length) {
            return length;
        } else {
            throw eTrouble("a message of the editor does not tell its length");
        }
    }
    return std::nullopt;
}

std::optional<std::string> eChannel::Read() {
    const auto length = ReadLength();
    if (!length)
        return std::nullopt;
    std::string text;
    while (text.size() < *length) { // in pieces, as the length may be a lie
        const std::size_t done = text.size();
        const auto piece = static_cast<std::size_t>(std::min<unsigned long long>(kPiece, *length - done));
        text.resize(done + piece);
        if (!in.read(text.data() + done, static_cast<std::streamsize>(piece)))
            return std::nullopt;
    }
    return text;
}

void eChannel::Write(const nlohmann::json& message) {
    const std::string text = message.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
    out << "Content-Length: " << text.size() << "\r\n\r\n" << text;
    if (!out.flush())
        throw eTrouble("the answer could not be written");
}
