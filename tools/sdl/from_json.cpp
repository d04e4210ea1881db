// SPDX-License-Identifier: BSL-1.0
#include <algorithm>
#include <cstddef>
#include <memory>
#include <optional>
#include <regex>
#include <string>

#include <qzl_base/diagnostic.h>
#include <qzl_io/sdl.h>

#include "files.h"
#include "reports.h"
#include "terminal.h"
#include "verb.h"

namespace {

struct eFromJsonArguments {
    std::string input;
    std::string output;
};

// Tells what the document loses. What to-json gives back although SDL has no words for it is not worth a message.
void ShowLosses(const std::string& input, const eJsonLosses& losses) {
    const auto tell = [&](unsigned long long count, const char* what, const std::string& becomes) {
        if (count > 0)
            ShowMessage(ShownName(input) + ": " + Counted(count, what) + becomes);
    };
    tell(losses.names, "name", " not read back as one word, the first at " + terminal::Printable(losses.firstName));
    tell(losses.integers, "integer", " beyond 32 bits became another number");
    tell(losses.floats, "number", " rounded to 32 bits");
    tell(losses.booleans, "boolean", " became 1 or 0");
    tell(losses.nulls, "null", " in arrays left out");
    tell(losses.emptyObjects, "empty object", " written as empty arrays are");
    tell(losses.texts, "string", " cut at a NUL character");
}

// What is wrong in a JSON document, as the library tells it: "* Line 2, Column 18 Syntax error: Malformed token" with
// cpprestsdk, which counts the columns of the first line from 2, and "Line 2, Column 17: Malformed token" with
// simdjson.
std::optional<xError::eDiagnostic> MistakeIn(const std::string& name, const std::string& message) {
    static const std::regex pattern("(\\* )?Line ([0-9]{1,9}), Column ([0-9]{1,9}):? ([^\n]*)[^]*");
    std::smatch parts;
    if (!std::regex_match(message, parts, pattern))
        return std::nullopt;
    xError::eDiagnostic mistake;
    xError::ePlace& place = mistake.excerpt.place;
    place.line = std::stoi(parts[2]);
    place.column = std::stoi(parts[3]);
    if (parts[1].matched && place.line == 1)
        place.column = std::max(place.column - 1, 1);
    mistake.message = parts[4];
    place.source = name;
    return mistake;
}

// The line of the mistake, if it is short and can be read once more.
void AddLine(const std::string& name, xError::eExcerpt* excerpt) {
    constexpr std::size_t kMost = 200;
    const std::unique_ptr<IO::eStream> input = name == kStandard ? nullptr : OpenInput(name);
    std::string line;
    for (int passed = 0; input && passed < excerpt->place.line; ++passed)
        line = input->GetLine('\n');
    if (line.size() > kMost)
        return;
    excerpt->text = terminal::Printable(line);
    const auto before = static_cast<std::size_t>(std::max(excerpt->place.column - 1, 0));
    excerpt->markBegin = excerpt->markEnd = terminal::Printable(line.substr(0, before)).size();
}

void Convert(const std::string& name, IO::eStream& output, eJsonLosses* losses) {
    const std::unique_ptr<IO::eStream> input = OpenInput(name);
    terminal::ShowStep("converting " + ShownName(name), name);
    const eKeptWarning warning;
    if (JsonStreamToSdl(*input, output, losses))
        return;
    if (auto mistake = MistakeIn(name, warning.Message())) {
        AddLine(name, &mistake->excerpt);
        ShowDiagnostic(*mistake);
        throw eTrouble(ShownName(name) + ": this is no JSON document");
    }
    throw eTrouble(ShownName(name) + ": " + terminal::Printable(warning.Message()));
}

eEnd FromJson(const eFromJsonArguments& arguments) {
    eOutput output(arguments.output);
    eJsonLosses losses;
    Convert(arguments.input, output.Stream(), &losses);
    output.Commit();
    terminal::EndProgress();
    ShowLosses(arguments.input, losses);
    return eEnd::Fine;
}

} // namespace

eVerb::eRun DeclareFromJson(CLI::App* verb) {
    const auto arguments = std::make_shared<eFromJsonArguments>();
    verb->add_option("IN", arguments->input, "the JSON document")->required();
    verb->add_option("OUT", arguments->output, "the SDL file")->required();
    return [arguments] { return FromJson(*arguments); };
}
