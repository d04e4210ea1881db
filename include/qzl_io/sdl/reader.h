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
// Comments, included files and control blocks pass unseen: a control block is a comment, (+ 1 2 3) arithmetic that
// reads as one float, or one of the words include, define and mod with whatever follows, which is skipped.
//
// Every syntax error is reported through xError::Error with a fixed message; the report's context shows the place. A
// source that could not be read to its end is reported as "%1% - read error!" with its name by whatever loads it, and
// the context gives the system's reason. Where the error handler returns, the reader throws xError::eException itself:
// it never goes on from a wrong place.
//
// Copies have the same state and read from the same sources, which close with the last of them; each copy looks
// keywords up in its own tables. A reader is used by one thread at a time, and so are all its copies.
class QZL_IO_API eSDLReader {
public:
    // Numbers whose last one, when not zero, lets blocks with a mark of two # through, such as {##x and {#a#b.
    using eGrate = std::vector<int>;

    static const char* const defaultError; // "unexpected token"

    // Readers of a file that begins with {SIGNATURE, letter case ignored, which they read. The destructor expects the
    // matching }. They report "Not SDL file!" (also when there is no file), "Identifier expected!" or "File signature mismatch (read '%s' instead of
    // '%s')".
    eSDLReader(const eFileName& file, const char* signature, std::shared_ptr<eSDLCipher> cipher);
    eSDLReader(const eFileNameW& file, const char* signature, std::shared_ptr<eSDLCipher> cipher);
    // Readers of a file without a signature, with a first keyword table or none. A file that cannot be opened is an empty
    // source.
    eSDLReader(const eFileName& file, eSDLKeyword* keywords, std::shared_ptr<eSDLCipher> cipher);
    eSDLReader(const eFileName& file, std::shared_ptr<eSDLCipher> cipher);
    eSDLReader(const eFileNameW& file, std::shared_ptr<eSDLCipher> cipher);
    // A reader of what the stream holds from its position on. The stream stays the caller's and may go at once.
    eSDLReader(IO::eStream* stream, std::shared_ptr<eSDLCipher> cipher);

    eSDLReader(const eSDLReader& other);
    eSDLReader& operator=(const eSDLReader& other);

    // With a signature and CheckEOF on, reads } and reports "Block terminator expected!" when it is not next; of
    // several copies the last one does. While another exception is on its way it reads and reports nothing. The
    // exception of a report leaves the destructor, after everything has been released.
    virtual ~eSDLReader() noexcept(false);

    // --- Values. Each reads one token and reports the message given when it is of another kind. ---

    int GetInt();                   // "Integer expected!"
    float GetFloat();               // of either number: "Number expected!"
    bool GetBool();                 // an integer, not 0; true, and nothing read, when no number is next:
                                    // "Integer expected!" for a float
    const std::string& GetString(); // escapes converted; valid until the next read: "String expected!"
    std::wstring GetStringW();      // the same from UTF-8: "String expected!"
    const std::string& GetIdent(bool lower = false); // a word, keyword or not, its ASCII letters lowered on demand;
                                                     // valid until the next read: "Identifier expected!"
    int GetKeyword();                                // a keyword's identity: "unexpected token"
    // A token of the type as Check tests it, or of any type for 0: "unexpected token". Valid until the next read.
    const eSDLParserToken& GetToken(eSDLParserLexType type = sdlNone);
    // {KEYWORD with that identity, or any for 0; returns it. "Block start expected!", "Invalid block identifier!"
    int GetBlock(int id = 0);
    // {IDENTIFIER, whatever it is; valid until the next read. "Not SDL file!", "Identifier expected!"
    const std::string& GetSignature();

    // As the Get operation of the type; char and short take the low bits of the integer.
    eSDLReader& operator>>(int& value);
    eSDLReader& operator>>(short& value);
    eSDLReader& operator>>(char& value);
    eSDLReader& operator>>(float& value);
    eSDLReader& operator>>(bool& value);
    eSDLReader& operator>>(std::string& value);
    eSDLReader& operator>>(std::wstring& value);
    // Add every string up to the first token that is none, which stays unread.
    eSDLReader& operator>>(eStrings& values);
    eSDLReader& operator>>(eStringsW& values);
    eSDLReader& operator>>(eSDLReader& (*manipulator)(eSDLReader&)) { return manipulator(*this); }

    // --- Looking ahead and structure ---

