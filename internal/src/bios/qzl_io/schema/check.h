// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <cstddef>
#include <vector>

#include <qzl_base/diagnostic.h>
#include <qzl_io/sdl/document.h>

#include "schema/rules.h"

namespace xSDL {

// What breaks the rules in a document, in the order of the places, at most so many.
std::vector<xError::eDiagnostic> BrokenRules(const eSchemaRules& rules, const eSDLDocument& document, std::size_t most);

// Finds the rules for a node by the blocks around it. Indices into the rules; kNoRule where there are none.
struct eRuleOfNode {
    std::size_t content = kNoRule;     // of the block, or of the block around another node
    const eWordRule* word = nullptr;   // of a word that has a rule, or before a value of such a word
    const eValueRule* value = nullptr; // of a value
};
eRuleOfNode RuleOf(const eSchemaRules& rules, const eSDLNode& node);

// Puts the mistakes in the order of their places and keeps the first.
void Sort(std::vector<xError::eDiagnostic>* mistakes, std::size_t most);

} // namespace xSDL
