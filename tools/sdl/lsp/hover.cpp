// SPDX-License-Identifier: BSL-1.0
#include <string>
#include <string_view>

#include <qzl_base/convert.h>

#include "lsp/features.h"

namespace {

using nlohmann::json;

std::string InCode(std::string_view text) {
    return "`" + std::string(text) + "`";
}

std::string DescribedBlock(const eSDLNode& block) {
    std::size_t values = 0;
    std::size_t blocks = 0;
    for (const eSDLNode& child : block)
        ++(child.IsBlock() ? blocks : values);
    std::string text = block.IsHidden() ? "block that readers skip" : "block";
    if (!block.Name().empty())
        text += " " + InCode(block.Name());
    return text + ": " + std::to_string(values) + (values == 1 ? " value, " : " values, ") + std::to_string(blocks) +
           (blocks == 1 ? " block" : " blocks");
}

std::string DescribedNumber(const eSDLNode& node, const char* kind) {
    float value = 0;
    int whole = 0;
    const std::string text = node.Text();
    const std::string read = node.Get(&whole) ? ToString(whole, false) : node.Get(&value) ? ToString(value) : text;
    return std::string(kind) + " " + InCode(text) + (read == text ? "" : ", read as " + read);
}

std::string DescribedString(const eSDLNode& node) {
    std::string value;
    node.Get(&value);
    return "string of " + std::to_string(value.size()) + (value.size() == 1 ? " byte" : " bytes");
}

// The first word of a block is its name.
bool IsNameOfBlock(const eSDLNode& node) {
    const eSDLNode block = node.Parent();
    return node.Kind() == eSDLKind::Word && block.IsBlock() && block.Name().data() == node.Name().data();
}

std::string Described(const eSDLNode& node) {
    switch (node.Kind()) {
    case eSDLKind::Block:
        return DescribedBlock(node);
    case eSDLKind::Int:
        return DescribedNumber(node, "integer");
    case eSDLKind::Float:
        return DescribedNumber(node, "float");
    case eSDLKind::Calculation:
        return DescribedNumber(node, "calculation");
    case eSDLKind::String:
        return DescribedString(node);
    case eSDLKind::Word:
        return IsNameOfBlock(node) ? DescribedBlock(node.Parent()) : "word " + InCode(node.Name());
    case eSDLKind::Control:
        return "control block, which readers skip";
    default:
        return {};
    }
}

// What the schema says, as paragraphs.
std::string Explained(const eSDLSchema::eSays& says) {
    std::string text;
    if (!says.doc.empty())
        text += "\n\n" + says.doc;
    std::string facts = says.unit.empty() ? "" : "unit " + InCode(says.unit);
    const auto add = [&facts](const std::string& fact) { facts += (facts.empty() ? "" : ", ") + fact; };
    if (!says.defaultValue.empty())
        add("default " + InCode(says.defaultValue));
    for (const std::string& choice : says.choices)
        add((&choice == &says.choices.front() ? "one of " : "") + InCode(choice));
    return facts.empty() ? text : text + "\n\n" + facts;
}

} // namespace

json HoverAt(const eOpenText& text, std::size_t offset) {
    const eLocatedPart located = PartAt(text, offset);
    const eSDLNode node = located.part.node;
    std::string description = Described(node);
    if (description.empty())
        return nullptr;
    if (const eSDLSchema* const schema = text.Schema())
        description += Explained(schema->Says(IsNameOfBlock(node) ? node.Parent() : node));
    return {{"contents", {{"kind", "markdown"}, {"value", description}}},
            {"range", RangeOf(text, located.begin, located.end)}};
}
