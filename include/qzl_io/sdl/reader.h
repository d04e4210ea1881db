#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include <qzl_base/strings.h>
#include <qzl_io/detail/unwinding.h>
#include <qzl_io/export.h>
#include <qzl_io/file_name.h>
#include <qzl_io/sdl/cipher.h>
#include <qzl_io/sdl/keyword.h>
#include <qzl_io/sdl/limits.h>
#include <qzl_io/sdl/parser.h>

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
// The application does not see comments, included files and control blocks. A control block is a comment, arithmetic
// such as (+ 1 2 3), which reads as one float, or one of the words include, define and mod with anything after it,
// which is skipped.
//
// Every syntax error is reported through xError::Error with a fixed message; the report's context shows the place. A
// source that could not be read to its end is reported when it is loaded, as "%1% - read error!" with its name, and the
// context gives the system's reason. If the error handler returns, the reader throws xError::eException itself: it
// never continues from a wrong place.
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

    // Read like the Get function of the type; char and short take the low bits of the integer.
    eSDLReader& operator>>(int& value);
    eSDLReader& operator>>(short& value);
    eSDLReader& operator>>(char& value);
    eSDLReader& operator>>(float& value);
    eSDLReader& operator>>(bool& value);
    eSDLReader& operator>>(std::string& value);
    eSDLReader& operator>>(std::wstring& value);
    // Append every string up to the first token of another type, which stays unread.
    eSDLReader& operator>>(eStrings& values);
    eSDLReader& operator>>(eStringsW& values);
    eSDLReader& operator>>(eSDLReader& (*manipulator)(eSDLReader&)) { return manipulator(*this); }

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

    // Unreads the last token, within one source. Only one token can be unread.
    void Back();

    // Skips the rest of the current block or control block, including nested ones, and its terminator, which stays
    // unread with keepTerminator. Reports "Block terminator expected!" at the end of the text and at a character that
    // begins no token.
    void SkipBlock(bool keepTerminator = false);

    // The last token read.
    const eSDLParserToken& Token() const;

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

    void CheckSignature(const char* signature, int notSDLLine);
    const std::string& ReadSignature(int notSDLLine);
    eSDLParserLexType Next();
    bool Cut();
    void RequireWithinLimit(const eSDLParser& parser);
    void RequireRoomForSource();
    char SeePlainToken();
    eSDLParserLexType NextWord();
    bool EnterBlock();
    // Whether there is a mark that the next block start would displace.
    bool AreMarksKept() const { return !blockMark.empty() || !previousBlockMark.empty(); }
    void Require(eSDLParserLexType type, int line, const char* message);
    void RequireString(int line);
    void RequireBlockEnd();
    bool SkipInSource(long long* depth);
    void Calculate();
    bool GetOperandOrEnd(eSDLParserToken* token);
    void TakeOperand(eSDLParserToken* token);
    void CheckControlWord();
    void TakePositional(std::map<eStringKey, eStringKey>* parameters);
    void TakeNamed(std::map<eStringKey, eStringKey>* parameters);
    void NoteUnopened(const eSDLParser& parser);
    void EnterSources() const;
    std::function<void()> EnteringSources() const;
    [[noreturn]] void Fail(int line, const std::string& message);

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
    std::vector<std::shared_ptr<eUnopened>> unopened; // left since the last report
    xSDL::eUnwinding unwinding;
};

// Reads a string as a file name.
QZL_IO_API eSDLReader& operator>>(eSDLReader& reader, eFileName& value);

// Read one token of the block structure, as in reader >> begb. A reader executes control blocks itself and never
// returns their parentheses, so begc and endc report on every source.
QZL_IO_API eSDLReader& begb(eSDLReader& reader); // {: "Block start expected!"
QZL_IO_API eSDLReader& endb(eSDLReader& reader); // }: "Block terminator expected!"
QZL_IO_API eSDLReader& begc(eSDLReader& reader); // (: "Control Block start expected!"
QZL_IO_API eSDLReader& endc(eSDLReader& reader); // ): "Control Block terminator expected!"
