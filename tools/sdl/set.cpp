// SPDX-License-Identifier: BSL-1.0
#include <memory>
#include <optional>
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
    std::string value;
    bool all = false;
    bool asString = false;
    bool asWord = false;
};

// The value of a text that is a number or a string in quotes, as SDL writes them; nothing for any other text.
std::optional<eSDLItem> Literal(const std::string& text) {
    const eSDLDocument document(text);
    const eSDLNode value = *document.begin();
    if (value.Text() != text)
        return std::nullopt;
    if (const auto string = value.As<std::string>())
        return eSDLItem(*string);
    if (const auto integer = value.As<long long>())
        return eSDLItem(*integer);
    if (const auto number = value.As<double>())
        return eSDLItem(*number);
    return std::nullopt;
}

// A number and a text in quotes are what they are in SDL. Any other text becomes a word where a word was, if it can be
// one, and otherwise a string.
eSDLItem ItemFor(const eSDLNode& old, const eArguments& arguments) {
    if (arguments.asWord)
        return eSDLItem::Word(arguments.value);
    if (!arguments.asString) {
        if (const auto literal = Literal(arguments.value))
            return *literal;
        if (eSDLItem word = eSDLItem::Word(arguments.value); old.Kind() == eSDLKind::Word && word.IsGood())
            return word;
    }
    return eSDLItem(arguments.value);
}

[[noreturn]] void Refuse(const eArguments& arguments, const std::string& why) {
    throw eTrouble(terminal::Printable(arguments.path) + ": " + why);
}

// The value that is meant: of a block or a word its first one.
eSDLNode ValueOf(const eSDLNode& node) {
    return node.IsBlock() || (node.Kind() == eSDLKind::Word && node.Value()) ? node.Value() : node;
}

void SetNode(eSDLDocument* document, const eSDLNode& node, const eArguments& arguments) {
    const eSDLNode old = ValueOf(node);
    const eSDLItem item = ItemFor(old, arguments);
    if (!item.IsGood())
        Refuse(arguments, "'" + terminal::Printable(arguments.value) + "' is no word");
    const bool done = old ? document->Set(old, item) : static_cast<bool>(document->Append(node, item));
    if (!done)
        Refuse(arguments, "the value cannot be set, as something before it is not closed; 'sdl check' tells what");
}

eEnd SetValue(const eArguments& arguments) {
    RequirePath(arguments.path);
    eSDLDocument document;
    OpenDocument(&document, arguments.file);
    const std::vector<eSDLNode> nodes = NodesAt(document, arguments.path, arguments.all);
    if (nodes.empty())
        return NothingAt(arguments.path);
    for (const eSDLNode& node : nodes)
        SetNode(&document, node, arguments);
    SaveDocument(document, arguments.file);
    terminal::EndProgress();
    return eEnd::Fine;
}

} // namespace

eVerb::eRun DeclareSet(CLI::App* verb) {
    const auto arguments = std::make_shared<eArguments>();
    verb->add_option("FILE", arguments->file, "the document; - writes the result to standard output")->required();
    verb->add_option("PATH", arguments->path, kPathHelp)->required();
    verb->add_option("VALUE", arguments->value, "a number, a text, or an SDL string with its quotes")->required();
    verb->add_flag("--all", arguments->all, "all that is at the path, not only the first");
    const auto string =
        verb->add_flag("--string", arguments->asString, "the value is a text, even if it looks like a number");
    verb->add_flag("--word", arguments->asWord, "the value is a word")->excludes(string);
    return [arguments] { return SetValue(*arguments); };
}
