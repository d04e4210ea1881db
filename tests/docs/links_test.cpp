// SPDX-License-Identifier: BSL-1.0
#include <filesystem>
#include <regex>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "docs/page.h"

// Links lead to something, and the code that a page shows is that of the program that it names.

namespace {

std::vector<std::filesystem::path> PageFiles() {
    std::vector<std::filesystem::path> files;
    for (const char* const folder : {"", "docs", "editors/vscode"})
        for (const auto& entry : std::filesystem::directory_iterator(ProjectFolder() / folder))
            if (entry.path().extension() == ".md")
                files.push_back(entry.path());
    return files;
}

TEST(DocumentationPages, LinksLeadToFilesAndHeadings) {
    int links = 0;
    for (const auto& file : PageFiles())
        for (const eLink& link : PageOf(file).links) {
            if (link.target.starts_with("https://"))
                continue;
            const std::size_t hash = link.target.find('#');
            const std::string name = link.target.substr(0, hash);
            const auto target = name.empty() ? file : file.parent_path() / name;
            ASSERT_TRUE(std::filesystem::exists(target)) << file << ":" << link.line << ": " << link.target;
            if (hash != std::string::npos) {
                EXPECT_TRUE(PageOf(target).anchors.contains(link.target.substr(hash + 1)))
                    << file << ":" << link.line << ": " << link.target;
            }
            ++links;
        }
    EXPECT_GT(links, 50);
}

TEST(DocumentationPages, AreReachedFromTheList) {
    const ePage list = PageOf(ProjectFolder() / "docs" / "index.md");
    for (const auto& entry : std::filesystem::directory_iterator(ProjectFolder() / "docs")) {
        const std::string name = entry.path().filename().string();
        if (entry.path().extension() != ".md" || name == "index.md")
            continue;
        bool listed = false;
        for (const eLink& link : list.links)
            listed = listed || link.target == name;
        EXPECT_TRUE(listed) << name << " is missing in docs/index.md";
    }
}

// Code without comments and blanks, which pages and sources have in different places.
std::string Code(const std::string& text) {
    static const std::regex kNoCode(R"(\s+//[^\n]*|^//[^\n]*|\s)");
    return std::regex_replace(text, kNoCode, "");
}

// The pieces of a text between the lines that consist of three dots.
std::vector<std::string> Pieces(const std::string& text) {
    std::vector<std::string> pieces(1);
    for (const std::string& line : LinesOf(text)) {
        if (line == "...")
            pieces.emplace_back();
        else
            pieces.back() += line + "\n";
    }
    return pieces;
}

TEST(DocumentationPages, ShowCodeThatIsCompiledAndRun) {
    const std::string guides = Code(TextOf(ProjectFolder() / "tests" / "docs" / "guides_test.cpp"));
    int shown = 0;
    for (const auto& file : PageFiles())
        for (const eFence& fence : PageOf(file).fences) {
            if (fence.language != "cpp" || file.filename() == "DEVELOPERS.md")
                continue;
            const std::string program =
                fence.example.empty() ? std::string() : Code(TextOf(file.parent_path() / fence.example));
            for (const std::string& piece : Pieces(fence.text)) {
                const std::string code = Code(piece);
                EXPECT_TRUE(program.find(code) != std::string::npos || guides.find(code) != std::string::npos)
                    << file << ":" << fence.line << ": this is neither in '" << fence.example
                    << "', to which the last link leads, nor in tests/docs/guides_test.cpp:\n"
                    << piece;
            }
            ++shown;
        }
    EXPECT_GT(shown, 30);
}

} // namespace
