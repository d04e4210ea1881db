// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <qzl_base/diagnostic.h>
#include <qzl_base/stack_entry.h>
#include <qzl_base/strings.h>
#include <qzl_io/detail/current_token.h>
#include <qzl_io/export.h>
#include <qzl_io/sdl/cipher.h>
#include <qzl_io/sdl/keyword.h>
#include <qzl_io/sdl/limits.h>
#include <qzl_io/sdl/token.h>

namespace IO {
class eStream;
}

class eSDLReader;

namespace xSDL {
class eSourcePlaces;
}

// A named text, as declared by a `define` control block.
struct eDefine {
    std::string name;
    std::string text;
};

// Cuts one SDL source into tokens. The whole text is kept in memory and ends at its first zero byte. A parser knows
// characters and keyword tables, but no nesting; it does not report bad input but returns sdlError, which the reader
// judges, also for a token whose text exceeds the limit. During its lifetime it shows its place in error reports
// (xDebug::eStackEntry).
//
// Tokens are separated by blanks (space, tab, carriage return, line feed and the equals sign) and comments, from ; to
// the end of the line.
class QZL_IO_API eSDLParser : public xDebug::eStackEntry {
public:
    // A parser of the stream's content from its position to its end, all of which is read at once: deciphered if there
    // is a cipher, without a UTF-8 byte-order mark at the beginning (a second one is a character that begins no token),
    // and with each %key replaced by its value, key by key in ascending order. If the stream is then Bad, "%1% - read
    // error!" is reported with the name ("Stream" without one), and the constructor throws if the report returns.
    // Diagnostic texts show the name; a parser with a name reads a file. The list of keyword tables is not copied and
    // must outlive the parser; its last element, which may be null, is the current table.
    eSDLParser(const std::string& name, IO::eStream& stream, const std::vector<eSDLKeyword*>& keywords,
               const std::map<eStringKey, eStringKey>& parameters, std::shared_ptr<eSDLCipher> cipher);
    // Reports "Source limit exceeded!", before anything is read if the stream holds more than the limit, and throws if
    // the report returns. The depth of includes is up to the reader.
    eSDLParser(const std::string& name, IO::eStream& stream, const std::vector<eSDLKeyword*>& keywords,
               const std::map<eStringKey, eStringKey>& parameters, std::shared_ptr<eSDLCipher> cipher,
               const eSDLLimits& limits);
    // A parser of a copy of the define's text, unchanged, named "define 'NAME'".
    eSDLParser(const eDefine& define, const std::vector<eSDLKeyword*>& keywords,
               const std::map<eStringKey, eStringKey>& parameters);
    // Likewise reports "Source limit exceeded!".
    eSDLParser(const eDefine& define, const std::vector<eSDLKeyword*>& keywords,
               const std::map<eStringKey, eStringKey>& parameters, const eSDLLimits& limits);
    // A parser at the same place in its own copy of the text.
    eSDLParser(const eSDLParser& other);
    eSDLParser& operator=(const eSDLParser&) = delete;
    ~eSDLParser() override;

    // The name in double quotes; empty without a name.
    std::string DSE_Title() const override;
    // ", " and the line number.
    std::string DSE_Brief() const override;
    // GetContext, with at most 1000 characters of a line on either side of the place ("..." stands for the rest); or
    // that the file could not be opened or read, and why.
    std::string DSE_Full() const override;

    // Cuts the next token. At the end of the text, returns false, and the token's type is sdlNone. A character that
    // begins no token stays unread, so the same sdlError comes again; likewise a token that exceeds the limit.
    bool Get();

    // Returns to the state before the last Get. A second call does nothing until the next Get.
    void Back();

    // The current token, which the caller may change. The reference always refers to the current token.
    eSDLParserToken& Token() {
        if (!current.IsLent())
            Lend();
        return current.Token();
    }
    const eSDLParserState& StateCurrent() const;

    // Replaces the state to which Back returns. Its position must point into this parser's text or be null.
    void StatePrev(const eSDLParserState& state);

    // Reads (...) at the read position, directly from the text, and returns the text between the parentheses: it is not
    // trimmed, and nesting, escapes and line feeds in it do not count. Reports "'(' required" if the next character is
    // another one, "')' required" if the rest of the text has no ), and "Token limit exceeded!" if the text exceeds the
    // limit of tokens, and throws if the report returns.
    std::string GetParameter();

    // At most five lines of text, beginning with the one that contains the read position, each with its number and
    // without carriage returns. The byte 171 precedes the character at the read position.
    std::string GetContext() const;

    const std::string& Name() const { return name; }
    int Line() const { return current.Line(); }
    bool IsFile() const { return isFile; }
    // The read position in the text, which ends with a zero.
    const char* Cptr() const { return current.Position(); }

protected:
    // Gives the current token, from its type and text, its final type, text and values: looks up a keyword, removes the
    // first character of a block start, converts a number, and makes a hexadecimal number an integer.
    void AnalyseToken();

