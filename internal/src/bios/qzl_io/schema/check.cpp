// SPDX-License-Identifier: BSL-1.0
#include "schema/check.h"

#include <algorithm>
#include <optional>
#include <span>
#include <string>
#include <utility>

#include <qzl_base/convert.h>
#include <qzl_base/format.h>

#include "schema/mistake.h"

namespace xSDL {
namespace {

std::string Text(unsigned long long number) {
    return ToString(number, false);
}

std::string Expected(const eValueRule& rule) {
    static constexpr eSDLName<eValueKind> kSentences[] = {
        {"a value", eValueKind::Any}, {"an integer", eValueKind::Int},  {"a number", eValueKind::Float},
        {"0 or 1", eValueKind::Bool}, {"a string", eValueKind::String}, {"a word", eValueKind::Word}};
    if (!rule.choices.empty())
        return Listed(rule.choices);
    return NameOf(kSentences, rule.kind) + rule.range;
}

const char* MessageFor(eValueKind kind) {
    switch (kind) {
    case eValueKind::Int:
    case eValueKind::Bool:
        return "Integer expected!";
    case eValueKind::Float:
        return "Number expected!";
    case eValueKind::String:
        return "String expected!";
    case eValueKind::Word:
        return "Identifier expected!";
    case eValueKind::Any:
        break;
    }
    return "Value expected!";
}

// Walks along the value rules of a block or a word. Each rule takes as many values as fit.
class eValueWalk {
public:
    eValueWalk() = default;
    explicit eValueWalk(const std::vector<eValueRule>& valueRules) : rules(valueRules) {}

    // The rule that takes the value; null if none does. Does not move on for a value that no rule takes.
    const eValueRule* Take(const eSDLNode& value) {
        std::size_t index = at;
        unsigned long long used = taken;
        while (index < rules.size() && (used == rules[index].count.most ||
                                        (!IsKind(value, rules[index].kind) && used >= rules[index].count.least))) {
            ++index;
            used = 0;
        }
        if (index == rules.size() || !IsKind(value, rules[index].kind))
            return nullptr;
        at = index;
        taken = used + 1;
        return &rules[index];
    }

    // The rule that still wants values; null if all have enough.
    const eValueRule* Wanting() const {
        for (std::size_t index = at; index < rules.size(); ++index)
            if ((index == at ? taken : 0) < rules[index].count.least)
                return &rules[index];
        return nullptr;
    }

    // Goes on after a value that stands in the place of another one.
    void Pass() {
        if (at == rules.size() || ++taken < rules[at].count.most)
            return;
        ++at;
        taken = 0;
    }

private:
    std::span<const eValueRule> rules;
    std::size_t at = 0;
    unsigned long long taken = 0;
};

class eChecking {
public:
    eChecking(const eSchemaRules& schemaRules, std::size_t mostMistakes) : rules(schemaRules), most(mostMistakes) {}

    std::vector<xError::eDiagnostic> Run(const eSDLDocument& document) {
        waiting.push_back({document.Root(), eSchemaRules::kDocument});
        while (!waiting.empty() && !IsFull()) {
            const eWaiting next = waiting.back();
            waiting.pop_back();
            Check(next.block, next.rule);
        }
        if (!rules.includes)
            RefuseIncludes(document);
        return std::move(mistakes);
    }

private:
    struct eWaiting {
        eSDLNode block;
        std::size_t rule;
    };

    // Places are in the order of the blocks only when sorted, so twice as many are found as are wanted at most.
    bool IsFull() const { return mistakes.size() / 2 >= most; }

    xError::eDiagnostic& Add(xError::eDiagnostic mistake) { return mistakes.emplace_back(std::move(mistake)); }

    void Check(const eSDLNode& block, std::size_t index) {
        const eContentRule& content = rules.Content(index);
        std::vector<unsigned long long> blocks(content.blocks.size());
        std::vector<unsigned long long> words(content.words.size());
        eValueWalk values(content.values);
        eValueWalk ofWord;
        eSDLNode word;
        std::size_t furthest = 0;
        const std::size_t firstWaiting = waiting.size();
        for (const eSDLNode& child : block) {
            if (IsFull())
                return;
            if (child.IsBlock()) {
                EndWord(word, ofWord);
                word = {};
                CheckBlock(child, content, &blocks, &furthest);
                continue;
            }
            if (const eWordRule* const rule =
                    child.Kind() == eSDLKind::Word ? WordIn(content, child.Name()) : nullptr) {
                EndWord(word, ofWord);
                word = child;
                ofWord = eValueWalk(rule->values);
                CountWord(child, content, rule, &words);
                continue;
            }
            if (const eValueRule* const rule = ofWord.Take(child))
                CheckValue(child, *rule);
            else
                CheckValueIn(child, content, &values);
        }
        EndWord(word, ofWord);
        std::reverse(waiting.begin() + static_cast<std::ptrdiff_t>(firstWaiting), waiting.end());
        if (const eValueRule* const wanting = values.Wanting())
            AddMissing(block, "A value is missing!", Expected(*wanting));
        RequireNames(block, content, blocks, words);
    }

