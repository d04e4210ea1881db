// SPDX-License-Identifier: BSL-1.0
#include <filesystem>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "documents.h"
#include "files.h"
#include "layout_settings.h"
#include "platform/console.h"
#include "reports.h"
#include "terminal.h"
#include "verb.h"

namespace {

struct eFormatArguments {
    std::vector<std::string> files;
    bool inPlace = false;
    bool check = false;
    std::optional<int> indent;
    bool tabs = false;
    bool lf = false;
    bool crLf = false;
};

std::filesystem::path PathOf(const std::string& name) {
    return {std::u8string(name.begin(), name.end())};
}

eSDLLayout LayoutFor(const std::string& file, const eFormatArguments& arguments) {
    eSDLLayout layout;
    TakeSettings(PathOf(file), &layout);
    if (arguments.indent)
        layout.indent = *arguments.indent;
    if (arguments.tabs)
        layout.indent = eSDLLayout::kTab;
    if (arguments.lf || arguments.crLf)
        layout.crLf = arguments.crLf;
    return layout;
}

// Compares without a copy of the document.
bool IsText(const eSDLDocument& document, std::string_view text) {
    for (const eSDLPart& part : document.Parts()) {
        if (!text.starts_with(part.text))
            return false;
        text.remove_prefix(part.text.size());
    }
    return text.empty();
}

void Print(const std::string& text) {
    if (!console::IsTerminal(console::eStream::Output)) {
        std::cout << text;
        return;
    }
    std::string_view rest = text;
    while (!rest.empty()) {
        const std::size_t end = std::min(rest.find('\n'), rest.size());
        const std::string_view line = rest.substr(0, end);
        std::cout << terminal::Printable(line.substr(0, line.find_last_not_of('\r') + 1)) << '\n';
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
}

// Returns whether the file had that layout before.
bool FormatFile(const std::string& file, const eFormatArguments& arguments) {
    const eSDLLayout layout = LayoutFor(file, arguments);
    eSDLDocument document;
    OpenFaultless(&document, file);
    const std::string text = layout.Format(document);
    const bool same = IsText(document, text);
    terminal::EndProgress();
    if (arguments.check) {
        if (!same)
            std::cout << ShownName(file) << '\n';
    } else if (!arguments.inPlace || file == kStandard) {
        Print(text);
    } else if (!same) {
        eOutput output(file);
        output.Write(text);
        output.Commit();
    }
    return same;
}

eEnd Format(const eFormatArguments& arguments) {
    eEnd end = eEnd::Fine;
    for (const std::string& file : arguments.files) {
        try {
            if (!FormatFile(file, arguments) && arguments.check && end == eEnd::Fine)
                end = eEnd::Findings;
        } catch (const eTrouble& trouble) {
            ShowMessage(trouble.what());
            end = eEnd::Trouble;
        }
    }
    return end;
}

} // namespace

eVerb::eRun DeclareFormat(CLI::App* verb) {
    const auto arguments = std::make_shared<eFormatArguments>();
    verb->add_option("FILE", arguments->files, "the documents")->required();
    const auto inPlace = verb->add_flag("-i,--in-place", arguments->inPlace, "replace each file whose layout differs");
    verb->add_flag("--check", arguments->check, "change nothing, and list the files whose layout differs")
        ->excludes(inPlace);
    const auto indent = verb->add_option("--indent", arguments->indent, "blanks for each level instead of a tab")
                            ->check(AtMost(kWidestIndent));
    verb->add_flag("--tabs", arguments->tabs, "a tab for each level, whatever .sdlformat says")->excludes(indent);
    const auto lf = verb->add_flag("--lf", arguments->lf, "lines end with LF instead of CR LF");
    verb->add_flag("--crlf", arguments->crLf, "lines end with CR LF, whatever .sdlformat says")->excludes(lf);
    return [arguments] { return Format(*arguments); };
}
