// SPDX-License-Identifier: BSL-1.0
#include "transcript.h"

#include <algorithm>
#include <cstddef>

#include "tools/sdl/utf8.h"

namespace {

constexpr std::string_view kOutput = "    ";
constexpr std::string_view kErrors = "  ! ";
constexpr std::string_view kCode = "  = ";
constexpr std::string_view kDigits = "0123456789abcdef";

// Whether the text begins with it, which is then taken off.
bool Take(std::string_view* text, std::string_view beginning) {
    if (!text->starts_with(beginning))
        return false;
    text->remove_prefix(beginning.size());
    return true;
}

std::string Unescaped(std::string_view text) {
    std::string plain;
    while (!text.empty()) {
        const char first = text.front();
        text.remove_prefix(1);
        if (first != '\\' || text.empty()) {
            plain += first;
            continue;
        }
        const char letter = text.front();
        text.remove_prefix(1);
        if (letter == 'x' && text.size() >= 2) {
            plain += static_cast<char>(kDigits.find(text[0]) * 16 + kDigits.find(text[1]));
            text.remove_prefix(2);
        } else {
            plain += letter == 'r' ? '\r' : letter == 't' ? '\t' : letter == 'n' ? '\n' : letter;
        }
    }
    return plain;
}

std::string Escaped(std::string_view text) {
    std::string escaped;
    while (!text.empty()) {
        const utf8::eCharacter first = utf8::FirstOf(text);
        const auto byte = static_cast<unsigned char>(text.front());
        if (byte == '\\' || byte == '\r')
            escaped.append("\\").append(1, byte == '\r' ? 'r' : '\\');
        else if (first.wellFormed && (byte >= 0x20 || byte == '\t') && byte != 0x7F)
            escaped += text.substr(0, first.size);
        else
            escaped.append("\\x").append(1, kDigits[byte >> 4]).append(1, kDigits[byte & 15]);
        text.remove_prefix(first.wellFormed ? first.size : 1);
    }
    return escaped;
}

void AppendLines(std::string* transcript, std::string_view prefix, std::string_view text) {
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        const bool ended = end != std::string_view::npos;
        transcript->append(prefix).append(Escaped(text.substr(0, end))).append(ended ? "\n" : "\\\n");
        text.remove_prefix(ended ? end + 1 : text.size());
    }
}

// A | line, or a * line.
std::string ContentOf(char kind, std::string_view line) {
    if (kind == '|')
        return line.ends_with('\\') && !line.ends_with("\\\\") ? Unescaped(line.substr(0, line.size() - 1))
                                                               : Unescaped(line) + '\n';
    const std::size_t blank = line.find(' ');
    const std::string repeated = Unescaped(line.substr(blank + 1));
    const std::size_t count = std::stoul(std::string(line.substr(0, blank)));
    std::string content;
    content.reserve(repeated.size() * count);
    for (std::size_t done = 0; done < count; ++done)
        content += repeated;
    return content;
}

std::vector<std::string> WordsOf(std::string_view line) {
    std::vector<std::string> words;
    std::string word;
    bool quoted = false;
    bool any = false;
    for (const char character : line) {
        if (character == '\'') {
            quoted = !quoted;
            any = true;
        } else if (character == ' ' && !quoted) {
            if (any)
                words.push_back(Unescaped(word));
            word.clear();
            any = false;
        } else {
            word += character;
            any = true;
        }
    }
    if (any)
        words.push_back(Unescaped(word));
    return words;
}

eCommand CommandOf(std::string_view line) {
    eCommand command;
    std::string* next = nullptr;
    for (std::string& word : WordsOf(line)) {
        if (next)
            *next = std::move(word), next = nullptr;
        else if (word == "<" || word == ">")
            next = word == "<" ? &command.inputFile : &command.outputFile;
        else
            command.words.push_back(std::move(word));
    }
    return command;
}

class ePlay {
public:
    explicit ePlay(eStage& itsStage) : stage(itsStage) {}

    void Take(std::string_view line) {
        std::string_view rest = line;
        if (::Take(&rest, kOutput) || ::Take(&rest, kErrors) || ::Take(&rest, kCode))
            return;
        played.append(line).append("\n");
        if (::Take(&rest, "| ") || ::Take(&rest, "* ") || rest == "|") {
            content += ContentOf(line.front(), rest == "|" ? "" : rest);
            return;
        }
        End();
        if (::Take(&rest, "< "))
            file = rest;
        else if (::Take(&rest, "$ "))
            Run(rest);
    }

    // Of a file's content.
    void End() {
        if (!file.empty())
            stage.Write(file, content);
        file.clear();
        content.clear();
    }

    std::string played;

private:
    void Run(std::string_view line) {
        const eStage::eShown shown = stage.Run(CommandOf(line));
        AppendLines(&played, kOutput, shown.output);
        AppendLines(&played, kErrors, shown.errors);
        played.append(kCode).append(std::to_string(shown.code)).append("\n");
    }

    eStage& stage;
    std::string file;
    std::string content;
};

} // namespace

std::string Played(std::string_view transcript, eStage& stage) {
    ePlay play(stage);
    while (!transcript.empty()) {
        const std::size_t end = std::min(transcript.find('\n'), transcript.size());
        play.Take(transcript.substr(0, end));
        transcript.remove_prefix(std::min(end + 1, transcript.size()));
    }
    play.End();
    return play.played;
}
