// SPDX-License-Identifier: BSL-1.0
#include <qzl_base/diagnostic.h>

#include <algorithm>
#include <string_view>
#include <utility>

#include "character_width.h"
#include "qzl_base/shared/unicode.h"

namespace xError {

namespace {

constexpr std::size_t kTab = 4;
constexpr std::size_t kNamedIncludes = 8;

constexpr std::string_view kBold = "\x1B[1m";
constexpr std::string_view kRed = "\x1B[1;31m";
constexpr std::string_view kMagenta = "\x1B[1;35m";
constexpr std::string_view kCyan = "\x1B[1;36m";
constexpr std::string_view kGreen = "\x1B[1;32m";
constexpr std::string_view kPlain = "\x1B[0m";

// Control characters, line separators, and what changes the direction of the characters that follow.
bool IsShownByNumber(char32_t code) {
    return code < 0x20 || (code >= 0x7f && code < 0xa0) || code == 0x61c || code == 0x200e || code == 0x200f ||
           (code >= 0x2028 && code <= 0x202e) || (code >= 0x2066 && code <= 0x2069) || code == 0xfeff;
}

std::string NumberOf(char32_t code) {
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    std::string digits;
    for (; code != 0 || digits.size() < 4; code >>= 4)
        digits.insert(digits.begin(), kDigits[code & 0xf]);
    return "<U+" + digits + ">";
}

// A text as a terminal shows it, and the columns that it takes there.
class eShown {
public:
    void Add(std::string_view text) {
        while (!text.empty()) {
            const unicode::eCharacter character = unicode::FirstOf(text);
            Add(character, text.substr(0, character.units));
            text.remove_prefix(character.units);
        }
    }

    const std::string& Text() const { return shown; }
    std::size_t Columns() const { return columns; }

private:
    void Add(const unicode::eCharacter& character, std::string_view units) {
        if (character.code == '\t')
            Put(std::string(kTab - columns % kTab, ' '), kTab - columns % kTab);
        else if (!character.wellFormed)
            Put("\xEF\xBF\xBD", 1);
        else if (IsShownByNumber(character.code))
            PutNumber(NumberOf(character.code));
        else
            Put(units, static_cast<std::size_t>(unicode::WidthOf(character.code)));
    }

    void PutNumber(const std::string& number) { Put(number, number.size()); }

    void Put(std::string_view text, std::size_t width) {
        shown += text;
        columns += width;
    }

    std::string shown;
    std::size_t columns = 0;
};

std::string Shown(std::string_view text) {
    eShown shown;
    shown.Add(text);
    return shown.Text();
}

std::string TextOf(const ePlace& place) {
    const std::string name = place.source.empty() ? "<text>" : Shown(place.source);
    return name + ':' + std::to_string(place.line) + ':' + std::to_string(place.column);
}

class eRenderer {
public:
    explicit eRenderer(eColors colors) : colored(colors == eColors::With) {}

    void Add(const eDiagnostic& diagnostic) {
        const bool isError = diagnostic.severity == eDiagnostic::eSeverity::Error;
        AddHead(diagnostic.excerpt, isError ? "error" : "warning", isError ? kRed : kMagenta, diagnostic.message);
        AddFound(diagnostic);
        for (const eDiagnostic::eNote& note : diagnostic.notes)
            AddHead(note.excerpt, "note", kCyan, note.message);
        AddIncludes(diagnostic.includedFrom);
    }

    std::string Take() { return std::move(text); }

private:
    void AddHead(const eExcerpt& excerpt, std::string_view kind, std::string_view color, const std::string& message) {
        if (!IsNowhere(excerpt))
            Put(kBold, TextOf(excerpt.place) + ": ");
        Put(color, std::string(kind) + ": ");
        Put(kBold, Shown(message));
        text += '\n';
        if (!excerpt.text.empty())
            AddLine(excerpt);
    }

    static bool IsNowhere(const eExcerpt& excerpt) { return excerpt.text.empty() && excerpt.place == ePlace(); }

    void AddLine(const eExcerpt& excerpt) {
        const std::string_view line = excerpt.text;
        const std::size_t begin = std::min(excerpt.markBegin, line.size());
        const std::size_t end = std::clamp(excerpt.markEnd, begin, line.size());
        eShown shown;
        if (excerpt.beginIsCut)
            shown.Add("...");
        shown.Add(line.substr(0, begin));
        const std::size_t indent = shown.Columns();
        shown.Add(line.substr(begin, end - begin));
        const std::size_t marked = std::max<std::size_t>(shown.Columns() - indent, 1);
        shown.Add(line.substr(end));
        if (excerpt.endIsCut)
            shown.Add("...");
        const std::string number = std::to_string(excerpt.place.line);
        text += "  " + number + " | " + shown.Text() + '\n';
        text += "  " + std::string(number.size(), ' ') + " | " + std::string(indent, ' ');
        Put(kGreen, '^' + std::string(marked - 1, '~'));
        text += '\n';
    }

    void AddFound(const eDiagnostic& diagnostic) {
        if (!diagnostic.expected.empty())
            text += "  expected " + Shown(diagnostic.expected) + (diagnostic.found.empty() ? "\n" : ", ");
        if (!diagnostic.found.empty())
            text += (diagnostic.expected.empty() ? "  found " : "found ") + Shown(diagnostic.found) + '\n';
        if (!diagnostic.suggestion.empty())
            text += "  did you mean '" + Shown(diagnostic.suggestion) + "'?\n";
    }

    void AddIncludes(const std::vector<ePlace>& places) {
        const std::size_t named = std::min(places.size(), kNamedIncludes);
        for (std::size_t i = 0; i < named; ++i)
            text += "  included from " + TextOf(places[i]) + '\n';
        if (places.size() > named)
            text += "  ... and " + std::to_string(places.size() - named) + " more\n";
    }

    void Put(std::string_view color, std::string_view colorless) {
        if (colored)
            text += color;
        text += colorless;
        if (colored)
            text += kPlain;
    }

    bool colored;
    std::string text;
};

} // namespace

std::string Render(const eDiagnostic& diagnostic, eColors colors) {
    eRenderer renderer(colors);
    renderer.Add(diagnostic);
    return renderer.Take();
}

} // namespace xError
