// SPDX-License-Identifier: BSL-1.0
#include <memory>
#include <string>

#include <qzl_io/sdl.h>

#include "files.h"
#include "reports.h"
#include "terminal.h"
#include "verb.h"

namespace {

struct eArguments {
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

void Convert(const std::string& name, IO::eStream& output, eJsonLosses* losses) {
    const std::unique_ptr<IO::eStream> input = OpenInput(name);
    terminal::ShowProgress("converting " + ShownName(name));
    const eKeptWarning warning;
    if (!JsonStreamToSdl(*input, output, losses))
        throw eTrouble(ShownName(name) + ": " + terminal::Printable(warning.Message()));
}

eEnd FromJson(const eArguments& arguments) {
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
    const auto arguments = std::make_shared<eArguments>();
    verb->add_option("IN", arguments->input, "the JSON document")->required();
    verb->add_option("OUT", arguments->output, "the SDL file")->required();
    return [arguments] { return FromJson(*arguments); };
}
