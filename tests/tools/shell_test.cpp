// SPDX-License-Identifier: BSL-1.0
#include <fstream>
#include <iterator>
#include <regex>
#include <set>
#include <string>

#include "tool.h"

// The manual page and the completions know what the program knows.

class ToolShell : public ToolAtLength {
protected:
    static std::string FileOf(const std::string& name) {
        std::ifstream file(std::string(QZL_SDL_SHELL_FOLDER) + "/" + name, std::ios::binary);
        EXPECT_TRUE(file) << name;
        return {std::istreambuf_iterator<char>(file), {}};
    }

    // The groups that an expression finds in a text.
    static std::set<std::string> AllOf(const std::string& text, const char* expression) {
        std::set<std::string> found;
        const std::regex sought(expression);
        for (std::sregex_iterator at(text.begin(), text.end(), sought); at != std::sregex_iterator(); ++at)
            found.insert((*at)[1]);
        return found;
    }
};

TEST_F(ToolShell, EveryVerbAndOptionIsInTheManualAndTheCompletions) {
    const std::string manual = FileOf("sdl.1");
    const std::string bash = FileOf("sdl.bash");
    const std::string zsh = FileOf("_sdl");
    const std::string fish = FileOf("sdl.fish");
    const std::set<std::string> verbs = AllOf(OutputOf({"--help"}), "\n  ([a-z-]+) +[A-Z][a-z]");
    EXPECT_GT(verbs.size(), 10u);
    for (const std::string& verb : verbs) {
        EXPECT_NE(manual.find("\n.Cm " + verb + "\n"), std::string::npos) << verb;
        EXPECT_NE(bash.find(" " + verb), std::string::npos) << verb;
        EXPECT_NE(zsh.find("'" + verb + ":"), std::string::npos) << verb;
        EXPECT_NE(fish.find(" -a " + verb + " "), std::string::npos) << verb;
        for (const std::string& option : AllOf(OutputOf({verb, "--help"}), "\n  (?:-[a-z],)?--([a-z-]+)")) {
            EXPECT_NE(manual.find("Fl Fl " + option), std::string::npos) << verb << " --" << option;
            EXPECT_NE(bash.find("--" + option), std::string::npos) << verb << " --" << option;
            EXPECT_NE(zsh.find("--" + option), std::string::npos) << verb << " --" << option;
            EXPECT_NE(fish.find("-l " + option), std::string::npos) << verb << " --" << option;
        }
    }
}
