// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include <qzl_base/diagnostic.h>
#include <qzl_base/strings.h>
#include <qzl_io/detail/unwinding.h>
#include <qzl_io/detail/value_types.h>
#include <qzl_io/export.h>
#include <qzl_io/file_name.h>
#include <qzl_io/sdl/cipher.h>
#include <qzl_io/sdl/keyword.h>
#include <qzl_io/sdl/limits.h>
#include <qzl_io/sdl/names.h>
#include <qzl_io/sdl/parser.h>

namespace xSDL {

struct eCheck;

// The token that holds a value of the type; sdlNone if it takes several, or if readers do not read the type.
template <class T>
consteval eSDLParserLexType TokenOf() {
    if constexpr (IO::eOneOf<T, float, double>)
        return sdlNumber;
    else if constexpr (IO::eOneOf<T, bool, char, short, int, long long, unsigned long long> || IO::eLongOf64Bits<T>)
        return sdlInt;
    else if constexpr (IO::eOneOf<T, std::string, std::wstring, std::u8string, eFileName> || xStandard::ePath<T>)
        return sdlString;
    else
        return sdlNone;
}

} // namespace xSDL

// What eSDLReader::Finish does with text after the last }.
enum class eSDLRest : bool { Pass, Refuse };

// Reads an SDL source value by value: the application's calls are the grammar.
//
//     eSDLReader reader(eFileName("scene.sdl"), "scene", nullptr);   // {scene
//     reader.PushKeywords(sceneWords);
//     while (!reader.End()) {
//         reader.GetBlock(lightWord.id);                             //     {light "lamp 1" 1.5 3}
//         std::string name = reader.GetString();
//         float power = reader.GetFloat();
//         int count = reader.GetInt();
//         reader >> endb;
//     }                                                              // } is read by the destructor
//
// Blocks in any order, of which some may be unknown, values that may be missing, and words that stand for values:
//
//     for (reader.GetBlock(lightWord.id); !reader.End();)
//         switch (reader.NextBlock()) {
//         case powerWord.id: ...
//         default:                                               // names it and skips it
//             std::cerr << reader.NextBlockName() << " is unknown\n";
//             (reader >> begb).SkipBlock();
//         }
//     float power = 100; reader.TryGet(power);                    // stays 100 if no number is next
//     eShading shading = reader.GetName(kShadings);               // names.h
//
// The application does not see comments, included files and control blocks. A control block is a comment, arithmetic
// such as (+ 1 2 3), which reads as one float, or one of the words include, define and mod with anything after it,
// which is skipped.
//
// Every syntax error is reported through xError::Error with a fixed message; the report's context shows the place, and
// its diagnostic (xError::eReport) has place, line, what was expected and what was found as fields. An error in which a
// block is not closed when the text ends also tells where the innermost one of these begins. A source that could not be
// read to its end is reported when it is loaded, as "%1% - read error!" with its name, and the context gives the
// system's reason. If the error handler returns, the reader throws xError::eException itself: it never continues from a
// wrong place.
//
// Copies have the same state and read from the same sources, which close with the last copy; each copy looks up
// keywords in its own tables. A reader and its copies together are used by one thread at a time.
class QZL_IO_API eSDLReader {
public:
    // Numbers of which the last one, if it is not zero, admits blocks whose marks contain two #, such as {##x and
    // {#a#b.
    using eGrate = std::vector<int>;

    static const char* const defaultError; // "unexpected token"

    // A reader of a file that begins with {SIGNATURE, ignoring letter case, which the constructor reads. The destructor
    // expects the matching }. Reports "Not SDL file!" (also if there is no file), "Identifier expected!" or "File
    // signature mismatch (read '%s' instead of '%s')".
    eSDLReader(const eFileName& file, const char* signature, std::shared_ptr<eSDLCipher> cipher);
    eSDLReader(const eFileNameW& file, const char* signature, std::shared_ptr<eSDLCipher> cipher);
    // A reader of a file without a signature, with a first keyword table or none. A file that cannot be opened is an
    // empty source.
    eSDLReader(const eFileName& file, eSDLKeyword* keywords, std::shared_ptr<eSDLCipher> cipher);
    eSDLReader(const eFileName& file, std::shared_ptr<eSDLCipher> cipher);
    eSDLReader(const eFileNameW& file, std::shared_ptr<eSDLCipher> cipher);
    // A reader of the stream's content from its position on. The stream remains the caller's and may be destroyed at
    // once.
    eSDLReader(IO::eStream* stream, std::shared_ptr<eSDLCipher> cipher);

