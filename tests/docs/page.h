// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <cctype>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

// The pages of the documentation, and what the tests ask of one.

inline std::filesystem::path ProjectFolder() {
    return std::filesystem::path(QZL_EXAMPLES_DIR).parent_path();
}

// The text of a file, with plain line feeds; fails the test if it cannot be read.
inline std::string TextOf(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    EXPECT_TRUE(stream) << file.string();
    std::string text{std::istreambuf_iterator<char>(stream), {}};
    std::erase(text, '\r');
    return text;
}

inline std::vector<std::string> LinesOf(const std::string& text) {
    std::istringstream stream(text);
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

// A text between two lines of three backticks; `example` is the last source that a link before it leads to.
struct eFence {
    std::string language;
    std::string text;
    std::string example;
    int line = 0;
};

struct eLink {
    std::string target;
    int line = 0;
};

struct ePage {
    std::string text;
    std::vector<eFence> fences;
    std::vector<eLink> links;
    std::set<std::string> anchors; // of the headings
};

// A heading's anchor: lower case, without punctuation, with - for blanks.
inline std::string AnchorOf(std::string_view heading) {
    std::string anchor;
    for (const char character : heading) {
        const auto byte = static_cast<unsigned char>(character);
        if (std::isalnum(byte) != 0 || byte >= 0x80 || character == '_' || character == '-')
            anchor += static_cast<char>(std::tolower(byte));
        else if (character == ' ')
            anchor += '-';
    }
    return anchor;
}

inline ePage PageOf(const std::filesystem::path& file) {
    static const std::regex kLink(R"(\[[^\]]*\]\(([^)\s]+)\))");
    static const std::regex kCode("`[^`]*`");
    ePage page{TextOf(file), {}, {}, {}};
    std::string example;
    bool inside = false;
    int number = 0;
    for (const std::string& line : LinesOf(page.text)) {
        ++number;
        if (line.starts_with("```")) {
            inside = !inside;
            if (inside)
                page.fences.push_back({line.substr(3), {}, example, number});
        } else if (inside) {
            page.fences.back().text += line + "\n";
        } else {
            if (line.starts_with("#"))
                page.anchors.insert(AnchorOf(std::string_view(line).substr(line.find(' ') + 1)));
            const std::string plain = std::regex_replace(line, kCode, "");
            for (std::sregex_iterator link(plain.begin(), plain.end(), kLink), end; link != end; ++link) {
                const std::string target = (*link)[1];
                page.links.push_back({target, number});
                if (target.ends_with(".cpp"))
                    example = target;
            }
        }
    }
    EXPECT_FALSE(inside) << file.string() << ": the last ``` is missing";
    return page;
}
