// SPDX-License-Identifier: BSL-1.0
#include "paths.h"

#include "documents.h"
#include "reports.h"
#include "terminal.h"

void DeclarePath(CLI::App* verb, const char* fileHelp, ePathArguments* arguments) {
    verb->add_option("FILE", arguments->file, fileHelp)->required();
    verb->add_option("PATH", arguments->path,
                     "where in the document, as in scene/light[0]/power or light[name=\"sun\"]")
        ->required();
    verb->add_flag("--all", arguments->all, "all that is at the path, not only the first");
}

std::vector<eSDLNode> OpenAt(eSDLDocument* document, const ePathArguments& arguments) {
    if (const std::string mistake = eSDLDocument::PathMistake(arguments.path); !mistake.empty())
        Refuse(arguments, terminal::Printable(mistake));
    OpenDocument(document, arguments.file);
    std::vector<eSDLNode> nodes;
    if (arguments.all)
        nodes = document->FindAll(arguments.path);
    else if (const eSDLNode first = document->Find(arguments.path))
        nodes.push_back(first);
    if (nodes.empty())
        ShowMessage(terminal::Printable(arguments.path) + ": there is nothing at this path");
    return nodes;
}

void Refuse(const ePathArguments& arguments, const std::string& why) {
    throw eTrouble(terminal::Printable(arguments.path) + ": " + why);
}

void RefuseEdit(const ePathArguments& arguments, const eSDLDocument& document, const std::string& edit) {
    Refuse(arguments, "it cannot be " + edit +
                          (document.ErrorCount() > 0
                               ? ", as something before it is not closed; 'sdl check' tells what"
                               : ", as the block would have another word for its name then, or no longer have one"));
}
