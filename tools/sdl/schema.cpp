// SPDX-License-Identifier: BSL-1.0
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include <qzl_io/sdl/schema.h>

#include "documents.h"
#include "terminal.h"
#include "verb.h"

namespace {

eEnd Draft(const std::vector<std::string>& files) {
    std::vector<eSDLDocument> documents(files.size());
    std::vector<const eSDLDocument*> all;
    for (std::size_t index = 0; index < files.size(); ++index) {
        OpenFaultless(&documents[index], files[index]);
        all.push_back(&documents[index]);
    }
    terminal::EndProgress();
    std::cout << eSDLSchema::Draft(all);
    return eEnd::Fine;
}

} // namespace

eVerb::eRun DeclareSchema(CLI::App* verb) {
    const auto files = std::make_shared<std::vector<std::string>>();
    CLI::App* const draft = verb->add_subcommand("draft", "Print a schema that the documents keep to, to begin with.");
    draft->add_option("FILE", *files, "the documents")->required();
    verb->require_subcommand(1);
    return [files] { return Draft(*files); };
}
