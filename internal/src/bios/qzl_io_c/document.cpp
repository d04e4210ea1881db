// SPDX-License-Identifier: BSL-1.0
#include "document.h"

#include <algorithm>
#include <utility>
#include <vector>

#include <qzl_io/sdl/layout.h>

#include "platform/named_files.h"
#include "schema.h"

using xC::RequireArgument;
using xC::Run;

void qzl_document::Replace(eSDLDocument&& other) {
    document = std::move(other);
    Forget();
}

void qzl_document::Fail() const {
    const std::string& why = document.Failure().text;
    throw xC::eRefusal{xC::StatusOf(why, QZL_FILE), why};
}

namespace {

constexpr int32_t kWidestIndent = 16;

eSDLLayout LayoutOf(const qzl_layout* layout) {
    qzl_layout known{sizeof(qzl_layout), QZL_TAB, 0};
    RequireArgument(!layout || xC::Take(layout, &known), "The layout has a wrong size or settings of a later version.");
    RequireArgument(known.indent >= QZL_TAB && known.indent <= kWidestIndent, "The indentation is out of range.");
    RequireArgument(known.lf == 0 || known.lf == 1, "The line end is neither 0 nor 1.");
    eSDLLayout result;
    result.indent = known.indent == QZL_TAB ? eSDLLayout::kTab : known.indent;
    result.crLf = known.lf == 0;
    return result;
}

// The document has one.
qzl_status TakeFirstError(qzl_document* handle) {
    std::vector<xError::eDiagnostic> mistakes = handle->document.Errors();
    const auto first =
        std::ranges::find(mistakes, xError::eDiagnostic::eSeverity::Error, &xError::eDiagnostic::severity);
    return handle->told.Take(QZL_MISTAKE, std::move(*first));
}

} // namespace

qzl_status qzl_document_new(qzl_document** document) {
    return xC::Make(document);
}

void qzl_document_free(qzl_document* document) {
    delete document;
}

qzl_status qzl_document_error(const qzl_document* document, qzl_mistake* error) {
    return xC::TellError(document, error);
}

qzl_status qzl_document_limit(qzl_document* document, const qzl_limits* limits) {
    return Run(document, [&] {
        xC::TakeLimits(limits, &document->limits);
        return QZL_OK;
    });
}

qzl_status qzl_document_open(qzl_document* document, const char* name, size_t name_size) {
    return Run(document, [&] {
        const std::string file = xC::FileNameOf(name, name_size);
        document->Forget();
        if (!xC::OpenDocument(&document->document, file, xC::SDLLimitsOf(document->limits)))
            document->Fail();
        return QZL_OK;
    });
}

qzl_status qzl_document_parse(qzl_document* document, const char* text, size_t text_size, const char* name,
                              size_t name_size) {
    return Run(document, [&] {
        const std::string_view source = xC::TextOf(text, text_size);
        const std::string called(xC::TextOf(name, name_size));
        document->Replace(eSDLDocument(source, called, xC::SDLLimitsOf(document->limits)));
        if (document->document.Failure())
            document->Fail();
        return QZL_OK;
    });
}

qzl_status qzl_document_save(qzl_document* document, const char* name, size_t name_size) {
    return Run(document, [&] {
        if (!xC::SaveDocument(document->document, xC::FileNameOf(name, name_size)))
            document->Fail();
        return QZL_OK;
    });
}

qzl_status qzl_document_text(qzl_document* document, const char** text, size_t* text_size) {
    return Run(document, [&] {
        document->text = document->document.Text();
        xC::GiveText(document->text, text, text_size);
        return QZL_OK;
    });
}

qzl_status qzl_document_format(qzl_document* document, const qzl_layout* layout, const char** text, size_t* text_size) {
    return Run(document, [&]() -> qzl_status {
        const eSDLLayout wanted = LayoutOf(layout);
        if (document->document.ErrorCount() > 0)
            return TakeFirstError(document);
        document->text = wanted.Format(document->document);
        xC::GiveText(document->text, text, text_size);
        return QZL_OK;
    });
}

qzl_status qzl_document_check(qzl_document* document, const qzl_schema* schema, size_t most, size_t* count) {
    return Run(document, [&] {
        const eSDLDocument& text = document->document;
        document->mistakes = schema && schema->rules ? schema->rules->Check(text, most) : text.Errors(most);
        if (count)
            *count = document->mistakes.size();
        return QZL_OK;
    });
}

qzl_status qzl_document_mistake(qzl_document* document, size_t index, qzl_mistake* mistake) {
    return Run(document, [&]() -> qzl_status {
        RequireArgument(xC::IsSized(mistake), "The mistake has a wrong size.");
        if (index >= document->mistakes.size())
            return QZL_NOT_FOUND;
        document->shown.Take(QZL_MISTAKE, document->mistakes[index]);
        return document->shown.Tell(mistake);
    });
}
