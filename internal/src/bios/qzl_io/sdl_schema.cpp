// SPDX-License-Identifier: BSL-1.0
#include <qzl_io/sdl/schema.h>

#include <iterator>
#include <utility>

#include "schema/check.h"
#include "schema/draft.h"
#include "schema/mistake.h"
#include "schema/rules.h"
#include "schema/schema_text.h"

namespace {

void Append(std::vector<xError::eDiagnostic>* list, std::vector<xError::eDiagnostic> more) {
    list->insert(list->end(), std::make_move_iterator(more.begin()), std::make_move_iterator(more.end()));
}

} // namespace

// Bound to a reference, a constant of an exported class is imported from here on Windows.
constexpr std::size_t eSDLSchema::kAll;        // NOLINT(readability-redundant-declaration): it makes the place
constexpr std::size_t eSDLSchema::kMostErrors; // NOLINT(readability-redundant-declaration): it makes the place

eSDLSchema::eSDLSchema(std::unique_ptr<xSDL::eSchemaRules> itsRules) : rules(std::move(itsRules)) {}
eSDLSchema::eSDLSchema(eSDLSchema&& other) noexcept = default;
eSDLSchema& eSDLSchema::operator=(eSDLSchema&& other) noexcept = default;
eSDLSchema::~eSDLSchema() = default;

eSDLSchema::eSDLSchema(const eSDLDocument& document) : rules(std::make_unique<xSDL::eSchemaRules>()) {
    std::vector<xError::eDiagnostic> mistakes = OfSchemas().Check(document, kMostErrors);
    rules->Read(document, &mistakes);
    xSDL::Sort(&mistakes, kMostErrors);
    rules->mistakes = std::move(mistakes);
}

const char* eSDLSchema::TextOfSchemas() {
    return xSDL::kSchemaText;
}

eSDLSchema eSDLSchema::OfSchemas() {
    const eSDLDocument document(xSDL::kSchemaText, "schema.sdls");
    auto read = std::make_unique<xSDL::eSchemaRules>();
    read->Read(document, &read->mistakes);
    return eSDLSchema(std::move(read));
}

const std::vector<xError::eDiagnostic>& eSDLSchema::Errors() const {
    return rules->mistakes;
}

std::vector<xError::eDiagnostic> eSDLSchema::Check(const eSDLDocument& document, std::size_t most) const {
    std::vector<xError::eDiagnostic> mistakes = document.Errors(most);
    Append(&mistakes, xSDL::BrokenRules(*rules, document, most));
    xSDL::Sort(&mistakes, most);
    return mistakes;
}

eSDLSchema::eSays eSDLSchema::Says(const eSDLNode& node) const {
    const xSDL::eRuleOfNode found = xSDL::RuleOf(*rules, node);
    if (found.content == xSDL::kNoRule)
        return {};
    if (found.value) {
        const xSDL::eValueRule& value = *found.value;
        return {value.doc, NameOf(xSDL::kValueKinds, value.kind), value.unit, value.defaultValue, value.choices};
    }
    if (found.word)
        return {found.word->doc, {}, {}, {}, {}};
    if (!node.IsBlock())
        return {};
    const std::string& doc = rules->Rule(found.content).doc;
    return {doc.empty() ? rules->Content(found.content).doc : doc, {}, {}, {}, {}};
}

std::vector<std::string> eSDLSchema::NamesIn(const eSDLNode& block) const {
    const xSDL::eRuleOfNode found = xSDL::RuleOf(*rules, block);
    std::vector<std::string> names;
    if (found.content == xSDL::kNoRule)
        return names;
    const xSDL::eContentRule& content = rules->Content(found.content);
    for (const std::size_t index : content.blocks)
        if (const std::string& name = rules->Rule(index).name; !name.empty())
            names.push_back(name);
    for (const xSDL::eWordRule& word : content.words)
        names.push_back(word.name);
    return names;
}

std::string eSDLSchema::Draft(const std::vector<const eSDLDocument*>& documents) {
    return xSDL::DraftOf(documents);
}
