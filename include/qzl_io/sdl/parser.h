#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <qzl_base/stack_entry.h>
#include <qzl_base/strings.h>
#include <qzl_io/export.h>
#include <qzl_io/sdl/cipher.h>
#include <qzl_io/sdl/keyword.h>

namespace IO {
class eStream;
}

namespace xSDL {
struct eLexeme;
struct eTokenBegin;
} // namespace xSDL

class eSDLReader;

// Kinds of token of an SDL text.
enum eSDLParserLexType : int {
    sdlError = -1,     // a character that no token begins with, or a string broken by an end of line
    sdlNone = 0,       // nothing: the end of the text
    sdlIdent = 1,      // letters, digits and _ after a letter, _ or %; not in the current keyword table
    sdlKeyword = 2,    // the same, found in the current keyword table
    sdlString = 3,     // "text"
    sdlBlockStart = 4, // { and what directly follows it as a mark, as in {#mark
    sdlBlockEnd = 5,   // }
    sdlBlockId = 6,    // a keyword that was read as a block's identifier
    sdlOpen = 7,       // ( of a control block
    sdlClose = 8,      // ) of a control block
    sdlNumber = 9,     // asked for only: sdlInt or sdlFloat
    sdlFloat = 10,     // a number with a fraction or an exponent
    sdlInt = 11,       // an integer, decimal or hexadecimal
    sdlHex = 12,       // an integer beginning with 0x, delivered as sdlInt
    sdlOperator = 13   // * or /, or + or - that no digit follows
};

// One token. The values belong to the types named with them; for other types they hold what they held before.
struct eSDLParserToken {
    eSDLParserLexType type = sdlNone;
    std::string text;     // as in the source; of a string what stands between the quotes, of a block start its mark,
                          // of a hexadecimal integer its decimal text
    float floatValue = 0; // sdlFloat, sdlInt
    int intValue = 0;     // sdlInt; sdlFloat, truncated and kept within an int; sdlKeyword and sdlBlockId: identity
};

// A place in a text and the token before it.
struct eSDLParserState {
    eSDLParserToken token;
    int line = 1;                   // counted from 1
    const char* position = nullptr; // what is read next; null: no state
};

// A named text, as a `define` control block declares it.
struct eDefine {
    std::string name;
    std::string text;
};

// Cuts one SDL source into tokens. The whole text is kept in memory and ends at its first zero byte. A parser knows
// characters and keyword tables, nothing of nesting; it reports no bad input but delivers sdlError for the reader to
// judge. While it lives it tells its place to error reports (xDebug::eStackEntry).
//
// Between tokens stand blanks (space, tab, carriage return, line feed and the equals sign) and comments, from ; to the
// end of the line.
class QZL_IO_API eSDLParser : public xDebug::eStackEntry {
public:
    // Reads everything from the stream's position to its end, through the cipher if there is one, passes over a UTF-8
    // byte-order mark at its beginning (a second one is a character that no token begins with) and replaces each
    // %key by its value, key by key in ascending order. A stream that is Bad then is reported as "%1% - read error!"
    // with the name ("Stream" without one), and the constructor throws if the report returns. The name is the one that
    // diagnostic texts show; a parser with a name is a file's. The list of keyword tables is only referred to and must
    // outlive the parser's use; its last element, which may be null, is the table in force.
    eSDLParser(const std::string& name, IO::eStream& stream, const std::vector<eSDLKeyword*>& keywords,
               const std::map<eStringKey, eStringKey>& parameters, std::shared_ptr<eSDLCipher> cipher);
    // Over a copy of the define's text as it is, named "define 'NAME'".
    eSDLParser(const eDefine& define, const std::vector<eSDLKeyword*>& keywords,
               const std::map<eStringKey, eStringKey>& parameters);
    // At the same place of a text of its own.
    eSDLParser(const eSDLParser& other);
    eSDLParser& operator=(const eSDLParser&) = delete;
    ~eSDLParser() override;

    // The name in double quotes, empty without a name.
    std::string DSE_Title() const override;
    // ", " and the line number.
    std::string DSE_Brief() const override;
    // GetContext, of which no more than 100 characters of a line before and behind the place ("..." stands for the
    // rest); or that the file could not be opened or read, and why.
    std::string DSE_Full() const override;

    // Cuts the next token. False at the end of the text, and the token's type is then sdlNone. A character that no
    // token begins with stays unread, so that the same sdlError comes again.
    bool Get();

    // Returns to the state before the last Get. Once only: a second call does nothing until the next Get.
    void Back();

