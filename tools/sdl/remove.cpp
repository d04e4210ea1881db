// SPDX-License-Identifier: BSL-1.0
#include <memory>
#include <vector>

#include "documents.h"
#include "paths.h"
#include "terminal.h"
#include "verb.h"

namespace {

eEnd Remove(const ePathArguments& arguments) {
    eSDLDocument document;
    const std::vector<eSDLNode> nodes = OpenAt(&document, arguments);
    if (nodes.empty())
        return eEnd::Findings;
    for (const eSDLNode& node : nodes)
        if (node && !document.Remove(node)) // what is within another one is gone with it
            RefuseEdit(arguments, document, "removed");
    SaveDocument(document, arguments.file);
    terminal::EndProgress();
    return eEnd::Fine;
}

} // namespace

eVerb::eRun DeclareRemove(CLI::App* verb) {
    const auto arguments = std::make_shared<ePathArguments>();
    DeclarePath(verb, kEditedHelp, arguments.get());
    return [arguments] { return Remove(*arguments); };
}
