// SPDX-License-Identifier: BSL-1.0
#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tool.h"
#include "transcript.h"

// The transcripts in tests/tools/transcripts: what each verb prints on good, bad, huge and hostile files, with its exit
// codes. QZL_NEW_TRANSCRIPTS=1 writes them anew, to be read before they are kept.

namespace {

std::string BytesOf(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    EXPECT_TRUE(stream) << file;
    return {std::istreambuf_iterator<char>(stream), {}};
}

void ReplaceAll(std::string* text, std::string_view what, std::string_view by) {
    if (what.empty())
        return;
    for (std::size_t at = 0; (at = text->find(what, at)) != std::string::npos; at += by.size())
        text->replace(at, what.size(), by);
}

bool WantsNew() {
    const char* const wanted = std::getenv("QZL_NEW_TRANSCRIPTS");
    return wanted && std::string_view(wanted) == "1";
}

// Commands in a folder of their own: sdl, cat and mkdir, and on Linux the system's programs.
class eFolderStage : public eStage {
public:
    void Write(const std::string& file, const std::string& bytes) override { folder.Write(file, bytes); }

    eShown Run(const eCommand& command) override {
        const std::string& program = command.words.front();
        const std::vector<std::string> arguments(command.words.begin() + 1, command.words.end());
        if (program == "cat")
            return {0, folder.Read(arguments.at(0)), {}};
        if (program == "mkdir")
            return {std::filesystem::create_directory(folder.Path() / arguments.at(0)) ? 0 : 1, {}, {}};
        eEnded ended = program == "unprivileged"
                           ? RunUnprivileged({arguments.begin() + 1, arguments.end()})
                           : RunProgram(PathOf(program), arguments,
                                        command.inputFile.empty() ? "" : folder.Read(command.inputFile), folder.Path());
        if (!command.outputFile.empty())
            folder.Write(command.outputFile, std::exchange(ended.output, {}));
        if (program == "sdl" && !arguments.empty() && arguments.front() == "system") {
            ended.output = WithoutFacts(ended.output);
            ended.errors = WithoutDiskWarning(ended.errors);
        }
        return {ended.code, Placed(std::move(ended.output)), Placed(std::move(ended.errors))};
    }

private:
    static std::string PathOf(const std::string& program) {
        return program == "sdl" ? std::string(QZL_SDL_PROGRAM) : "/usr/bin/" + program;
    }

    // Runs sdl subject to permissions, which do not bind the superuser otherwise.
    eEnded RunUnprivileged(std::vector<std::string> arguments) {
        if (!IsUnbound())
            return RunProgram(QZL_SDL_PROGRAM, arguments, {}, folder.Path());
        arguments.insert(arguments.begin(), {"--bounding-set=-all", "--inh-caps=-all", QZL_SDL_PROGRAM});
        return RunProgram("/usr/bin/setpriv", arguments, {}, folder.Path());
    }

    bool IsUnbound() {
        const std::filesystem::path file = folder.Write(".unreadable", "");
        std::filesystem::permissions(file, std::filesystem::perms::none);
        const bool opened = std::ifstream(file).is_open();
        std::filesystem::remove(file);
        return opened;
    }

    // The text with names in place of what differs from machine to machine.
    std::string Placed(std::string text) const {
        ReplaceAll(&text, folder.Name(), "{folder}/");
        text = std::regex_replace(text, std::regex("(\"name\":\"sdl\",\"version\":\")[^\"]*"), "$1{version}");
        for (const char* const reason :
             {"No such file or directory", "File not found", "Path not found", "Invalid name"})
            ReplaceAll(&text, reason, "{there is none}");
        return text;
    }

    // What `sdl system` prints, without the facts and times of this machine.
    static std::string WithoutFacts(const std::string& text) {
        constexpr std::size_t kFact = 18;
        std::istringstream lines(text);
        std::string shown;
        for (std::string line; std::getline(lines, line); shown += line + '\n') {
            if (line.starts_with("  distribution ")) { // Linux has one
                std::getline(lines, line);
            } else if (line.ends_with(" bytes are free")) {
                line = "  {space}";
                continue;
            }
            if (line.size() < kFact || !line.starts_with("  "))
                continue;
            if (line.ends_with(".sdl"))
                line.replace(2, kFact - 2, "{time}");
            else if (line[2] >= 'a' && line[2] <= 'z')
                line.replace(kFact, std::string::npos, "{fact}");
        }
        return shown;
    }

    eTempFolder folder;
};

#ifdef QZL_SANITIZED
constexpr bool kSanitized = true;
#else
constexpr bool kSanitized = false;
#endif

class ToolTranscript : public testing::TestWithParam<std::string> {
protected:
    static std::filesystem::path File() { return Folder() / (GetParam() + ".txt"); }

    // Why it is not played; empty if it is.
    static std::string Obstacle() {
        constexpr bool kLinux = std::filesystem::path::preferred_separator == '/';
        if (GetParam().ends_with("_linux") && !kLinux)
            return "what it is about exists on Linux";
        if (kSanitized && GetParam().starts_with("huge"))
            return "with a sanitizer such documents take minutes";
        if (GetParam().ends_with("_long") && !LongTests())
            return "it takes long; it is played with QZL_LONG_TESTS=1";
        if (IsUnderWine() && !LongTests() && GetParam() != "bad_files")
            return "many runs of a program are slow under Wine; it is played there with QZL_LONG_TESTS=1";
        return {};
    }

public:
    static std::filesystem::path Folder() { return QZL_TRANSCRIPTS_DIR; }

    static std::vector<std::string> All() {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(Folder()))
            names.push_back(entry.path().stem().string());
        std::sort(names.begin(), names.end());
        return names;
    }
};

} // namespace

TEST_P(ToolTranscript, ComesOutAsWritten) {
    if (const std::string obstacle = Obstacle(); !obstacle.empty())
        GTEST_SKIP() << obstacle;
    const std::string expected = BytesOf(File());
    eFolderStage stage;
    const std::string played = Played(expected, stage);
    if (WantsNew())
        std::ofstream(File(), std::ios::binary) << played;
    EXPECT_EQ(played, expected);
}

INSTANTIATE_TEST_SUITE_P(All, ToolTranscript, testing::ValuesIn(ToolTranscript::All()),
                         [](const auto& transcript) { return transcript.param; });
