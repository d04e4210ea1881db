// SPDX-License-Identifier: BSL-1.0
#include "documents.h"

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
    terminal::ShowProgress("reading " + ShownName(name));
    if (name == kStandard)
        Require(document->Open(*OpenInput(name)), *document, name);
    else
        Require(document->Open(NativeName(name)), *document, name);
}

void OpenFaultless(eSDLDocument* document, const std::string& name) {
    OpenDocument(document, name);
    if (document->ErrorCount() == 0)
        return;
    for (const xError::eDiagnostic& mistake : document->Errors()) {
        if (mistake.severity != xError::eDiagnostic::eSeverity::Error)
            continue;
        ShowDiagnostic(mistake);
        break;
    }
    throw eTrouble(ShownName(name) + ": " + Counted(document->ErrorCount(), "mistake") + "; 'sdl check' lists them");
}

void SaveDocument(const eSDLDocument& document, const std::string& name) {
    if (name != kStandard)
        return Require(document.Save(NativeName(name)), document, name);
    eOutput output(name);
    document.Write(output.Stream());
    output.Commit();
}
