// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <qzl_base/diagnostic.h>
#include <qzl_io/export.h>
#include <qzl_io/sdl/document.h>

namespace xSDL {
class eSchemaRules;
}

// What documents of a kind may hold: which blocks stand where, how often and in which order, and which values they
// have. A schema is itself an SDL document (docs/schemas.md):
//
//     eSDLDocument text;
//     text.Open(eFileName("scene.sdls"));
//     const eSDLSchema schema(text);
//     eSDLDocument document;
//     document.Open(eFileName("scene.sdl"));
//     for (const xError::eDiagnostic& mistake : schema.Check(document))
//         std::cerr << xError::Render(mistake);
//
// A schema takes nothing from the document it was made of, which may be changed or destroyed. Any number of threads may
// use a schema at once. Nothing is reported through xError, and time and memory are in proportion to the document.
class QZL_IO_API eSDLSchema {
public:
    static constexpr std::size_t kAll = ~std::size_t{0};
    static constexpr std::size_t kMostErrors = 1000; // of a schema that Errors tells

    // What is wrong in the document is told by Errors; the rules that are right apply.
    explicit eSDLSchema(const eSDLDocument& document);
    eSDLSchema(eSDLSchema&& other) noexcept;
    eSDLSchema& operator=(eSDLSchema&& other) noexcept;
    ~eSDLSchema();

    // The schema of schemas, which is installed as schema.sdls.
    static eSDLSchema OfSchemas();
    static const char* TextOfSchemas();

    // What is wrong in the schema, in the order of the places: against the schema of schemas, and names of types that
    // do not exist, ranges and counts that nothing can keep to. At most kMostErrors.
    const std::vector<xError::eDiagnostic>& Errors() const;

    // All that is wrong in a document, at most so many, in the order of the places: what eSDLDocument::Errors tells and
    // what breaks the rules, with the nearest right name where one is near. Hidden blocks ({##mark) and included files
    // are not looked at. A calculation is taken for any float.
    std::vector<xError::eDiagnostic> Check(const eSDLDocument& document, std::size_t most = kAll) const;

    // What the schema says of a part of a document, for people: of a block, a word with values or a value.
    struct eSays {
        std::string doc;          // a sentence, as written in the schema; may be empty
        std::string kind;         // of a value: int, number, string ...
        std::string unit;         // of a number; may be empty
        std::string defaultValue; // as it would stand in a document; may be empty
        std::vector<std::string> choices;
    };
    // Empty texts if the schema does not know the part.
    eSays Says(const eSDLNode& node) const;
    // The names of the blocks and words that may stand directly in the block, or in the document, in the order of the
    // schema.
    std::vector<std::string> NamesIn(const eSDLNode& block) const;

    // A schema to begin with: one that accepts the documents, made of what is in all of them. Its text has the layout
    // of eSDLWriter.
    static std::string Draft(const std::vector<const eSDLDocument*>& documents);

private:
    explicit eSDLSchema(std::unique_ptr<xSDL::eSchemaRules> itsRules);

    std::unique_ptr<xSDL::eSchemaRules> rules;
};