    // Replaces each %key in the text by its value, in the order of the keys, and restarts at the beginning of the text.
    // Without pairs, does nothing. Reports "Source limit exceeded!" before the text would exceed the limit, and throws
    // if the report returns.
    void ProcessParams(const std::map<eStringKey, eStringKey>& parameters);

private:
    friend class eSDLReader;

    template <bool isNear>
    class eCutter;
    // Called before a report is made. A reader uses it to put its other sources on the stack, so that the report names
    // them, too. Returns where this source was included, innermost first.
    using eBeforeReport = std::function<std::vector<xError::ePlace>()>;

    eSDLParser(const std::string& name, IO::eStream& stream, const std::vector<eSDLKeyword*>& keywords,
               const std::map<eStringKey, eStringKey>& parameters, eSDLCipher* cipher, const eSDLLimits& limits,
               const eBeforeReport& beforeReport);

    void LimitTokens(unsigned long long bytes);
    void RequireSourceOf(unsigned long long size, const eBeforeReport& beforeReport);
    void ReplaceParameters(const std::map<eStringKey, eStringKey>& parameters, const eBeforeReport& beforeReport);

    void ReadText(IO::eStream& stream, std::size_t size, const eBeforeReport& beforeReport);
    void DecodeText(IO::eStream& stream, std::size_t size, eSDLCipher& cipher, const eBeforeReport& beforeReport);
    void FailToRead(const IO::eStream& stream, const eBeforeReport& beforeReport);
    void EndText();
    void Rewind();
    void PlacePlainNumbers();
    // From now on the reader's own steps see every number, to check it.
    void CheckNumbers();

    bool Cut();
    bool CutAny(int beginLine, const char* begin);
    const eSDLKeyword* Keywords() const { return keywords->empty() ? nullptr : keywords->back(); }
    std::string TakeParameter(const eBeforeReport& beforeReport);
    void Lend() const;

    std::string Listing(std::size_t around) const;

    // The text without the byte-order mark and the zeros, and the current token in it.
    std::string_view Source() const;
    std::string_view TokenInSource() const;
    xSDL::eSourcePlaces& Places() const;
    xError::ePlace PlaceAt(std::size_t offset, int line) const;
    xError::eExcerpt ExcerptAt(xError::ePlace place, std::size_t size) const;
    // The current token's place; with the line around it; and what the token is, in words.
    xError::ePlace Place() const;
    xError::eExcerpt Excerpt() const;
    std::string Found() const;
    // The opening quote, if the last token read was a string in which the text ends; otherwise null.
    const char* UnendedString() const;
    std::string CharacterAt(const char* at) const;
    xError::eExcerpt Beginning() const;
    xError::eDiagnostic Diagnose(std::string message, std::string expected) const;
    // Whether a place that was found before is in this source; and its line, with the token marked that begins there.
    bool Has(const xError::ePlace& place) const;
    xError::eExcerpt ExcerptOf(const xError::ePlace& place) const;
    // The innermost block of this source that is open where reading stands, without the `closed` innermost ones. If
    // there is none, false, and `closed` becomes the number of blocks that have been closed around this source.
    bool FindOpenBlock(std::size_t* closed, xError::eExcerpt* found) const;

    [[noreturn]] void FailForSize(unsigned long long size, const eBeforeReport& beforeReport);
    [[noreturn]] void FailAt(const char* at, int line, xError::eDiagnostic diagnostic,
                             const eBeforeReport& beforeReport);
    [[noreturn]] void Fail(int line, xError::eDiagnostic diagnostic, const eBeforeReport& beforeReport);

    mutable xSDL::eCurrentToken current; // a request for the state may be the first to need its text in the token
    bool isFile = false;
    std::string text; // the source and kTextEnd zeros, so that wide loads from any character of it stay inside
    const char* plainNumbers = nullptr; // where numbers may be cut without checks: from the text's begin, or its end
    bool checksNumbers = false;
    const std::vector<eSDLKeyword*>* keywords;
    std::string name;
    std::size_t passed = 0; // size of the byte-order mark before the text
    std::string failure;    // what went wrong with the file of the source, as one sentence
    unsigned long long sourceLimit = eSDLLimits::kNone;
    bool escaped = false; // the token just cut is a string that contains a backslash
    bool tooLong = false; // if the token just cut is sdlError: it is one that exceeds the limit
    mutable std::unique_ptr<xSDL::eSourcePlaces> places; // made when a place is first asked for
    // For the first source of a reader, on behalf of the reader and its copies: whether the destructor has nothing to
    // report any more, and whether that is so after a report.
    bool finished = false;
    bool reportsOnce = false;
};
