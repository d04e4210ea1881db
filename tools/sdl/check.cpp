#include <cstddef>
#include <iostream>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "documents.h"
#include "findings.h"
#include "reports.h"
#include "terminal.h"
#include "verb.h"

namespace {

struct eArguments {
    std::vector<std::string> files;
    std::string signature;
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

eFindings FindingsOf(const std::string& file, const eArguments& arguments) {
    eSDLDocument document;
    OpenDocument(&document, file);
    eFindings findings;
    findings.file = file;
    findings.errors = document.ErrorCount();
    if (!arguments.signature.empty() && !BeginsWith(document, arguments.signature)) {
        ++findings.errors;
        findings.mistakes.push_back(WrongSignature(document, file, arguments.signature));
    }
    for (xError::eDiagnostic& mistake : document.Errors(arguments.most))
        findings.mistakes.push_back(std::move(mistake));
    for (xError::eDiagnostic& mistake : findings.mistakes)
        if (mistake.excerpt.place.source.empty())
            mistake.excerpt.place.source = file;
    terminal::EndProgress();
    return findings;
}

eEnd Check(const eArguments& arguments) {
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
    const auto arguments = std::make_shared<eArguments>();
    verb->add_option("FILE", arguments->files, "the documents")->required();
    verb->add_option("--signature", arguments->signature, "the word after the first {, without regard to letter case");
    verb->add_option("--most", arguments->most, "mistakes that are shown of one file")->capture_default_str();
    const auto json = verb->add_flag("--json", arguments->json, "the mistakes as a JSON array");
    verb->add_flag("--sarif", arguments->sarif, "the mistakes as a SARIF 2.1.0 log")->excludes(json);
    return [arguments] { return Check(*arguments); };
}
