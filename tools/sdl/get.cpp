// SPDX-License-Identifier: BSL-1.0
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "paths.h"
#include "platform/console.h"
#include "terminal.h"
#include "verb.h"

namespace {

struct eGetArguments : ePathArguments {
    bool source = false;
};

bool IsValue(const eSDLNode& node) {
    return !node.IsBlock() && node.Kind() != eSDLKind::Word;
}

void PrintLine(const std::string& text) {
    static const bool toPeople = console::IsTerminal(console::eStream::Output);
    std::cout << (toPeople ? terminal::Printable(text) : text) << '\n';
}

void PrintValue(const eSDLNode& value) {
    PrintLine(value.As<std::string>().value_or(value.Text()));
}

bool HasBlocks(const eSDLNode& block) {
    for (const eSDLNode& child : block)
        if (child.IsBlock())
            return true;
    return false;
}

// A value as it is, a word and a block as their values: a block that holds blocks, as it stands in the document.
void PrintNode(const eSDLNode& node, bool asSource) {
    if (asSource || (node.IsBlock() && HasBlocks(node)))
        return PrintLine(node.Text());
    if (IsValue(node))
        return PrintValue(node);
    if (!node.IsBlock())
        return PrintValue(node.Value() ? node.Value() : node);
    for (const eSDLNode& value : node)
        PrintValue(value);
}

eEnd GetNodes(const eGetArguments& arguments) {
    eSDLDocument document;
    const std::vector<eSDLNode> nodes = OpenAt(&document, arguments);
    terminal::EndProgress();
    for (const eSDLNode& node : nodes)
        PrintNode(node, arguments.source);
    return nodes.empty() ? eEnd::Findings : eEnd::Fine;
}

} // namespace

eVerb::eRun DeclareGet(CLI::App* verb) {
    const auto arguments = std::make_shared<eGetArguments>();
    DeclarePath(verb, "the document", arguments.get());
    verb->add_flag("--source", arguments->source, "as it stands in the document");
    return [arguments] { return GetNodes(*arguments); };
}
