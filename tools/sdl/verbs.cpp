// SPDX-License-Identifier: BSL-1.0
#include "verb.h"

#include <charconv>
#include <cstddef>
#include <string>

namespace {

constexpr eVerb kVerbs[] = {
    {"check", "Lists what is wrong in documents.",
     "sdl check scene.sdl\n"
     "sdl check --signature scene *.sdl\n"
     "sdl check --schema scene.sdls *.sdl\n"
     "sdl check --sarif settings/*.sdl > sdl.sarif",
     DeclareCheck},
    {"diff", "Compares two documents by content, whatever their layout.",
     "sdl diff old.sdl new.sdl\n"
     "sdl diff --quiet old.sdl new.sdl && echo equal",
     DeclareDiff},
    {"format", "Lays documents out anew: indentation, blanks, line ends. Values and comments stay as they are.",
     "sdl format scene.sdl\n"
     "sdl format -i --lf --indent 4 *.sdl\n"
     "sdl format --check *.sdl",
     DeclareFormat},
    {"get", "Prints what is at a path.",
     "sdl get scene.sdl scene/light[0]/power\n"
     "sdl get --all scene.sdl 'scene/light[kind=\"sun\"]'",
     DeclareGet},
    {"set", "Sets the value at a path; all else stays byte for byte.",
     "sdl set scene.sdl scene/light[0]/power 2.5\n"
     "sdl set --all scene.sdl scene/light/name \"sun\"",
     DeclareSet},
    {"remove", "Removes what is at a path; all else stays byte for byte.",
     "sdl remove scene.sdl scene/light[0]\n"
     "sdl remove --all scene.sdl scene/light/shadow",
     DeclareRemove},
    {"from-json", "Converts a JSON document to SDL.",
     "sdl from-json scene.json scene.sdl\n"
     "curl -s https://example.org/data.json | sdl from-json - data.sdl",
     DeclareFromJson},
    {"to-json", "Converts an SDL document to JSON.",
     "sdl to-json scene.sdl scene.json\n"
     "sdl to-json --any-names data.sdl - | less",
     DeclareToJson},
    {"schema", "Works on schemas: drafts one from documents.", "sdl schema draft scenes/*.sdl > scene.sdls",
     DeclareSchema},
    {"show", "Shows a document's blocks as an outline, and counts its values.",
     "sdl show scene.sdl\n"
     "sdl show --depth 2 scene.sdl",
     DeclareShow},
    {"tokens", "Shows what a document is cut into: place, kind and text of each token.", "sdl tokens scene.sdl",
     DeclareTokens},
    {"lsp", "Serves an editor that speaks the language server protocol.", "sdl lsp", DeclareLsp},
    {"system", "Shows what the library knows of this machine.", "sdl system", DeclareSystem},
};

} // namespace

std::span<const eVerb> Verbs() {
    return kVerbs;
}

CLI::Validator AtMost(std::size_t most) {
    const std::string range = "0 to " + std::to_string(most);
    const auto mistake = [most, range](const std::string& text) -> std::string {
        std::size_t number = 0;
        const char* const end = text.data() + text.size();
        const auto [stop, error] = std::from_chars(text.data(), end, number);
        if (error == std::errc() && stop == end && number <= most)
            return {};
        return "'" + text + "' is no number from " + range;
    };
    return {mistake, range};
}
