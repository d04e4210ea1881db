// SPDX-License-Identifier: BSL-1.0
#include <filesystem>
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

std::string Trimmed(const std::string& line) {
    const std::size_t begin = line.find_first_not_of(" \t");
    return begin == std::string::npos ? "" : line.substr(begin, line.find_last_not_of(" \t") + 1 - begin);
}

// The lines of a text without their indentation; empty ones are left out.
std::string Code(const std::string& text) {
    std::string code = "\n";
    for (const std::string& line : LinesOf(text))
        if (const std::string trimmed = Trimmed(line); !trimmed.empty())
            code += trimmed + "\n";
    return code;
}

TEST(DocumentationPages, ShowCodeOfTheProgramsThatTheyName) {
    int shown = 0;
    for (const char* const name : {"cookbook.md", "clashing-names.md"}) {
        const auto file = ProjectFolder() / "docs" / name;
        for (const eFence& fence : PageOf(file).fences) {
            if (fence.language != "cpp")
                continue;
            const std::string program = Code(TextOf(file.parent_path() / fence.example));
            EXPECT_NE(program.find(Code(fence.text)), std::string::npos)
                << name << ":" << fence.line << ": this is not in " << fence.example << ":\n"
                << fence.text;
            ++shown;
        }
    }
    EXPECT_GT(shown, 5);
}

} // namespace
