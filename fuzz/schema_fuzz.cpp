// SPDX-License-Identifier: BSL-1.0
#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include <qzl_base/diagnostic.h>
#include <qzl_io/sdl/document.h>
#include <qzl_io/sdl/schema.h>

#include "require.h"
#include "target.h"

// The bytes are a schema, a NUL and a document; without a NUL they are both. Whatever they are, each mistake has its
// place in its text, in order, and no document breaks the rules that are drafted from it.

namespace {

using eMistakes = std::vector<xError::eDiagnostic>;

struct eTexts {
    explicit eTexts(std::string_view input)
        : schema(input.substr(0, input.find('\0'))),
          document(input.substr(schema.size() == input.size() ? 0 : schema.size() + 1)) {}

    std::string_view schema;
    std::string_view document;
};

bool IsError(const xError::eDiagnostic& mistake) {
    return mistake.severity == xError::eDiagnostic::eSeverity::Error;
}

void RequirePlace(const xError::eExcerpt& excerpt, std::string_view text) {
    Require(excerpt.place.offset <= text.size(), "the offset is in the text");
    Require(excerpt.place.line >= 1 && excerpt.place.column >= 1 && excerpt.place.byteColumn >= excerpt.place.column,
            "the line and columns are counted from 1");
    Require(excerpt.markBegin <= excerpt.markEnd && excerpt.markEnd <= excerpt.text.size(), "the mark is in the line");
}

void RequirePlaces(const eMistakes& mistakes, std::string_view text) {
    unsigned long long last = 0;
    for (const xError::eDiagnostic& mistake : mistakes) {
        RequirePlace(mistake.excerpt, text);
        Require(mistake.excerpt.place.offset >= last, "the mistakes are in the order of their places");
        last = mistake.excerpt.place.offset;
        for (const xError::eDiagnostic::eNote& note : mistake.notes)
            RequirePlace(note.excerpt, text);
        Require(!mistake.message.empty() && !xError::Render(mistake).empty(), "a mistake has a message");
    }
}

// The first parts alone, as what is said of a part costs time for what is before it.
void LookAtParts(const eSDLSchema& schema, const eSDLDocument& document) {
    int left = 100;
    for (const eSDLPart& part : document.Parts()) {
        if (--left < 0)
            return;
        schema.Says(part.node);
        schema.NamesIn(part.node);
    }
}

void CheckDraft(const eSDLDocument& document) {
    const eSDLDocument text(eSDLSchema::Draft({&document}));
    const eSDLSchema draft(text);
    Require(draft.Errors().empty(), "a draft is a schema: " + Shown(text.Text()));
    const eMistakes mistakes = draft.Check(document);
    const auto broken = std::find_if(mistakes.begin(), mistakes.end(), IsError);
    Require(broken == mistakes.end(), "a draft takes its document: " + Shown(text.Text()));
}

} // namespace

void Check(std::string_view input) {
    const eTexts texts(input);
    const eSDLDocument rules(texts.schema);
    const eSDLDocument document(texts.document);
    const eSDLSchema schema(rules);
    RequirePlaces(schema.Errors(), texts.schema);
    Require(!schema.Errors().empty() || eSDLSchema::OfSchemas().Check(rules).empty(),
            "a schema without a mistake keeps to the schema of schemas");
    const eMistakes mistakes = schema.Check(document);
    RequirePlaces(mistakes, texts.document);
    const auto errors = static_cast<std::size_t>(std::count_if(mistakes.begin(), mistakes.end(), IsError));
    Require(errors >= document.ErrorCount(), "the document's own mistakes are among them");
    Require(schema.Check(document, 3).size() == std::min<std::size_t>(mistakes.size(), 3), "as many as asked for");
    LookAtParts(schema, document);
    if (document.ErrorCount() == 0)
        CheckDraft(document);
}

void Work(std::string_view input) {
    const eTexts texts(input);
    const eSDLDocument document(texts.document);
    const eSDLSchema schema{eSDLDocument(texts.schema)};
    schema.Check(document, 100);
    eSDLSchema::Draft({&document});
}