    void EndWord(const eSDLNode& word, const eValueWalk& values) {
        if (!word)
            return;
        if (const eValueRule* const wanting = values.Wanting())
            AddMissing(word, "A value is missing!", Expected(*wanting));
    }

    void AddMissing(const eSDLNode& where, std::string message, std::string expected) {
        xError::eDiagnostic& mistake = Add(MistakeAt(where, std::move(message)));
        mistake.expected = std::move(expected);
        mistake.found.clear();
    }

    void CheckBlock(const eSDLNode& child, const eContentRule& content, std::vector<unsigned long long>* counts,
                    std::size_t* furthest) {
        const std::size_t index = rules.BlockIn(content, child.Name());
        if (index == kNoRule) {
            if (!content.others)
                Add(UnknownAt(child, "block", std::string(child.Name()), Names(content)));
            return;
        }
        const auto at = static_cast<std::size_t>(std::find(content.blocks.begin(), content.blocks.end(), index) -
                                                 content.blocks.begin());
        const eContentRule& rule = rules.Rule(index);
        if (++(*counts)[at] == rule.count.most + 1 && rule.count.most != kMany)
            Add(MistakeAt(child, (format("More than %1% blocks '%2%'!") % Text(rule.count.most) % rule.name).str()));
        if (content.inOrder && at < *furthest)
            Add(MistakeAt(child, (format("The block '%1%' stands too late!") % rule.name).str())).expected =
                "'" + rule.name + "' before '" + rules.Rule(content.blocks[*furthest]).name + "'";
        *furthest = std::max(*furthest, at);
        if (!rule.marks && !child.Mark().empty())
            Add(MistakeAt(child, (format("The block '%1%' takes no mark!") % rule.name).str()));
        waiting.push_back({child, index});
    }

    void CountWord(const eSDLNode& word, const eContentRule& content, const eWordRule* rule,
                   std::vector<unsigned long long>* counts) {
        const auto at = static_cast<std::size_t>(rule - content.words.data());
        if (++(*counts)[at] == rule->count.most + 1 && rule->count.most != kMany)
            Add(MistakeAt(word, (format("More than %1% words '%2%'!") % Text(rule->count.most) % rule->name).str()));
    }

    void CheckValueIn(const eSDLNode& child, const eContentRule& content, eValueWalk* values) {
        if (const eValueRule* const rule = values->Take(child))
            return CheckValue(child, *rule);
        if (child.Kind() == eSDLKind::Word && !content.words.empty()) {
            Add(UnknownAt(child, "word", std::string(child.Name()), Names(content)));
            return;
        }
        if (const eValueRule* const wanting = values->Wanting()) {
            Add(MistakeAt(child, MessageFor(wanting->kind))).expected = Expected(*wanting);
            values->Pass();
            return;
        }
        Add(MistakeAt(child, "Unexpected value!"));
    }

    void CheckValue(const eSDLNode& value, const eValueRule& rule) {
        if (!rule.choices.empty() && !IsChoice(value, rule)) {
            Add(UnknownAt(value, "name", value.As<std::string>().value_or(value.Text()), rule.choices));
            return;
        }
        const bool bounded = rule.least || rule.most;
        int small = 0;
        const bool fits = rule.kind == eValueKind::Bool              ? value.Get(&small) && (small == 0 || small == 1)
                          : rule.kind == eValueKind::Int && !bounded ? value.Get(&small)
                                                                     : true;
        const bool calculated = value.Kind() == eSDLKind::Calculation;
        if (fits && (!bounded || calculated || InRange(value, rule)))
            return;
        const std::string message = format("%1% is out of range!") % Shortened(value.Text());
        Add(MistakeAt(value, message)).expected = Expected(rule);
    }

