// SPDX-License-Identifier: BSL-1.0
#include "documents.h"

#include <algorithm>
#include <vector>

#include "files.h"
#include "native_name.h"
#include "reports.h"
#include "terminal.h"
#include "verb.h"

namespace {

void Require(bool done, const eSDLDocument& document, const std::string& name) {
    if (!done)
        throw eTrouble(ShownName(name) + ": " + terminal::Printable(document.Failure().text));
}

} // namespace

void OpenDocument(eSDLDocument* document, const std::string& name) {
    terminal::ShowStep("reading " + ShownName(name), name);
    if (name == kStandard)
        Require(document->Open(*OpenInput(name)), *document, name);
    else
        Require(document->Open(NativeName(name)), *document, name);
}

void OpenFaultless(eSDLDocument* document, const std::string& name) {
    OpenDocument(document, name);
    if (document->ErrorCount() > 0)
        RefuseFaulty(*document, name);
}

void RefuseFaulty(const eSDLDocument& document, const std::string& name) {
    const std::vector<xError::eDiagnostic> mistakes = document.Errors();
    const auto error = std::find_if(mistakes.begin(), mistakes.end(), [](const xError::eDiagnostic& mistake) {
        return mistake.severity == xError::eDiagnostic::eSeverity::Error;
    });
    xError::eDiagnostic shown = error != mistakes.end() ? *error : mistakes.front();
    shown.excerpt.place.source = name;
    for (xError::eDiagnostic::eNote& note : shown.notes)
        note.excerpt.place.source = name;
    ShowDiagnostic(shown);
    throw eTrouble(ShownName(name) + ": " + Counted(mistakes.size(), "mistake") + "; 'sdl check' lists them");
}

void SaveDocument(const eSDLDocument& document, const std::string& name) {
    if (name != kStandard)
        return Require(document.Save(NativeName(name)), document, name);
    eOutput output(name);
    document.Write(output.Stream());
    output.Commit();
}
