// SPDX-License-Identifier: BSL-1.0
#include "walk.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <string_view>
#include <vector>

#include "documents.h"
#include "files.h"
#include "native_name.h"
#include "terminal.h"
#include "verb.h"

namespace {

// Whether a text that ends the document ends within a string, the only token that its end can break.
bool EndsWithinString(const char* text) {
    IO::eMemoryStream content;
    content.Write(text, std::strlen(text));
    content.Seek(0, IO::eSeekDir::Begin);
    const std::vector<eSDLKeyword*> noKeywords;
    eSDLParser parser(std::string(), content, noKeywords, {}, nullptr);
    std::string_view rest(parser.Cptr());
    while (parser.Get() && parser.Token().type != sdlError)
        rest = parser.Cptr();
    for (;;) {
        const std::size_t next = rest.find_first_not_of("\t\n\r =");
        if (next == std::string_view::npos || rest[next] != ';')
            return next != std::string_view::npos;
        rest.remove_prefix(next);
        rest.remove_prefix(std::min(rest.size(), rest.find_first_of("\n\r")));
    }
}

// A reader of a file, which knows the file's name, or of standard input.
eSDLReader Opened(const std::string& name) {
    const std::unique_ptr<IO::eStream> stream = OpenInput(name);
    return name == kStandard ? eSDLReader(stream.get(), nullptr) : eSDLReader(NativeName(name), nullptr);
}

} // namespace

eWalk::eWalk(const std::string& name) : eSDLReader(Opened(name)), fileName(name), begin(Parser().Cptr()) {}

bool eWalk::Next() {
    const char* const before = Parser().Cptr();
    if (++tokens % terminal::kTokensBetweenProgress == 0)
        ReportProgress();
    if (!Get()) {
        RequireEnd(before);
        return false;
    }
    switch (Token().type) {
    case sdlBlockStart:
        ++depth;
        break;
    case sdlBlockEnd:
        if (depth == 0)
            Fail();
        --depth;
        break;
    case sdlError:
        Fail();
    default:
        break;
    }
    return true;
}

bool eWalk::TakeName(std::string* word) {
    if (!Test(sdlIdent))
        return false;
    *word = GetIdent();
    return true;
}

void eWalk::MoveTo(const char* position, int line) {
    eSDLParserState state;
    state.token = Token();
    state.line = line;
    state.position = position;
    Parser().StatePrev(state);
    Parser().Back();
}

void eWalk::Rewind() {
    depth = 0;
    MoveTo(begin, 1);
}

// A document finds what the reader met.
void eWalk::Fail() const {
    RefuseFaulty(eSDLDocument(std::string(begin)), fileName);
}

void eWalk::RequireEnd(const char* before) {
    if (depth > 0 || EndsWithinString(before))
        Fail();
}

void eWalk::ReportProgress() {
    if (size == 0)
        size = std::strlen(begin);
    terminal::ShowProgress("reading " + ShownName(fileName), static_cast<unsigned long long>(Parser().Cptr() - begin),
                           size);
}
