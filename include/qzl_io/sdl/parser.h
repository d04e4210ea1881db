#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include <qzl_base/stack_entry.h>
#include <qzl_base/strings.h>
#include <qzl_io/detail/current_token.h>
#include <qzl_io/export.h>
#include <qzl_io/sdl/cipher.h>
#include <qzl_io/sdl/keyword.h>
#include <qzl_io/sdl/token.h>

namespace IO {
class eStream;
}

class eSDLReader;

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
    // A parser of what the stream holds from its position to its end: deciphered if there is a cipher, without a UTF-8
    // byte-order mark at its beginning (a second one is a character that no token begins with), and with each %key
    // replaced by its value, key by key in ascending order. All of it is read at once. A stream that is Bad then is reported as "%1% - read error!"
    // with the name ("Stream" without one), and the constructor throws if the report returns. The name is the one that
    // diagnostic texts show; a parser with a name is a file's. The list of keyword tables is only referred to and must
    // outlive the parser's use; its last element, which may be null, is the table in force.
    eSDLParser(const std::string& name, IO::eStream& stream, const std::vector<eSDLKeyword*>& keywords,
               const std::map<eStringKey, eStringKey>& parameters, std::shared_ptr<eSDLCipher> cipher);
    // A parser of a copy of the define's text as it is, named "define 'NAME'".
    eSDLParser(const eDefine& define, const std::vector<eSDLKeyword*>& keywords,
               const std::map<eStringKey, eStringKey>& parameters);
    // A parser at the same place of a text of its own.
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
        if (!current.IsLent())
            Lend();
        return current.Token();
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
    int Line() const { return current.Line(); }
    bool IsFile() const { return isFile; }
    // The read position in the text, which ends with a zero.
    const char* Cptr() const { return current.Position(); }

protected:
    // Gives the current token, as its type and text stand, its final type, text and values: a keyword is looked up, a
    // block start loses its first character, a number is converted, a hexadecimal one becomes an integer.
    void AnalyseToken();

    // Replaces %key by its value in the text, for each pair in the order of the keys, and starts over at the text's
    // beginning. No pairs change nothing.
    void ProcessParams(const std::map<eStringKey, eStringKey>& parameters);

private:
    friend class eSDLReader;

    class eCutter;
    // Called before a report is made: a reader, whose other sources the report names too, puts these on the stack.
    using eBeforeReport = std::function<void()>;

    eSDLParser(const std::string& name, IO::eStream& stream, const std::vector<eSDLKeyword*>& keywords,
               const std::map<eStringKey, eStringKey>& parameters, eSDLCipher* cipher,
               const eBeforeReport& beforeReport);

    void ReadText(IO::eStream& stream, std::size_t size, const eBeforeReport& beforeReport);
    void DecodeText(IO::eStream& stream, std::size_t size, eSDLCipher& cipher, const eBeforeReport& beforeReport);
    void CheckRead(const IO::eStream& stream, const eBeforeReport& beforeReport);
    void EndText();
    void Rewind();

    bool Cut();
    bool CutAny(int line, const char* begin);
    const eSDLKeyword* Keywords() const { return keywords->empty() ? nullptr : keywords->back(); }
    std::string TakeParameter(const eBeforeReport& beforeReport);
    void Lend() const;

    std::string Listing(std::size_t around) const;
    [[noreturn]] void Fail(int line, const std::string& message, const eBeforeReport& beforeReport);

    mutable xSDL::eCurrentToken current; // who asks for the state may be the first to need its text in the token
    bool isFile = false;
    std::string text; // the source and kTextEnd zeros, so that wide loads at any character of it stay inside
    const std::vector<eSDLKeyword*>* keywords;
    std::string name;
    std::size_t passed = 0; // bytes of the byte-order mark before the text
    std::string failure;    // what went wrong with the source's file, as one sentence
    bool escaped = false;   // the token just cut is a string that holds a backslash
};
