// SPDX-License-Identifier: BSL-1.0
#include <memory>
#include <string>
#include <vector>

#include "documents.h"
#include "paths.h"
#include "terminal.h"
#include "verb.h"

namespace {

struct eArguments {
    std::string file;
    std::string path;
    bool all = false;
};

eEnd Remove(const eArguments& arguments) {
    RequirePath(arguments.path);
    eSDLDocument document;
    OpenDocument(&document, arguments.file);
    const std::vector<eSDLNode> nodes = NodesAt(document, arguments.path, arguments.all);
    if (nodes.empty())
        return NothingAt(arguments.path);
    for (const eSDLNode& node : nodes)
        if (node && !document.Remove(node)) // what is within another one is gone with it
            throw eTrouble(terminal::Printable(arguments.path) +
                           ": it cannot be removed, as something before it is not closed; 'sdl check' tells what");
    SaveDocument(document, arguments.file);
    terminal::EndProgress();
    return eEnd::Fine;
}

} // namespace

eVerb::eRun DeclareRemove(CLI::App* verb) {
    const auto arguments = std::make_shared<eArguments>();
    verb->add_option("FILE", arguments->file, "the document; - writes the result to standard output")->required();
    verb->add_option("PATH", arguments->path, kPathHelp)->required();
    verb->add_flag("--all", arguments->all, "all that is at the path, not only the first");
    return [arguments] { return Remove(*arguments); };
}