    // Likewise, with limits for these and all included sources. What exceeds one is reported, and nothing more is read:
    // a source ("Source limit exceeded!", before it is loaded; if its parameters make it larger, before they do), a
    // token ("Token limit exceeded!"; the tokens of a block that is skipped do not count), or a source pushed on too
    // many others ("Include limit exceeded!", before its file is opened).
    eSDLReader(const eFileName& file, const char* signature, std::shared_ptr<eSDLCipher> cipher,
               const eSDLLimits& limits);
    eSDLReader(const eFileNameW& file, const char* signature, std::shared_ptr<eSDLCipher> cipher,
               const eSDLLimits& limits);
    eSDLReader(const eFileName& file, eSDLKeyword* keywords, std::shared_ptr<eSDLCipher> cipher,
               const eSDLLimits& limits);
    eSDLReader(const eFileName& file, std::shared_ptr<eSDLCipher> cipher, const eSDLLimits& limits);
    eSDLReader(const eFileNameW& file, std::shared_ptr<eSDLCipher> cipher, const eSDLLimits& limits);
    eSDLReader(IO::eStream* stream, std::shared_ptr<eSDLCipher> cipher, const eSDLLimits& limits);

    eSDLReader(const eSDLReader& other);
    eSDLReader& operator=(const eSDLReader& other);

    // With a signature and CheckEOF on, reads } and reports "Block terminator expected!" if it is not next; of several
    // copies, only the last one does. While another exception unwinds the stack, it reads and reports nothing. The
    // exception of a report leaves the destructor after everything has been released.
    virtual ~eSDLReader() noexcept(false);

    // --- Values. Each function reads one token and reports the given message if it is of another kind. ---

    int GetInt();                   // "Integer expected!"
    float GetFloat();               // from either kind of number: "Number expected!"
    bool GetBool();                 // an integer, not 0; if no number is next, true, and nothing is read:
                                    // "Integer expected!" for a float
    const std::string& GetString(); // escapes converted; valid until the next read: "String expected!"
    std::wstring GetStringW();      // from UTF-8: "String expected!"
    const std::string& GetIdent(bool lower = false); // a word, keyword or not, its ASCII letters lowered on request;
                                                     // valid until the next read: "Identifier expected!"
    int GetKeyword();                                // the id of a keyword: "unexpected token"
    // Returns a token that Check accepts for the type, or any token for 0: "unexpected token". Valid until the next
    // read.
    const eSDLParserToken& GetToken(eSDLParserLexType type = sdlNone);
    // Reads {KEYWORD with that id, or any for 0, and returns the id. "Block start expected!", "Invalid block
    // identifier!"
    int GetBlock(int id = 0);
    // Reads {IDENTIFIER and returns the identifier, whatever it is; valid until the next read. "Not SDL file!",
    // "Identifier expected!"
    const std::string& GetSignature();

    // Numbers of 64 bits, read exactly. An integer out of range gives the nearest one, a hexadecimal integer its low 64
    // bits without a sign. A number that is too large for a double gives an infinity, one that is too small a zero. The
    // value of a calculation has the 32 bits of a float.
    long long GetInt64();           // "Integer expected!"
    unsigned long long GetUint64(); // "Integer expected!"
    double GetDouble();             // from either kind of number: "Number expected!"

    // Read like the Get function of the type; char and short take the low bits of the integer.
    eSDLReader& operator>>(int& value);
    eSDLReader& operator>>(short& value);
    eSDLReader& operator>>(char& value);
    eSDLReader& operator>>(float& value);
    eSDLReader& operator>>(long long& value);
    eSDLReader& operator>>(unsigned long long& value);
    template <IO::eLongOf64Bits T>
    eSDLReader& operator>>(T& value);
    eSDLReader& operator>>(double& value);
    eSDLReader& operator>>(bool& value);
    eSDLReader& operator>>(std::string& value);
    eSDLReader& operator>>(std::wstring& value);
    eSDLReader& operator>>(std::u8string& value);
    // Append every string up to the first token of another type, which stays unread.
    eSDLReader& operator>>(eStrings& values);
    eSDLReader& operator>>(eStringsW& values);
    eSDLReader& operator>>(eSDLReader& (*manipulator)(eSDLReader&)) { return manipulator(*this); }

