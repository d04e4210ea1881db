// SPDX-License-Identifier: BSL-1.0
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "documents.h"
#include "paths.h"
#include "terminal.h"
#include "verb.h"

namespace {

struct eSetArguments : ePathArguments {
    std::string value;
    bool asString = false;
    bool asWord = false;
};

// A number as SDL has it: with a digit before its point.
std::string Completed(std::string text) {
    const std::size_t sign = text.find_first_not_of("+-");
    if (sign <= 1 && text[sign] == '.')
        text.insert(sign, 1, '0');
    return text;
}

// The item of a text that is a number, whose digits are kept, or a string in quotes; nothing for any other text.
std::optional<eSDLItem> Literal(const std::string& text) {
    const eSDLDocument document(Completed(text));
    const eSDLNode value = *document.begin();
    if (value.Text() != document.Text())
        return std::nullopt;
    if (value.Kind() == eSDLKind::Int || value.Kind() == eSDLKind::Float)
        return eSDLItem::Number(value.Text());
    if (const auto string = value.As<std::string>())
        return eSDLItem(*string);
    return std::nullopt;
}

// A number and a text in quotes are what they are in SDL. Any other text becomes a word where a word was, if it can be
// one, and otherwise a string.
eSDLItem ItemFor(const eSDLNode& old, const eSetArguments& arguments) {
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

// The value that is meant: of a block or a word its first one.
eSDLNode ValueOf(const eSDLNode& node) {
    return node.IsBlock() || (node.Kind() == eSDLKind::Word && node.Value()) ? node.Value() : node;
}

void SetNode(eSDLDocument* document, const eSDLNode& node, const eSetArguments& arguments) {
    const eSDLNode old = ValueOf(node);
    const eSDLItem item = ItemFor(old, arguments);
    if (!item.IsGood())
        Refuse(arguments, "'" + terminal::Printable(arguments.value) +
                              (arguments.asWord
                                   ? "' is no word; a word begins with a letter or _, and letters, digits and _ follow"
                                   : "' is beyond the range of numbers; --string makes it a text"));
    const bool done = old ? document->Set(old, item) : static_cast<bool>(document->Append(node, item));
    if (!done)
        RefuseEdit(arguments, *document, "set");
}

eEnd SetValue(const eSetArguments& arguments) {
    eSDLDocument document;
    const std::vector<eSDLNode> nodes = OpenAt(&document, arguments);
    if (nodes.empty())
        return eEnd::Findings;
    for (const eSDLNode& node : nodes)
        SetNode(&document, node, arguments);
    SaveDocument(document, arguments.file);
    terminal::EndProgress();
    return eEnd::Fine;
}

} // namespace

eVerb::eRun DeclareSet(CLI::App* verb) {
    const auto arguments = std::make_shared<eSetArguments>();
    DeclarePath(verb, kEditedHelp, arguments.get());
    verb->add_option("VALUE", arguments->value, "a number, a text, or an SDL string with its quotes")->required();
    const auto string =
        verb->add_flag("--string", arguments->asString, "the value is a text, even if it looks like a number");
    verb->add_flag("--word", arguments->asWord, "the value is a word")->excludes(string);
    return [arguments] { return SetValue(*arguments); };
}
