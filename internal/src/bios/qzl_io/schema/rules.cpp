// SPDX-License-Identifier: BSL-1.0
#include "schema/rules.h"

#include <algorithm>

#include "qzl_base/shared/ascii.h"
#include "schema/mistake.h"

namespace xSDL {
namespace {

// The text of a value without the quotes of a string.
std::string PlainText(const eSDLNode& value) {
    return value.As<std::string>().value_or(value.Text());
}

// The block of that name directly in a rule.
eSDLNode Part(const eSDLNode& rule, std::string_view name) {
    for (const eSDLNode& part : rule)
        if (part.IsBlock() && part.Is(name))
            return part;
    return {};
}

std::string TextIn(const eSDLNode& rule, std::string_view name) {
    const eSDLNode value = Part(rule, name).Value();
    return value ? PlainText(value) : std::string();
}

// A number in place of the most stands for it, a word for no limit, and nothing for the least.
eCount CountOf(const eSDLNode& node, eCount otherwise, std::vector<xError::eDiagnostic>* list) {
    const eSDLNode count = Part(node, "count");
    if (!count)
        return otherwise;
    const auto bound = [](const eSDLNode& value, unsigned long long none) {
        const long long number = value.As<long long>().value_or(-1);
        return number < 0 ? none : static_cast<unsigned long long>(number);
    };
    const unsigned long long least = bound(count.Value(0), 0);
    const eSDLNode second = count.Value(1);
    const eCount read{least, second ? bound(second, kMany) : least};
    if (read.most < read.least)
        list->push_back(MistakeAt(second, "No count can be between these!"));
    return read;
}

eValueRule ValueRuleOf(const eSDLNode& node, std::vector<xError::eDiagnostic>* list) {
    eValueRule rule;
    if (const auto* kind = FindName(kValueKinds, node.Value().Name()))
        rule.kind = kind->value;
    rule.count = CountOf(node, {1, 1}, list);
    rule.doc = TextIn(node, "doc");
    rule.unit = TextIn(node, "unit");
    if (const eSDLNode value = Part(node, "default").Value())
        rule.defaultValue = value.Text();
    if (const eSDLNode range = Part(node, "range"); range && range.Value()) {
        rule.least = range.Value(0).As<double>();
        rule.most = range.Value(1).As<double>();
        rule.range = " from " + range.Value(0).Text() + (rule.most ? " to " + range.Value(1).Text() : " on");
        if (rule.least && rule.most && *rule.most < *rule.least)
            list->push_back(MistakeAt(range.Value(1), "No number can be between these!"));
    }
    const eSDLNode choices = Part(node, "one_of");
    for (std::size_t index = 0; const eSDLNode choice = choices.Value(index); ++index)
        rule.choices.push_back(PlainText(choice));
    return rule;
}

std::vector<eValueRule> ValueRulesIn(const eSDLNode& node, std::vector<xError::eDiagnostic>* list) {
    std::vector<eValueRule> rules;
    for (const eSDLNode& value : node)
        if (value.IsBlock() && value.Is("value"))
            rules.push_back(ValueRuleOf(value, list));
    return rules;
}

eWordRule WordRuleOf(const eSDLNode& node, std::vector<xError::eDiagnostic>* list) {
    return {std::string(node.Value().Name()), CountOf(node, {0, 1}, list), ValueRulesIn(node, list),
            TextIn(node, "doc")};
}

bool Says(const eSDLNode& node, std::string_view name, std::string_view word) {
    return IsSameWord(Part(node, name).Value().Name(), word);
}

} // namespace

bool eSchemaRules::eFolded::operator()(const std::string& left, const std::string& right) const {
    return std::lexicographical_compare(left.begin(), left.end(), right.begin(), right.end(),
                                        [](char a, char b) { return ascii::ToLower(a) < ascii::ToLower(b); });
}

void eSchemaRules::Read(const eSDLDocument& document, std::vector<xError::eDiagnostic>* list) {
    contents.assign(1, {});
    const eSDLNode schema = document.Find("schema");
    includes = !Says(schema, "includes", "no");
    waiting.emplace_back(kDocument, schema);
    for (const eSDLNode& node : schema)
        if (node.IsBlock() && node.Is("type"))
            ReadType(contents.size(), node);
    while (!waiting.empty()) {
        const auto [index, node] = waiting.back();
        waiting.pop_back();
        ReadContent(index, node, list);
    }
    CheckTypes(list);
    uses.clear();
}

void eSchemaRules::ReadType(std::size_t index, const eSDLNode& node) {
    contents.emplace_back();
    types.emplace(std::string(node.Value().Name()), index);
    waiting.emplace_back(index, node);
}

void eSchemaRules::ReadContent(std::size_t index, const eSDLNode& node, std::vector<xError::eDiagnostic>* list) {
    eContentRule rule;
    rule.name = node.Value().Name();
    rule.count = CountOf(node, {1, 1}, list);
    rule.doc = TextIn(node, "doc");
    rule.inOrder = Says(node, "order", "fixed");
    rule.marks = !Says(node, "marks", "no");
    rule.others = static_cast<bool>(Part(node, "others"));
    rule.values = ValueRulesIn(node, list);
    if (const eSDLNode type = Part(node, "is").Value()) {
        rule.type = type.Name();
        uses.emplace_back(index, type);
    }
    for (const eSDLNode& child : node) {
        if (!child.IsBlock())
            continue;
        if (child.Is("word"))
            rule.words.push_back(WordRuleOf(child, list));
        if (child.Is("block")) {
            rule.blocks.push_back(contents.size());
            waiting.emplace_back(contents.size(), child);
            contents.emplace_back().name = child.Value().Name();
        }
    }
    contents[index] = std::move(rule);
}

void eSchemaRules::CheckTypes(std::vector<xError::eDiagnostic>* list) const {
    for (const auto& [index, word] : uses) {
        const auto type = types.find(contents[index].type);
        std::vector<std::string> names;
        for (const auto& [name, where] : types)
            names.push_back(name);
        if (type == types.end())
            list->push_back(UnknownAt(word, "type", std::string(word.Name()), names));
        else if (!contents[type->second].type.empty())
            list->push_back(MistakeAt(word, "A type cannot be that of a type!"));
    }
}

const eContentRule& eSchemaRules::Content(std::size_t index) const {
    const eContentRule& rule = contents[index];
    const auto type = rule.type.empty() ? types.end() : types.find(rule.type);
    return type == types.end() ? rule : contents[type->second];
}

std::size_t eSchemaRules::BlockIn(const eContentRule& content, std::string_view name) const {
    for (const std::size_t block : content.blocks)
        if (IsSameWord(contents[block].name, name))
            return block;
    return kNoRule;
}

const eWordRule* WordIn(const eContentRule& content, std::string_view name) {
    for (const eWordRule& word : content.words)
        if (IsSameWord(word.name, name))
            return &word;
    return nullptr;
}

// A reader takes a float from either kind of number.
bool IsKind(const eSDLNode& value, eValueKind kind) {
    const eSDLKind is = value.Kind();
    switch (kind) {
    case eValueKind::Any:
        return true;
    case eValueKind::Int:
    case eValueKind::Bool:
        return is == eSDLKind::Int;
    case eValueKind::Float:
        return is == eSDLKind::Int || is == eSDLKind::Float || is == eSDLKind::Calculation;
    case eValueKind::String:
        return is == eSDLKind::String;
    case eValueKind::Word:
        return is == eSDLKind::Word;
    }
    return false;
}

} // namespace xSDL
