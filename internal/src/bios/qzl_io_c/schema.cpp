// SPDX-License-Identifier: BSL-1.0
#include "schema.h"

#include <string>

#include "platform/named_files.h"

using xC::Run;

qzl_status qzl_schema::TakeRules(const eSDLDocument& document) {
    rules.emplace(document);
    if (rules->Errors().empty())
        return QZL_OK;
    return told.Take(QZL_MISTAKE, rules->Errors().front());
}

namespace {

void RequireRead(const eSDLDocument& document) {
    const std::string& failure = document.Failure().text;
    if (!failure.empty())
        throw xC::eRefusal{xC::StatusOf(failure, QZL_FILE), failure};
}

} // namespace

qzl_status qzl_schema_new(qzl_schema** schema) {
    return xC::Make(schema);
}

void qzl_schema_free(qzl_schema* schema) {
    delete schema;
}

qzl_status qzl_schema_error(const qzl_schema* schema, qzl_mistake* error) {
    return xC::TellError(schema, error);
}

qzl_status qzl_schema_open(qzl_schema* schema, const char* name, size_t name_size) {
    return Run(schema, [&] {
        const std::string file = xC::FileNameOf(name, name_size);
        schema->rules.reset();
        eSDLDocument document;
        xC::OpenDocument(&document, file, {});
        RequireRead(document);
        return schema->TakeRules(document);
    });
}

qzl_status qzl_schema_parse(qzl_schema* schema, const char* text, size_t text_size, const char* name,
                            size_t name_size) {
    return Run(schema, [&] {
        const std::string_view source = xC::TextOf(text, text_size);
        const std::string called(xC::TextOf(name, name_size));
        return schema->TakeRules(eSDLDocument(source, called));
    });
}

qzl_status qzl_schema_mistake(qzl_schema* schema, size_t index, qzl_mistake* mistake) {
    return Run(schema, [&]() -> qzl_status {
        xC::RequireArgument(xC::IsSized(mistake), "The mistake has a wrong size.");
        if (!schema->rules || index >= schema->rules->Errors().size())
            return QZL_NOT_FOUND;
        schema->shown.Take(QZL_MISTAKE, schema->rules->Errors()[index]);
        return schema->shown.Tell(mistake);
    });
}