    // The value of the word that is next, from a table (names.h): "Identifier expected!", or "Unknown name '%1%'!" with
    // the word, and with "Did you mean '%2%'?" if a name of the table is near.
    template <xSDL::eNames T>
    xSDL::eNamed<T> GetName(const T& names);

    // Whether out-of-range numbers are reported instead of changed: "%1% is out of range!" with the number, if an
    // integer does not fit into the type that is read, a number too large for a float or double would be an infinity,
    // or one too small zero. Also for the integers of a calculation and those read as floats. A hexadecimal integer
    // fits if its digits have no more bits than the type. Initially off.
    void CheckRange(bool check);
    bool CheckRange() const { return checkRange; }

    // --- Values that may be missing: false if the next token is not what is asked for; then nothing is read or
    // reported, and the value does not change. ---

    // For every type that >> reads from one token: an integer for bool and the integer types, either kind of number for
    // float and double, a string for texts and file names.
    template <class T>
    requires(xSDL::TokenOf<T>() != sdlNone) bool TryGet(T& value);
    // A word, keyword or not.
    bool TryGetIdent(std::string& value);
    // A word of the table.
    template <xSDL::eNames T>
    bool TryGetName(const T& names, xSDL::eNamed<T>& value);
    // The keyword with that id.
    bool TryGetKeyword(int id);
    // {KEYWORD with that id.
    bool TryGetBlock(int id);

    // --- Looking ahead and structure ---

    // Reads one token and tells whether it is of the type: sdlIdent also accepts keywords, sdlKeyword requires the id
    // unless it is 0, sdlNumber accepts either kind of number, and any other type only itself.
    bool Check(eSDLParserLexType type, int id = 0);
    // Tells what Check would return, without reading the token.
    bool Test(eSDLParserLexType type, int id = 0);
    bool Test(int id) { return Test(sdlKeyword, id); }
    // Whether a block is next, and whether the current block ends. Nothing is read.
    bool Start();
    bool End();

    // The id in the current table of the block that is next, as GetBlock would return it, and its name as written: 0
    // and empty if no block is next; 0 if the name is not a keyword. Nothing is read. The name is valid until the next
    // read.
    int NextBlock();
    std::string_view NextBlockName();

    // Unreads the last token, within one source. Only one token can be unread.
    void Back();

    // Skips the rest of the current block or control block, including nested ones, and its terminator, which stays
    // unread with keepTerminator. Reports "Block terminator expected!" at the end of the text and at a character that
    // begins no token.
    void SkipBlock(bool keepTerminator = false);

    // The last token read.
    const eSDLParserToken& Token() const;

    // --- Places and the application's own errors ---

    // Where the token that Token tells begins, with its brace or quote. At the end of the text, where that is, or the
    // quote of a string that does not end; before the first token of a source, where the source begins. Offsets count
    // in the text as it is read: from where the stream stood, deciphered, with parameters replaced.
    //
    // The time does not depend on how much has been read. A line of more than 1 KiB is counted once.
    xError::ePlace Place() const;
    // Where the current block begins: its {, in whatever source. The blocks are counted from the beginning of each open
    // source, as if none had been skipped, so the first call takes time linear in what has been read, and a call after
    // that for what has been read since. A block that an included source has left open at its end is not known. If no
    // block is open, where the first source begins.
    xError::ePlace BlockPlace() const;

    // Reports the application's own error, such as "radius must be positive", at the place of the last token read, as
    // the reader reports its errors: with the context, and with xError::eException if the report returns. Then the
    // destructor reports nothing.
    [[noreturn]] void Complain(const std::string& message);
    // Likewise, at a place that Place or BlockPlace returned. The diagnostic shows its line if its source is still
    // open.
    [[noreturn]] void Complain(const std::string& message, const xError::ePlace& place);

    // Reads the last } as the destructor would, and reports as it would if that is not next: with a signature and
    // CheckEOF on. For callers that want the report, and its exception, where they can handle it; the destructor of the
    // reader or its last copy then reports nothing, whatever was found. With eSDLRest::Refuse, also reports "Text after
    // the end!" unless the source then ends; comments, control blocks without a value and hidden blocks may follow. A
    // second call expects no }.
    void Finish(eSDLRest rest = eSDLRest::Pass);
    // From now on, a report of the reader or of a copy is the last one: after it, the destructor reports nothing. By
    // default an error that is caught while the reader lives may be followed by the destructor's.
    void ReportOnce();