    // Reads one token and tells whether it is of the type: sdlIdent takes keywords too, sdlKeyword asks for the
    // identity unless 0, sdlNumber takes either number, any other type takes itself.
    bool Check(eSDLParserLexType type, int id = 0);
    // The same without reading it.
    bool Test(eSDLParserLexType type, int id = 0);
    bool Test(int id) { return Test(sdlKeyword, id); }
    // Is a block next, does the current block end? Nothing is read.
    bool Start();
    bool End();

    // Unreads the last token. Once only, in one source.
    void Back();

    // Skips the rest of the current block or control block, nested ones included, and its terminator, which
    // keepTerminator leaves unread. Reports "Block terminator expected!" at the end of the text and at what is no
    // token.
    void SkipBlock(bool keepTerminator = false);

    // The token read last.
    const eSDLParserToken& Token() const;

    // The last table pushed is the one in force, null when there is none. Tables are the caller's.
    void PushKeywords(eSDLKeyword* table) { keywords.push_back(table); }
    void PopKeywords();
    const eSDLKeyword* Keywords() const { return keywords.empty() ? nullptr : keywords.back(); }

    // Does the destructor expect the signature block's }? On at first.
    void CheckEOF(bool check) { checkAtEnd = check; }
    bool CheckEOF() const { return checkAtEnd; }

    eGrate& Grate() { return grate; }

    // Goes on with the file's content and then with what follows here. The file is closed when this returns. One that
    // cannot be opened is an empty source: reading goes on with what follows, and the context of the reader's next
    // report names the file and says why it could not be opened.
    void Include(const eFileName& file);

    // The calling thread's list of mode names, empty at first, for the application's use.
    static eStrings& LoadingModes();

protected:
    // Puts the flags as they are in a reader just opened.
    void Init();

    // Reads one token as every operation does: ended sources are left, hidden blocks and control blocks passed. False
    // at the end of the last source.
    bool Get();

    // Opens the file and reads it as a parser that the caller owns and hands to PushParser.
    eSDLParser* NewParser(const eFileName& file, const std::map<eStringKey, eStringKey>& parameters);
    eSDLParser* NewParser(const eFileNameW& file);
    // Takes the parser over as the current source; leaves the current source, if there is one.
    void PushParser(eSDLParser* parser);
    void PopParser();
    // The current source. There is one as long as the reader is in use.
    eSDLParser& Parser() const;

    // Named texts for a derived reader that expands defines itself; empty unless it fills the map.
    std::map<eStringKey, eDefine>& Defines() { return defines; }

    // Reads an argument list up to its ), after its (. `args 7 "x"` gives "0" -> 7, "1" -> "x" with its quotes;
    // `size(12) name(a b)` gives "size" -> 12, "name" -> a b. Reports "')' required" when another token ends the list.
    void GetParameters(std::map<eStringKey, eStringKey>* parameters);

    // Reads a number of either kind as sdlFloat. Reports "Number expected!".
    void GetOperand(eSDLParserToken* token);

    // Executes the control block whose ( has been read last. True when it has been read up to its ), false when it has
    // become a float, which is the current token and from which Back returns to before the (.
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
    char SeePlainToken();
    eSDLParserLexType NextWord();
    bool EnterBlock();
    // Is there a mark that the next block start would displace?
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
    int skipDepth = 0; // above 0 control blocks and marked blocks are delivered as they stand
    std::vector<std::shared_ptr<eSDLParser>> parsers;
    std::vector<eSDLKeyword*> keywords;
    bool signatureBlock = false;
    bool checkAtEnd = true;
    bool controlFlag = false; // cleared by Init and by every )
    eGrate grate;
    std::string blockMark;
    std::string previousBlockMark;
    std::shared_ptr<eSDLCipher> cipher;
    std::vector<std::shared_ptr<eUnopened>> unopened; // left since the last report
    xSDL::eUnwinding unwinding;
};

// A string as a file name.
QZL_IO_API eSDLReader& operator>>(eSDLReader& reader, eFileName& value);

// Read one token of the block structure, as in reader >> begb. A reader executes control blocks itself and never
// delivers their parentheses, so begc and endc report on every source.
QZL_IO_API eSDLReader& begb(eSDLReader& reader); // {: "Block start expected!"
QZL_IO_API eSDLReader& endb(eSDLReader& reader); // }: "Block terminator expected!"
QZL_IO_API eSDLReader& begc(eSDLReader& reader); // (: "Control Block start expected!"
QZL_IO_API eSDLReader& endc(eSDLReader& reader); // ): "Control Block terminator expected!"
