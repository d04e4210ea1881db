// SPDX-License-Identifier: BSL-1.0
#include <map>
#include <regex>
#include <string>
#include <vector>

#include "docs/page.h"
#include "tools/tool.h"

// The pages that show files and what the program sdl prints for them. A text that begins with the comment "; NAME" is
// the file of that name. After "$ " stands a command, and under it what it prints; a line "..." stands for any lines.

namespace {

class Pages : public ToolAtLength, public testing::WithParamInterface<const char*> {};

std::string FileNameOf(const std::string& text) {
    static const std::regex kName(R"(^; ([a-z_]+\.sdls?)\n)");
    std::smatch name;
    return std::regex_search(text, name, kName) ? name[1].str() : std::string();
}

// The words of a command, which may be in single quotes.
std::vector<std::string> WordsOf(const std::string& command) {
    static const std::regex kWord(R"('([^']*)'|(\S+))");
    std::vector<std::string> words;
    for (std::sregex_iterator word(command.begin(), command.end(), kWord), end; word != end; ++word)
        words.push_back((*word)[1].matched ? (*word)[1] : (*word)[2]);
    return words;
}

struct eCommand {
    std::string text;
    std::string printed;
};

std::vector<eCommand> CommandsOf(const eFence& fence) {
    std::vector<eCommand> commands;
    for (const std::string& line : LinesOf(fence.text)) {
        if (line.starts_with("$ "))
            commands.push_back({line.substr(2), {}});
        else if (!commands.empty())
            commands.back().printed += line + "\n";
    }
    return commands;
}

// Whether the text is what the page shows, in which a line "..." stands for any number of lines.
bool Shows(const std::string& shown, const std::string& text) {
    std::vector<std::string> parts(1);
    for (const std::string& line : LinesOf(shown)) {
        if (line == "...")
            parts.emplace_back();
        else
            parts.back() += line + "\n";
    }
    std::size_t at = 0;
    for (const std::string& part : parts) {
        const std::size_t found = text.find(part, at);
        if (found == std::string::npos || (&part == &parts.front() && found != 0))
            return false;
        at = found + part.size();
    }
    return parts.back().empty() ? parts.size() > 1 || text.empty() : text.ends_with(parts.back());
}

TEST_P(Pages, PrintWhatTheProgramPrints) {
    const ePage page = PageOf(ProjectFolder() / "docs" / GetParam());
    std::map<std::string, bool> used;
    int commands = 0;
    for (const eFence& fence : page.fences) {
        SCOPED_TRACE(std::string(GetParam()) + ":" + std::to_string(fence.line));
        if (const std::string name = FileNameOf(fence.text); !name.empty()) {
            folder.Write(name, fence.text);
            used[name] = name.ends_with(".sdls");
        }
        if (fence.language != "console")
            continue;
        for (const eCommand& command : CommandsOf(fence)) {
            const std::vector<std::string> words = WordsOf(command.text);
            ASSERT_EQ(words.at(0), "sdl");
            for (const std::string& word : words)
                if (used.contains(word))
                    used[word] = true;
            const eEnded ended = Run({words.begin() + 1, words.end()});
            std::string printed = ended.output + ended.errors;
            std::erase(printed, '\r');
            EXPECT_TRUE(Shows(command.printed, printed)) << command.text << " prints:\n" << printed;
            EXPECT_TRUE(ended.code == 0 || ended.code == 1) << command.text;
            ++commands;
        }
    }
    EXPECT_GT(commands, 0);
    for (const auto& [name, shown] : used)
        EXPECT_TRUE(shown) << name << " is shown to no command";
}

INSTANTIATE_TEST_SUITE_P(Docs, Pages, testing::Values("sdl-guide.md", "sdl-tool.md", "schemas.md"));

} // namespace