    // The last table pushed is the current one; it is null if there is none. Tables remain the caller's.
    void PushKeywords(eSDLKeyword* table) { keywords.push_back(table); }
    void PopKeywords();
    const eSDLKeyword* Keywords() const { return keywords.empty() ? nullptr : keywords.back(); }

    // Whether the destructor expects the } of the signature's block. Initially on.
    void CheckEOF(bool check) { checkAtEnd = check; }
    bool CheckEOF() const { return checkAtEnd; }

    eGrate& Grate() { return grate; }

    // Continues with the content of the file, and after that with the current source. The file is closed when this
    // returns. A file that cannot be opened is an empty source: reading continues with the current source, and the
    // context of the reader's next report names the file and says why it could not be opened.
    void Include(const eFileName& file);

    // The calling thread's list of mode names, initially empty, for the application's use.
    static eStrings& LoadingModes();

protected:
    // Resets the flags to those of a new reader.
    void Init();

    // Reads one token, as every operation does: leaves sources that have ended and skips hidden blocks and control
    // blocks. False at the end of the last source.
    bool Get();

    // Opens the file for a parser that the caller owns and passes to PushParser. Reports "Source limit exceeded!", and
    // "Include limit exceeded!" if there is no room for another source.
    eSDLParser* NewParser(const eFileName& file, const std::map<eStringKey, eStringKey>& parameters);
    eSDLParser* NewParser(const eFileNameW& file);
    // Takes ownership of the parser and makes it the current source, with the reader's limit of tokens; leaves the
    // current source, if there is one. Reports "Include limit exceeded!"; then the parser has been destroyed.
    void PushParser(eSDLParser* parser);
    void PopParser();
    // The current source, which exists while the reader is in use.
    eSDLParser& Parser() const;

    // Named texts for a derived reader that expands defines itself; empty unless it fills the map.
    std::map<eStringKey, eDefine>& Defines() { return defines; }

    // Reads an argument list, from after its ( up to its ). `args 7 "x"` gives "0" -> 7, "1" -> "x" with its quotes;
    // `size(12) name(a b)` gives "size" -> 12, "name" -> a b. Reports "')' required" if another token ends the list.
    void GetParameters(std::map<eStringKey, eStringKey>* parameters);

    // Reads a number of either kind as a sdlFloat token. Reports "Number expected!".
    void GetOperand(eSDLParserToken* token);

    // Executes the control block whose ( was the last token. True if it has been read up to its ), false if it has
    // become a float, which is then the current token, and from which Back returns to before the (.
    bool ProcessControlBlock();

private:
    friend QZL_IO_API eSDLReader& begb(eSDLReader& reader);
    friend QZL_IO_API eSDLReader& endb(eSDLReader& reader);
    friend QZL_IO_API eSDLReader& begc(eSDLReader& reader);
    friend QZL_IO_API eSDLReader& endc(eSDLReader& reader);

    class eSkipping;
    class eUnopened;
    class eLookAhead;

    struct eBlockName {
        int id = 0;
        std::string_view name;
    };
    eBlockName SeeBlockName();
    template <class T>
    T GetSmall();
    using eCutter = eSDLParser::eCutter<false>;
    using eNearCutter = eSDLParser::eCutter<true>;
    int NextInt();
    float NextFloat();
    void NextString(const xSDL::eCheck& check);
    int ReadBlock(int id);
    void NextBlockEnd();
    template <class T>
    T NextInteger();
    std::string_view TakeWord();
    template <class T>
    void RequireFits(std::string_view number);
    void RequireFloatFits();

