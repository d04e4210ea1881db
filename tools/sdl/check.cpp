// SPDX-License-Identifier: BSL-1.0
#include <algorithm>
#include <cstddef>
#include <iostream>
#include <iterator>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "documents.h"
#include "files.h"
#include "findings.h"
#include "reports.h"
#include "schemas.h"
#include "terminal.h"
#include "verb.h"

namespace {

struct eCheckArguments {
    std::vector<std::string> files;
    std::string signature;
    std::string schema;
    bool noSchema = false;
    bool json = false;
    bool sarif = false;
    std::size_t most = 100;
};

bool BeginsWith(const eSDLDocument& document, std::string_view signature) {
    const eSDLNode first = *document.begin();
    return first.IsBlock() && first.Is(signature);
}

xError::eDiagnostic WrongSignature(const eSDLDocument& document, const std::string& name,
                                   const std::string& signature) {
    const eSDLNode first = *document.begin();
    xError::eDiagnostic mistake;
    mistake.message = "The document does not begin with its signature!";
    mistake.expected = '{' + signature;
    if (first)
        mistake.excerpt = first.Excerpt();
    else
        mistake.found = "no block";
    mistake.excerpt.place.source = name;
    return mistake;
}

std::optional<eSDLSchema> SchemaFor(const std::string& file, const eSDLDocument& document,
                                    const eCheckArguments& arguments) {
    if (!arguments.schema.empty())
        return OpenSchema(arguments.schema);
    if (arguments.noSchema || file == kStandard)
        return std::nullopt;
    return NearestSchema(std::u8string(file.begin(), file.end()), document);
}

// A document without a schema may have any number of mistakes, which are counted without being put together.
void Check(const eSDLDocument& document, const std::optional<eSDLSchema>& schema, std::size_t most,
           eFindings* findings) {
    constexpr std::size_t kMostAgainstSchema = 100'000;
    std::vector<xError::eDiagnostic> mistakes =
        schema ? schema->Check(document, kMostAgainstSchema) : document.Errors(most);
    const auto isError = [](const xError::eDiagnostic& mistake) {
        return mistake.severity == xError::eDiagnostic::eSeverity::Error;
    };
    findings->errors += schema
                            ? static_cast<unsigned long long>(std::count_if(mistakes.begin(), mistakes.end(), isError))
                            : document.ErrorCount();
    mistakes.resize(std::min(mistakes.size(), most));
    std::move(mistakes.begin(), mistakes.end(), std::back_inserter(findings->mistakes));
}

eFindings FindingsOf(const std::string& file, const eCheckArguments& arguments) {
    eSDLDocument document;
    OpenDocument(&document, file);
    eFindings findings;
    findings.file = file;
    if (!arguments.signature.empty() && !BeginsWith(document, arguments.signature)) {
        ++findings.errors;
        findings.mistakes.push_back(WrongSignature(document, file, arguments.signature));
    }
    Check(document, SchemaFor(file, document, arguments), arguments.most, &findings);
    for (xError::eDiagnostic& mistake : findings.mistakes)
        if (mistake.excerpt.place.source.empty())
            mistake.excerpt.place.source = file;
    terminal::EndProgress();
    return findings;
}

eEnd Check(const eCheckArguments& arguments) {
    const std::unique_ptr<eFindingsOutput> output = arguments.sarif  ? SarifOutput()
                                                    : arguments.json ? JsonOutput()
                                                                     : TextOutput();
    bool unread = false;
    unsigned long long errors = 0;
    for (const std::string& file : arguments.files) {
        try {
            const eFindings findings = FindingsOf(file, arguments);
            errors += findings.errors;
            output->Take(findings);
        } catch (const eTrouble& trouble) {
            ShowMessage(trouble.what());
            unread = true;
        }
    }
    output->End();
    return unread ? eEnd::Trouble : errors > 0 ? eEnd::Findings : eEnd::Fine;
}

} // namespace

eVerb::eRun DeclareCheck(CLI::App* verb) {
    const auto arguments = std::make_shared<eCheckArguments>();
    verb->add_option("FILE", arguments->files, "the documents")->required();
    verb->add_option("--signature", arguments->signature, "the word after the first {, without regard to letter case");
    const auto schema = verb->add_option("--schema", arguments->schema, "the schema that the documents must keep to");
    verb->add_flag("--no-schema", arguments->noSchema, "look for no schema beside or above the documents")
        ->excludes(schema);
    verb->add_option("--most", arguments->most, "mistakes that are shown of one file")->capture_default_str();
    const auto json = verb->add_flag("--json", arguments->json, "the mistakes as a JSON array");
    verb->add_flag("--sarif", arguments->sarif, "the mistakes as a SARIF 2.1.0 log")->excludes(json);
    return [arguments] { return Check(*arguments); };
}
