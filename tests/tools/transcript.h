// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

// A transcript is a text of files, commands, and what the commands print:
//
//     < scene.sdl                  a file of the lines and repetitions that follow
//     | {scene                     a line
//     * 3 {light}\n                a text, so many times
//     $ sdl check scene.sdl        a command; ' quotes, "< FILE" is its input, "> FILE" takes its output
//         text                     a line of its output
//       ! text                     a line of its standard error
//       = 0                        its exit code
//
// What is written otherwise is for readers. In files and commands \r, \t, \n, \\ and \xNN stand for one character, and
// a \ at the end of a line for no line end; in outputs likewise all but tabs.

struct eCommand {
    std::vector<std::string> words;
    std::string inputFile;  // empty: no input
    std::string outputFile; // empty: the output is in the transcript
};

// What runs commands and makes files.
class eStage {
public:
    struct eShown {
        int code = 0;
        std::string output;
        std::string errors;
    };

    virtual ~eStage() = default;

    virtual void Write(const std::string& file, const std::string& bytes) = 0;
    virtual eShown Run(const eCommand& command) = 0;
};

// Plays the transcript, and returns it as it came out: the same text if everything was as it says.
std::string Played(std::string_view transcript, eStage& stage);
