// SPDX-License-Identifier: BSL-1.0
#include <algorithm>
#include <filesystem>
#include <regex>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "docs/page.h"

// docs/messages.md explains every message that the libraries can give.

namespace {

// The texts in quotes of a source, without those in comments and the names of included files; parts that follow each
// other are one text.
std::vector<std::string> TextsOf(const std::filesystem::path& file) {
    static const std::regex kPiece(R"re(//[^\n]*|#\s*include[^\n]*|'(\\.|[^'\\\n])+'|"((?:\\.|[^"\\\n])*)")re");
    const std::string source = TextOf(file);
    std::vector<std::string> texts;
    bool adjoins = false;
    for (std::sregex_iterator piece(source.begin(), source.end(), kPiece), end; piece != end; ++piece) {
        const std::string between = piece->prefix();
        adjoins = adjoins && between.find_first_not_of(" \n") == std::string::npos;
        if (!(*piece)[2].matched) {
            adjoins = false;
            continue;
        }
        if (adjoins)
            texts.back() += (*piece)[2];
        else
            texts.push_back((*piece)[2]);
        adjoins = true;
    }
    return texts;
}

// A message, or a phrase in one, has a blank between two words or ends with a mark. Versions of Windows are names.
bool IsForPeople(const std::string& text) {
    static const std::regex kWords(R"([A-Za-z'%)\]]:? [A-Za-z'(%\]]|[a-z]{3}[!.]$)");
    return std::regex_search(text, kWords) && text.find('/') == std::string::npos && !text.starts_with("Windows ");
}

// What is not shown to anybody by itself.
const std::set<std::string> kOthers = {
    "[](){}@$%^-+._ !",                                  // characters of a name
    R"((SOFTWARE\Microsoft\Windows NT\CurrentVersion))", // a key of the registry, twice
    R"(SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion)",
    "system.", // how attributes begin
};

// As the page writes it: NAME for %1%, and without the backslashes of a source.
std::string OnThePage(const std::string& text) {
    const std::string plain = std::regex_replace(text, std::regex(R"(\\(["\\]))"), "$1");
    const std::size_t begin = plain.find_first_not_of(" ");
    const std::string trimmed = plain.substr(begin, plain.find_last_not_of(" ") + 1 - begin);
    std::string pattern;
    for (const char character : trimmed) {
        if (std::string_view(R"(\^$.|?*+()[]{})").find(character) != std::string_view::npos)
            pattern += '\\';
        pattern += character;
    }
    return std::regex_replace(pattern, std::regex("%[1-9]%"), "[A-Z]+");
}

TEST(Messages, AreAllExplained) {
    std::string page = TextOf(ProjectFolder() / "docs" / "messages.md");
    std::ranges::replace(page, '\n', ' ');
    std::set<std::string> messages;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(ProjectFolder() / "internal" / "src")) {
        if (entry.path().extension() != ".cpp" && entry.path().extension() != ".h")
            continue;
        for (const std::string& text : TextsOf(entry.path()))
            if (IsForPeople(text) && !kOthers.contains(text) && messages.insert(text).second) {
                EXPECT_TRUE(std::regex_search(page, std::regex(OnThePage(text))))
                    << entry.path() << " has the message \"" << text << "\", which docs/messages.md lacks";
            }
    }
    EXPECT_GT(messages.size(), 80u);
}

TEST(Messages, AreFoundInASource) {
    const auto file = std::filesystem::path(testing::TempDir()) / "messages_of_a_source.h";
    std::ofstream(file, std::ios::binary) << "// \"In a comment!\"\n#include \"a file.h\"\nchar c = '\"';\n"
                                             "auto a = \"Two \" // parts\n \"parts!\";\nf(\"one\", \"two\");\n";
    EXPECT_EQ(TextsOf(file), (std::vector<std::string>{"Two ", "parts!", "one", "two"}));
    std::filesystem::remove(file);
    EXPECT_TRUE(IsForPeople("Integer expected!"));
    EXPECT_TRUE(IsForPeople("%1% - open error!"));
    EXPECT_FALSE(IsForPeople("word"));
}

} // namespace