    // The current token, the caller's to change. The reference stays that of the current token as it changes.
    eSDLParserToken& Token() {
        if (!watched)
            Watch();
        return current.token;
    }
    const eSDLParserState& StateCurrent() const;

    // Overwrites the state to which Back returns. Its position must point into this parser's text or be null.
    void StatePrev(const eSDLParserState& state);

    // Reads (...) at the read position, straight from the text, and returns what stands between the parentheses: no
    // trimming, no nesting, no escapes; line feeds in it are not counted. Reports "'(' required" when the next
    // character is another one and "')' required" when the text has no ) behind it, and throws if the report returns.
    std::string GetParameter();

    // Five lines of text at most, from the one that holds the read position, each with its number and without carriage
    // returns; the byte 171 stands before the character at the read position.
    std::string GetContext() const;

    const std::string& Name() const { return name; }
    int Line() const { return current.line; }
    bool IsFile() const { return isFile; }
    // The read position in the text, which ends with a zero.
    const char* Cptr() const { return current.position; }

protected:
    // Gives the current token, as its type and text stand, its final type, text and values: a keyword is looked up, a
    // block start loses its first character, a number is converted, a hexadecimal one becomes an integer.
    void AnalyseToken();

    // Replaces %key by its value in the text, for each pair in the order of the keys, and starts over at the text's
    // beginning. No pairs change nothing.
    void ProcessParams(const std::map<eStringKey, eStringKey>& parameters);

private:
    friend class eSDLReader;

    // Where a token's text is: still in the source, or also in the token. A text in the token that differs from the
    // source, or may come to, has to be kept when the token becomes the previous one.
    struct eTokenText {
        enum eHome { Source, Copied, Own };

        std::string_view source;
        eHome home = Source;
    };

    // For a reader, whose other sources a read error names too.
    eSDLParser(const eSDLReader* reader, const std::string& name, IO::eStream& stream,
               const std::vector<eSDLKeyword*>& keywords, const std::map<eStringKey, eStringKey>& parameters,
               eSDLCipher* cipher);

    bool Cut();
    bool CutAny(xSDL::eTokenBegin begin);
    xSDL::eTokenBegin FindToken() const;
    const char* PassPlainNumber(const char* begin, xSDL::eLexeme* number) const;
    bool CutPlainInt(xSDL::eTokenBegin begin);
    bool CutPlainNumber(xSDL::eTokenBegin begin);
    bool CutPlainString(xSDL::eTokenBegin begin);
    bool CutWord(xSDL::eTokenBegin begin, const eSDLKeyword* table);
    bool CutPlainBlockStart(xSDL::eTokenBegin begin);
    bool CutBlockEnd(xSDL::eTokenBegin begin);
    char SeePlainToken(bool included);
    void SetInt(int value);
    void Accept(eSDLParserLexType type, int line, const char* begin, const char* end, const char* next);
    bool IsAsInSource() const;
    void Remember();
    void RememberText();
    void ForgetPrevious();
    void Analyse(const xSDL::eLexeme& lexeme);
    void AnalyseWord(std::string_view word);
    void AnalyseHex(std::string_view digits);
    void ReadText(const eSDLReader* reader, IO::eStream& stream, std::size_t size);
    void DecodeText(const eSDLReader* reader, IO::eStream& stream, std::size_t size, eSDLCipher& cipher);
    void CheckRead(const eSDLReader* reader, const IO::eStream& stream);
    void EndText();
    void Rewind();
    void JumpTo(const char* position, int line);

    // The current token's text, wherever it is; in the token; in the token and kept with it.
    std::string_view Text() const;
    const std::string& FilledText() const;
    void FillText() const;
    void CopyText() const;
    std::string& OwnText() const;
    void Watch() const;
    // The state to which Back returns, its text in place.
    eSDLParserState StateBefore() const;
    std::string TakeParameter(const eSDLReader* reader);
    std::string Listing(std::size_t around) const;
    [[noreturn]] void Fail(const eSDLReader* reader, int line, const std::string& message);

    mutable eSDLParserState current;
    eSDLParserState previous;
    bool isFile = false;
    std::string text; // the source and kTextEnd zeros, so that wide loads at any character of it stay inside
    const std::vector<eSDLKeyword*>* keywords;
    std::string name;
    mutable eTokenText currentText;
    eTokenText previousText;
    mutable std::string room;     // for the text of a token, when that needs more or less than it has
    mutable bool watched = false; // somebody may hold a reference to the current token, and may change it
    std::size_t passed = 0;       // bytes of the byte-order mark before the text
    std::string failure;          // what went wrong with the source's file, as one sentence
    bool escaped = false;         // the token just cut is a string that holds a backslash
};
