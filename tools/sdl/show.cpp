// SPDX-License-Identifier: BSL-1.0
#include <cstddef>
#include <iostream>
#include <memory>
#include <string>

#include "outline.h"
#include "terminal.h"
#include "verb.h"

namespace {

constexpr std::size_t kDeepest = 1000;

struct eShowArguments {
    std::string file;
    std::size_t depth = 8;
    std::size_t names = 8;
};

eEnd Show(const eShowArguments& arguments) {
    const eOutline outline(arguments.file, arguments.depth);
    terminal::EndProgress();
    outline.PrintCounts(std::cout);
    std::cout << "outline\n";
    outline.PrintBlocks(std::cout, arguments.names);
    return eEnd::Fine;
}

} // namespace

eVerb::eRun DeclareShow(CLI::App* verb) {
    const auto arguments = std::make_shared<eShowArguments>();
    verb->add_option("FILE", arguments->file, "the document")->required();
    verb->add_option("--depth", arguments->depth, "levels of blocks that are listed")
        ->check(AtMost(kDeepest))
        ->capture_default_str();
    verb->add_option("--names", arguments->names, "names that are listed in one block")->capture_default_str();
    return [arguments] { return Show(*arguments); };
}
