// SPDX-License-Identifier: BSL-1.0
#include <cstddef>
#include <cstring>
#include <iostream>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <qzl_io/sdl.h>

#include "files.h"
#include "terminal.h"
#include "utf8.h"
#include "verb.h"

// Shows the tokens as they are cut, before a reader hides comments and blocks and calculates.

namespace {

const char* KindOf(const eSDLParserToken& token) {
    switch (token.type) {
    case sdlError:
        return "error";
    case sdlIdent:
    case sdlKeyword:
        return "word";
    case sdlString:
        return "string";
    case sdlBlockStart:
        return "block";
    case sdlBlockEnd:
        return "end";
    case sdlOpen:
        return "open";
    case sdlClose:
        return "close";
    case sdlFloat:
        return "float";
    case sdlInt:
        return "integer";
    case sdlOperator:
        return "operator";
    default:
        return "nothing";
    }
}

// Where the first token from `at` on begins: after blanks and comments.
const char* PassBlanks(const char* at) {
    for (;;) {
        at += std::strspn(at, "\t\n\r =");
        if (*at != ';')
            return at;
        at += std::strcspn(at, "\n\r");
    }
}

// Counts lines and columns on the way through a text.
class ePlaces {
public:
    explicit ePlaces(const char* begin) : at(begin) {}

    void MoveTo(const char* place) {
        for (; at < place; ++at) {
            const bool continues = (static_cast<unsigned char>(*at) & 0xC0) == 0x80;
            if (*at == '\n')
                ++line, column = 1;
            else if (!continues)
                ++column;
        }
    }
    void Print(std::ostream& out) const { out << line << ':' << column; }

private:
    const char* at;
    unsigned long long line = 1;
    unsigned long long column = 1;
};

struct eTokensArguments {
    std::string file;
};

class eTokens {
public:
    explicit eTokens(const std::string& file)
        : name(file),
          stream(OpenInput(file)),
          size(stream->Size()),
          parser(std::string(), *stream, keywords, {}, nullptr),
          begin(parser.Cptr()),
          places(begin) {
        stream.reset();
    }

    // Returns whether there was no error.
    bool Print() {
        const char* from = PassBlanks(begin);
        for (; parser.Get(); from = PassBlanks(parser.Cptr())) {
            Progress();
            if (parser.Token().type == sdlError)
                PassError(from);
            PrintLine(from, KindOf(parser.Token()), {from, static_cast<std::size_t>(parser.Cptr() - from)});
        }
        if (*from) { // a string without its quote
            fine = false;
            PrintLine(from, "error", from);
        }
        return fine;
    }

private:
    void PrintLine(const char* from, const char* kind, std::string_view text) {
        places.MoveTo(from);
        places.Print(std::cout);
        std::cout << '\t' << kind << '\t' << terminal::Printable(text) << '\n';
    }

    // A character that begins no token stays unread; a string that a line ends is read up to there.
    void PassError(const char* from) {
        fine = false;
        if (parser.Cptr() > from)
            return;
        constexpr std::size_t kLongest = 4;
        const void* const end = std::memchr(from, 0, kLongest);
        const std::string_view rest(from,
                                    end ? static_cast<std::size_t>(static_cast<const char*>(end) - from) : kLongest);
        eSDLParserState state = parser.StateCurrent();
        state.position = from + utf8::FirstOf(rest).size;
        parser.StatePrev(state);
        parser.Back();
    }

    void Progress() {
        if (++tokens % terminal::kTokensBetweenProgress == 0)
            terminal::ShowProgress("reading " + ShownName(name), static_cast<unsigned long long>(parser.Cptr() - begin),
                                   size);
    }

    std::string name;
    std::unique_ptr<IO::eStream> stream;
    unsigned long long size;
    std::vector<eSDLKeyword*> keywords;
    eSDLParser parser;
    const char* begin;
    ePlaces places;
    unsigned tokens = 0;
    bool fine = true;
};

eEnd Tokens(const eTokensArguments& arguments) {
    eTokens tokens(arguments.file);
    const bool fine = tokens.Print();
    terminal::EndProgress();
    return fine ? eEnd::Fine : eEnd::Findings;
}

} // namespace

eVerb::eRun DeclareTokens(CLI::App* verb) {
    const auto arguments = std::make_shared<eTokensArguments>();
    verb->add_option("FILE", arguments->file, "the document")->required();
    return [arguments] { return Tokens(*arguments); };
}