    void CheckSignature(const char* signature, const xSDL::eCheck& notSDL);
    const std::string& ReadSignature(const xSDL::eCheck& notSDL);
    eSDLParserLexType Next();
    bool Cut();
    void RequireWithinLimit(const eSDLParser& parser);
    void RequireRoomForSource();
    char SeePlainToken();
    eSDLParserLexType NextWord();
    eSDLParserLexType NextFarWord();
    bool EnterBlock();
    // Whether there is a mark that the next block start would displace.
    bool AreMarksKept() const { return !blockMark.empty() || !previousBlockMark.empty(); }
    void Require(eSDLParserLexType type, const xSDL::eCheck& check);
    void RequireString(const xSDL::eCheck& check);
    void RequireBlockEnd();
    bool IsEndExpected() const;
    bool SkipInSource(long long* depth);
    void Calculate(const char* open);
    bool GetOperandOrEnd(eSDLParserToken* token);
    void TakeOperand(eSDLParserToken* token);
    void CheckControlWord();
    void TakePositional(std::map<eStringKey, eStringKey>* parameters);
    void TakeNamed(std::map<eStringKey, eStringKey>* parameters);
    void NoteUnopened(const eSDLParser& parser);
    void EnterSources() const;
    std::function<std::vector<xError::ePlace>()> EnteringSources(std::size_t outer) const;
    std::vector<xError::ePlace> PlacesIn(std::size_t outer) const;

    bool FindOpenBlock(xError::eExcerpt* found) const;
    xError::eDiagnostic Diagnose(std::string message, std::string expected) const;
    std::string NearestKeyword() const;
    void NoteReport() const;
    [[noreturn]] void Fail(const xSDL::eCheck& check);
    [[noreturn]] void FailSignature(const std::string& read, const std::string& expected);
    [[noreturn]] void FailBlock(int id);
    [[noreturn]] void FailToken(eSDLParserLexType type);
    [[noreturn]] void FailRange(std::string_view number, std::string expected);
    [[noreturn]] void FailName(const std::vector<std::string_view>& names);
    [[noreturn]] void Fail(int line, xError::eDiagnostic diagnostic);

    std::map<eStringKey, eDefine> defines;
    int skipDepth = 0; // above 0, control blocks and marked blocks are returned unchanged
    std::vector<std::shared_ptr<eSDLParser>> parsers;
    std::vector<eSDLKeyword*> keywords;
    bool signatureBlock = false;
    bool checkAtEnd = true;
    bool controlFlag = false; // cleared by Init and by every )
    eGrate grate;
    std::string blockMark;
    std::string previousBlockMark;
    std::shared_ptr<eSDLCipher> cipher;
    eSDLLimits sourceLimits;
    bool checkRange = false;
    std::vector<std::shared_ptr<eUnopened>> unopened; // left since the last report
    xSDL::eUnwinding unwinding;
};

// Reads a string as a file name.
QZL_IO_API eSDLReader& operator>>(eSDLReader& reader, eFileName& value);
// Reads a string as a std::filesystem::path: its bytes where paths consist of bytes, and else from UTF-8.
template <xStandard::ePath T>
eSDLReader& operator>>(eSDLReader& reader, T& value) {
    if constexpr (xStandard::ePathOf<T, char>)
        value = reader.GetString();
    else
        value = reader.GetStringW();
    return reader;
}

// Read one token of the block structure, as in reader >> begb. A reader executes control blocks itself and never
// returns their parentheses, so begc and endc report on every source.
QZL_IO_API eSDLReader& begb(eSDLReader& reader); // {: "Block start expected!"
QZL_IO_API eSDLReader& endb(eSDLReader& reader); // }: "Block terminator expected!"
QZL_IO_API eSDLReader& begc(eSDLReader& reader); // (: "Control Block start expected!"
QZL_IO_API eSDLReader& endc(eSDLReader& reader); // ): "Control Block terminator expected!"

template <IO::eLongOf64Bits T>
eSDLReader& eSDLReader::operator>>(T& value) {
    if constexpr (std::is_signed_v<T>)
        value = static_cast<T>(GetInt64());
    else
        value = static_cast<T>(GetUint64());
    return *this;
}

template <xSDL::eNames T>
xSDL::eNamed<T> eSDLReader::GetName(const T& names) {
    if (const auto* entry = xSDL::FindName(names, TakeWord()))
        return entry->value;
    std::vector<std::string_view> known;
    for (const auto& entry : names)
        known.push_back(entry.name);
    FailName(known);
}

template <class T>
requires(xSDL::TokenOf<T>() != sdlNone) bool eSDLReader::TryGet(T& value) {
    if (!Test(xSDL::TokenOf<T>()))
        return false;
    *this >> value;
    return true;
}

template <xSDL::eNames T>
bool eSDLReader::TryGetName(const T& names, xSDL::eNamed<T>& value) {
    if (!Test(sdlIdent))
        return false;
    const auto* const entry = xSDL::FindName(names, TakeWord());
    if (!entry) {
        Back();
        return false;
    }
    value = entry->value;
    return true;
}
