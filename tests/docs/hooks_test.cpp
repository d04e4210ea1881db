// SPDX-License-Identifier: BSL-1.0
#include <string>
#include <vector>

#include "docs/page.h"
#include "tools/tool.h"

// The hooks that other repositories take from this one.

namespace {

class Hooks : public Tool {};

// The values of a key in the file, in order.
std::vector<std::string> Values(const std::string& key) {
    std::vector<std::string> values;
    for (const std::string& line : LinesOf(TextOf(ProjectFolder() / ".pre-commit-hooks.yaml")))
        if (const std::size_t at = line.find(key + ": "); at == 2)
            values.push_back(line.substr(at + key.size() + 2));
    return values;
}

TEST_F(Hooks, PassGoodDocumentsAndRefuseOthers) {
    const struct {
        const char* name;
        const char* text;
        std::vector<int> codes; // of check and of format
    } rows[] = {
        {"good.sdl", "{scene\r\n\t{light 1}\r\n}\r\n", {0, 0}},
        {"layout.sdl", "{ scene   {light 1} }\r\n", {0, 1}},
        {"mistake.sdl", "{scene\r\n\t{light $}\r\n}\r\n", {1, 2}},
    };
    const std::vector<std::string> entries = Values("entry");
    ASSERT_EQ(entries.size(), 2u);
    for (const auto& row : rows) {
        folder.Write(row.name, row.text);
        for (std::size_t hook = 0; hook < entries.size(); ++hook) {
            std::istringstream words(entries[hook]);
            std::vector<std::string> arguments{std::istream_iterator<std::string>(words), {}};
            ASSERT_EQ(arguments.front(), "sdl");
            arguments.erase(arguments.begin());
            arguments.emplace_back(row.name);
            EXPECT_EQ(Run(arguments).code, row.codes[hook]) << entries[hook] << ' ' << row.name;
        }
    }
}

TEST_F(Hooks, AreForTheFilesOfSdlAlone) {
    const std::vector<std::string> patterns = Values("files");
    ASSERT_EQ(patterns.size(), 2u);
    for (const std::string& pattern : patterns) {
        EXPECT_TRUE(std::regex_search("folder/scene.sdl", std::regex(pattern)));
        EXPECT_TRUE(std::regex_search("scene.sdls", std::regex(pattern)));
        EXPECT_FALSE(std::regex_search("scene.sdl.txt", std::regex(pattern)));
    }
}

} // namespace
