// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <cstddef>
#include <limits>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <qzl_base/diagnostic.h>
#include <qzl_io/sdl/document.h>
#include <qzl_io/sdl/names.h>

// The rules of a schema. They refer to each other by index, so that no depth of a hostile schema needs a deep stack.

namespace xSDL {

inline constexpr std::size_t kNoRule = ~std::size_t{0};
inline constexpr unsigned long long kMany = std::numeric_limits<unsigned long long>::max();

enum class eValueKind { Any, Int, Float, Bool, String, Word };

inline constexpr eSDLName<eValueKind> kValueKinds[] = {{"any", eValueKind::Any},       {"int", eValueKind::Int},
                                                       {"float", eValueKind::Float},   {"bool", eValueKind::Bool},
                                                       {"string", eValueKind::String}, {"word", eValueKind::Word}};

struct eCount {
    unsigned long long least = 1;
    unsigned long long most = 1;
};

struct eValueRule {
    eValueKind kind = eValueKind::Any;
    eCount count;
    std::optional<double> least;
    std::optional<double> most;
    std::string range;                // as the end of a phrase, such as " from 0 to 100"
    std::vector<std::string> choices; // words and strings without quotes, numbers as written
    std::string doc;
    std::string unit;
    std::string defaultValue;
};

// A word with its values, or a value list without a word.
struct eWordRule {
    std::string name;
    eCount count;
    std::vector<eValueRule> values;
    std::string doc;
};

// What a block, a type or the document may hold.
struct eContentRule {
    std::string name;
    eCount count;
    std::string doc;
    bool inOrder = false;
    bool others = false; // other blocks are accepted, with whatever they hold
    bool marks = true;
    std::vector<eValueRule> values;
    std::vector<eWordRule> words;
    std::vector<std::size_t> blocks;
    std::string type; // whose rules apply in place of these; empty: none
};

class eSchemaRules {
public:
    // Reads the rules. Mistakes that the schema of schemas does not see are added to the list.
    void Read(const eSDLDocument& document, std::vector<xError::eDiagnostic>* mistakes);

    const eContentRule& Rule(std::size_t index) const { return contents[index]; }
    // The rule whose content applies: that of the type, if there is one.
    const eContentRule& Content(std::size_t index) const;
    // The rule for a block of that name within another block; kNoRule if there is none.
    std::size_t BlockIn(const eContentRule& content, std::string_view name) const;

    static constexpr std::size_t kDocument = 0;
    bool includes = true;
    std::vector<xError::eDiagnostic> mistakes;

private:
    void ReadContent(std::size_t index, const eSDLNode& node, std::vector<xError::eDiagnostic>* list);
    void ReadType(std::size_t index, const eSDLNode& node);
    void CheckTypes(std::vector<xError::eDiagnostic>* list) const;

    struct eFolded {
        bool operator()(const std::string& left, const std::string& right) const;
    };

    std::vector<eContentRule> contents;
    std::map<std::string, std::size_t, eFolded> types;
    std::vector<std::pair<std::size_t, eSDLNode>> waiting; // contents to be read
    std::vector<std::pair<std::size_t, eSDLNode>> uses;    // contents with the word that names their type
};

const eWordRule* WordIn(const eContentRule& content, std::string_view name);

bool IsKind(const eSDLNode& value, eValueKind kind);

} // namespace xSDL
