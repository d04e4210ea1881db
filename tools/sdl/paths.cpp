// SPDX-License-Identifier: BSL-1.0
#include "paths.h"

#include "reports.h"
#include "terminal.h"

void RequirePath(const std::string& path) {
    const std::string mistake = eSDLDocument::PathMistake(path);
    if (!mistake.empty())
        throw eTrouble(terminal::Printable(path) + ": " + terminal::Printable(mistake));
}

std::vector<eSDLNode> NodesAt(const eSDLDocument& document, const std::string& path, bool all) {
    if (all)
        return document.FindAll(path);
    const eSDLNode first = document.Find(path);
    return first ? std::vector<eSDLNode>{first} : std::vector<eSDLNode>{};
}

eEnd NothingAt(const std::string& path) {
    ShowMessage(terminal::Printable(path) + ": there is nothing at this path");
    return eEnd::Findings;
}
