// SPDX-License-Identifier: BSL-1.0
#include <algorithm>
#include <exception>
#include <iostream>
#include <string>
#include <utility>
#include <vector>

#include <qzl_base/error.h>

#include "platform/console.h"
#include "reports.h"
#include "terminal.h"
#include "verb.h"
#include "version.h"

namespace {

constexpr const char* kPurpose = "Checks, converts and shows SDL documents.";
constexpr const char* kExitCodes =
    "The exit code is 0 if all is well, 1 if a document has mistakes or differs, 2 if the "
    "command line is wrong\nor a file cannot be read or written.\n";
constexpr int kVerbWidth = 11;

using eArguments = std::vector<std::string>;

void PrintVersion() {
    std::cout << "sdl " << kVersionText << '\n';
}

void PrintHelp(std::ostream& out) {
    out << kPurpose << "\n\nsdl VERB [ARGUMENTS]\n\n";
    for (const eVerb& verb : Verbs())
        out << "  " << verb.name << std::string(kVerbWidth - std::string_view(verb.name).size(), ' ') << verb.summary
            << '\n';
    out << "\n  sdl VERB --help   the arguments of a verb, with examples\n  sdl --version\n\n"
           "A file name - stands for standard input or output.\n"
        << kExitCodes;
}

std::string Examples(const eVerb& verb) {
    std::string text = "Examples:\n  ";
    for (const char* at = verb.examples; *at; ++at)
        text.append(1, *at).append(*at == '\n' ? "  " : "");
    return text;
}

// A value may be a negative number, which would be taken for an option.
void MarkNumbers(eArguments* arguments) {
    const auto isNumber = [](const std::string& text) {
        return text.size() > 1 && text[0] == '-' && (text[1] == '.' || (text[1] >= '0' && text[1] <= '9'));
    };
    const auto end = std::find(arguments->begin(), arguments->end(), "--");
    const auto number = std::find_if(arguments->begin(), end, isNumber);
    if (number != end)
        arguments->insert(number, "--");
}

eEnd Run(const eVerb& verb, eArguments arguments) {
    CLI::App app(verb.summary, std::string("sdl ") + verb.name);
    app.footer(Examples(verb));
    const eVerb::eRun run = verb.declare(&app);
    MarkNumbers(&arguments);
    std::reverse(arguments.begin(), arguments.end()); // as CLI11 takes them
    try {
        app.parse(std::move(arguments));
    } catch (const CLI::Success& answer) {
        app.exit(answer, std::cout, std::cerr);
        return eEnd::Fine;
    } catch (const CLI::ParseError& mistake) {
        std::cerr << "sdl " << verb.name << ": " << terminal::Printable(mistake.what()) << "\nRun 'sdl " << verb.name
                  << " --help' for help.\n";
        return eEnd::Trouble;
    }
    return run();
}

eEnd Run(eArguments arguments) {
    if (arguments.empty()) {
        PrintHelp(std::cerr);
        return eEnd::Trouble;
    }
    const std::string first = arguments.front();
    if (first == "--help" || first == "-h" || first == "help")
        return PrintHelp(std::cout), eEnd::Fine;
    if (first == "--version")
        return PrintVersion(), eEnd::Fine;
    arguments.erase(arguments.begin());
    for (const eVerb& verb : Verbs())
        if (first == verb.name)
            return Run(verb, std::move(arguments));
    throw eTrouble("there is no verb '" + terminal::Printable(first) + "'; 'sdl --help' lists the verbs");
}

eEnd RunReporting(eArguments arguments) {
    const eShownWarnings warnings;
    try {
        const eEnd end = Run(std::move(arguments));
        if (!std::cout.flush())
            throw eTrouble("standard output could not be written");
        return end;
    } catch (const xError::eException& error) {
        ShowReport(error.Report());
    } catch (const std::exception& error) {
        ShowMessage(error.what());
    }
    return eEnd::Trouble;
}

} // namespace

// NOLINTNEXTLINE(bugprone-exception-escape): without memory for the command line nothing has been done yet
int main(int argc, char** argv) {
    console::Prepare();
    std::ios::sync_with_stdio(false);
    return static_cast<int>(RunReporting(console::Arguments(argc, argv)));
}