    static bool InRange(const eSDLNode& value, const eValueRule& rule) {
        double number = 0;
        if (!value.Get(&number))
            return !IsKind(value, eValueKind::Float);
        return (!rule.least || number >= *rule.least) && (!rule.most || number <= *rule.most);
    }

    // Words regardless of case, strings exactly, numbers as such.
    static bool IsChoice(const eSDLNode& value, const eValueRule& rule) {
        const std::string text = value.As<std::string>().value_or(value.Text());
        const bool word = value.Kind() == eSDLKind::Word;
        return std::any_of(rule.choices.begin(), rule.choices.end(),
                           [&](const std::string& choice) { return word ? IsSameWord(choice, text) : choice == text; });
    }

    void RequireNames(const eSDLNode& block, const eContentRule& content, const std::vector<unsigned long long>& blocks,
                      const std::vector<unsigned long long>& words) {
        for (std::size_t at = 0; at < blocks.size(); ++at)
            if (const eContentRule& rule = rules.Rule(content.blocks[at]); blocks[at] < rule.count.least)
                AddMissing(block, (format("The block '%1%' is missing!") % rule.name).str(),
                           "a block '" + rule.name + "'");
        for (std::size_t at = 0; at < words.size(); ++at)
            if (const eWordRule& rule = content.words[at]; words[at] < rule.count.least)
                AddMissing(block, (format("The word '%1%' is missing!") % rule.name).str(),
                           "the word '" + rule.name + "'");
    }

    std::vector<std::string> Names(const eContentRule& content) const {
        std::vector<std::string> names;
        for (const std::size_t block : content.blocks)
            names.push_back(rules.Rule(block).name);
        for (const eWordRule& word : content.words)
            names.push_back(word.name);
        return names;
    }

    void RefuseIncludes(const eSDLDocument& document) {
        for (const eSDLPart& part : document.Parts()) {
            if (IsFull())
                return;
            const std::string_view word = part.kind == eSDLKind::Control ? part.text.substr(1) : std::string_view();
            const std::size_t at = word.find_first_not_of(" \t\r\n=");
            if (at != std::string_view::npos && IsSameWord(word.substr(at, 7), "include"))
                Add(MistakeAt(part.node, "Files may not be included here!"));
        }
    }

    const eSchemaRules& rules;
    std::size_t most;
    std::vector<eWaiting> waiting;
    std::vector<xError::eDiagnostic> mistakes;
};

} // namespace

std::vector<xError::eDiagnostic> BrokenRules(const eSchemaRules& rules, const eSDLDocument& document,
                                             std::size_t most) {
    return eChecking(rules, most).Run(document);
}

void Sort(std::vector<xError::eDiagnostic>* mistakes, std::size_t most) {
    std::stable_sort(mistakes->begin(), mistakes->end(), [](const auto& left, const auto& right) {
        return left.excerpt.place.offset < right.excerpt.place.offset;
    });
    mistakes->resize(std::min(mistakes->size(), most));
}

eRuleOfNode RuleOf(const eSchemaRules& rules, const eSDLNode& node) {
    std::vector<eSDLNode> around;
    for (eSDLNode block = node.IsBlock() || node.Kind() == eSDLKind::Document ? node : node.Parent(); block;
         block = block.Parent())
        around.push_back(block);
    if (around.empty())
        return {};
    around.pop_back(); // the document
    std::size_t index = eSchemaRules::kDocument;
    for (; !around.empty(); around.pop_back()) {
        index = rules.BlockIn(rules.Content(index), around.back().Name());
        if (index == kNoRule)
            return {};
    }
    eRuleOfNode found{index, nullptr, nullptr};
    if (node.IsBlock() || node.Kind() == eSDLKind::Document)
        return found;
    const eContentRule& content = rules.Content(index);
    eValueWalk values(content.values);
    std::optional<eValueWalk> ofWord;
    for (const eSDLNode& child : node.Parent()) {
        const eWordRule* const word = child.Kind() == eSDLKind::Word ? WordIn(content, child.Name()) : nullptr;
        if (child.IsBlock() || word) {
            found.word = word;
            ofWord.reset();
            if (word)
                ofWord.emplace(word->values);
            found.value = nullptr;
        } else {
            found.value = ofWord ? ofWord->Take(child) : nullptr;
            if (!found.value)
                found.value = values.Take(child);
        }
        if (child == node)
            return found;
    }
    return {index, nullptr, nullptr};
}

} // namespace xSDL
