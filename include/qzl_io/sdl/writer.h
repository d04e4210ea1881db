// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <concepts>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include <qzl_base/strings.h>
#include <qzl_io/detail/unwinding.h>
#include <qzl_io/detail/value_types.h>
#include <qzl_io/export.h>
#include <qzl_io/file_name.h>
#include <qzl_io/sdl/cipher.h>
#include <qzl_io/sdl/ids.h>
#include <qzl_io/sdl/keyword.h>
#include <qzl_io/sdl/token.h>
#include <qzl_io/streams.h>

// Opens a block headed by the keyword `id` of the writer's current table.
struct block {
    int id;
};

// The name of the keyword `id`, written without quotes.
struct keyword {
    int id;
};

// A word, written unchanged and without quotes.
struct ident {
    const char* name;
};

// Writes SDL text: nested blocks, words, quoted strings, integers and floats, with tab indentation and CR LF line ends.
// The whole text is collected in memory and written to the target once, when the writer is closed, through the cipher
// if there is one. eSDLReader reads back what a writer wrote.
//
// Texts are 8-bit and end at their first NUL; wide texts are written as UTF-8. A null text is empty.
//
// Copies share one document: they write to the same text, each with its own keyword stack. The last of them to be
// destroyed closes the document. `Close` on any of them closes it for all; the others are then not open.
//
// A closed writer takes no items: writing to it reports "SDLWriter: Not open!" and throws.
//
// A file that was opened by name and cannot be saved is a warning. A stream that takes only a part of the text is not
// reported here. `Failure` tells of both.
class QZL_IO_API eSDLWriter {
public:
    // Turns the items into text. A writer passes every item to one.
    class QZL_IO_API eWriteStream {
    public:
        eWriteStream() = default;
        eWriteStream(const eWriteStream&) = delete;
        eWriteStream& operator=(const eWriteStream&) = delete;

        virtual ~eWriteStream();

        virtual void WriteString(const char* text) = 0;
        // A NaN or an infinity is written as 0 after the warning "Saving invalid floating number %1%. It was truncated
        // to 0".
        virtual void WriteFloat(float value) = 0;
        // In this class, only clears `formatFlag`.
        virtual void WriteInt(int value);
        // Writes the character of a token type: sdlBlockStart, sdlBlockEnd, sdlOpen or sdlClose. Any other type writes
        // nothing.
        virtual void WriteControl(int code) = 0;
        static constexpr int kNoKeyword = -1;
        // Writes a word, or a number of 64 bits. `id` is that of the keyword, or kNoKeyword for other words.
        virtual void WriteIdent(const char* name, int id) = 0;
        // Writes "#" and the text: directly after a block's opening, the block's mark. An empty text writes nothing.
        virtual void WriteHashed(const char* text) = 0;
        // Writes the text to `target`, through `cipher` if there is one, and empties it. Until it returns, neither the
        // cipher nor a handler of what the target reports may write to this text.
        virtual void Flush(IO::eStream* target, std::shared_ptr<eSDLCipher> cipher) = 0;
        // Called directly after a block's header: the block is removed if nothing else is written before it closes. In
        // this class, does nothing.
        virtual void MarkEmpty();

        // True: the next integer is written in hexadecimal. Each integer clears the flag.
        bool formatFlag = false;
        // True: the next item starts on a new line.
        bool newlinePending = false;
    };

    // A writer that is not open.
    eSDLWriter();
    explicit eSDLWriter(std::shared_ptr<eSDLCipher> cipher);

    // A writer to a file. A missing file is created empty; an existing one keeps its content until `Close` replaces it
    // in one step, as IO::eSaveFile does. A file that cannot be opened is not reported: `Opened` is then false, and
    // what is written is dropped when the writer closes.
    explicit eSDLWriter(const eFileName& path, std::shared_ptr<eSDLCipher> cipher = nullptr);
    explicit eSDLWriter(const eFileNameW& path, std::shared_ptr<eSDLCipher> cipher = nullptr);

    // A writer to a stream that remains the caller's and must live until the writer is closed.
    explicit eSDLWriter(IO::eStream* stream, std::shared_ptr<eSDLCipher> cipher = nullptr);

    eSDLWriter(const eSDLWriter& other);
    // Releases its own document first, and closes that if no copy is left.
    eSDLWriter& operator=(const eSDLWriter& other);

    // Closes the document if no copy is left, and may throw what that reports. While another exception unwinds the
    // stack, it reports nothing, and a file that was opened by name keeps its content.
    virtual ~eSDLWriter() noexcept(false);

    // Closes an open document first, which writes it. The cipher and the keyword tables stay.
    void Open(IO::eStream* stream);
    // False if the file cannot be opened.
    bool Open(const eFileName& path);
    bool Open(const eFileNameW& path);

    // True while the writer has a target.
    bool Opened() const { return document->target != nullptr; }

    // Why the target could not be opened, or why not all of the text arrived when the writer was closed; says nothing
    // if all of it did. Of a stream it is what the stream's Failure tells: that one may still hold bytes in its buffer,
    // so flush it and ask it again. Copies tell the same; `Open` forgets.
    IO::eFailure Failure() const { return document->failure; }

    // Writes the text to the target. A file that cannot be saved is reported as a warning with the system's reason; it
    // then has its old content. (On Windows, a file that is still open elsewhere after half a second cannot be saved
    // unless it was opened to be deleted meanwhile.) May be called again.
    void Close();

    // What is certain when `Close` has saved a file that was opened by name; OnDisk unless told otherwise.
    void SetSaveEnd(IO::eSaveEnd end) { saveEnd = end; }

    eWriteStream& Stream() { return *document->text; }

    // Makes `table` the current one; it must live as long as the writer uses it.
    void PushKeywords(eSDLKeyword* table);
    // Returns to the previous table.
    void PopKeywords();

    // An id that the current table lacks is reported as "SDLWriter: Unknown keyword ID!", and thrown if the report
    // returns; the "{" of a block has been written by then.
    eSDLWriter& operator<<(const block& value);
    eSDLWriter& operator<<(const keyword& value);
    eSDLWriter& operator<<(const ident& value);

    inline eSDLWriter& operator<<(const char* text);
    eSDLWriter& operator<<(const std::string& text) { return *this << text.c_str(); }
    eSDLWriter& operator<<(std::same_as<std::string_view> auto text) { return *this << std::string(text); }
    eSDLWriter& operator<<(std::same_as<std::u8string_view> auto text) {
        return *this << std::string(text.begin(), text.end());
    }
    eSDLWriter& operator<<(const std::same_as<std::u8string> auto& text) { return *this << std::u8string_view(text); }
    eSDLWriter& operator<<(const char8_t* text) { return *this << reinterpret_cast<const char*>(text); }
    eSDLWriter& operator<<(const std::wstring& text);
    // Each string is written on its own line.
    eSDLWriter& operator<<(const eStrings& texts);
    eSDLWriter& operator<<(const eStringsW& texts);

    // Characters are written as their numbers.
    eSDLWriter& operator<<(char value) { return *this << int{static_cast<signed char>(value)}; }
    eSDLWriter& operator<<(unsigned char value) { return *this << int{value}; }
    eSDLWriter& operator<<(bool value) { return *this << int{value}; }
    eSDLWriter& operator<<(short value) { return *this << int{value}; }
    eSDLWriter& operator<<(unsigned short value) { return *this << int{value}; }
    inline eSDLWriter& operator<<(int value);
    // Values above 2147483647 are written as the negative number with the same bits.
    eSDLWriter& operator<<(unsigned int value) { return *this << static_cast<int>(value); }
    inline eSDLWriter& operator<<(float value);
    // Numbers of 64 bits. A stream gets those that are no int as words. A double is the shortest text from which
    // GetDouble of a reader makes the same double, and GetFloat the float nearest to it; a NaN or an infinity is
    // written like that of a float.
    eSDLWriter& operator<<(long long value);
    eSDLWriter& operator<<(unsigned long long value);
    template <IO::eLongOf64Bits T>
    eSDLWriter& operator<<(T value);
    eSDLWriter& operator<<(double value);

    eSDLWriter& operator<<(eSDLWriter& (*manipulator)(eSDLWriter&)) { return manipulator(*this); }

    // Any other pointer would be written as a bool.
    eSDLWriter& operator<<(const void*) = delete;

protected:
    // Discards the document without writing it to the target.
    void Init();

private:
    class eTarget;
    class eStreamTarget;
    template <class eName>
    class eFileTarget;

    // The part that copies share. `text` is never null: a closed document has one that refuses every item.
    struct eDocument {
        eDocument();
        eDocument(eDocument&&) noexcept;
        eDocument& operator=(eDocument&&) noexcept;
        ~eDocument();

        std::unique_ptr<eTarget> target;
        std::shared_ptr<eWriteStream> text;
        IO::eFailure failure;
    };

    template <class eName>
    void StartFile(const eName& path);
    void Start(std::unique_ptr<eTarget> target, IO::eFailure failure = {});
    void Release();
    void CloseQuietly() noexcept;
    const char* KeywordName(int id) const;
    template <class T>
    eSDLWriter& WriteInteger(T value);

    std::shared_ptr<eDocument> document;
    std::vector<eSDLKeyword*> keywords;
    std::shared_ptr<eSDLCipher> cipher;
    IO::eSaveEnd saveEnd;
    xSDL::eUnwinding unwinding;
};

QZL_IO_API eSDLWriter& operator<<(eSDLWriter& writer, const eFileName& path);
// Writes the characters of a std::filesystem::path as a string, wide ones as UTF-8.
template <xStandard::ePath T>
eSDLWriter& operator<<(eSDLWriter& writer, const T& path) {
    return writer << path.native();
}

// The text of a writer. Every item passes one separator step, which writes a pending line break with its indentation,
// or a pending blank.
class QZL_IO_API eSDLTextStream : public eSDLWriter::eWriteStream, public std::enable_shared_from_this<eSDLTextStream> {
public:
    eSDLTextStream();
    ~eSDLTextStream() override;

    void WriteString(const char* text) override;
    void WriteFloat(float value) override;
    void WriteInt(int value) override;
    void WriteControl(int code) override;
    void WriteIdent(const char* name, int id) override;
    void WriteHashed(const char* text) override;
    void Flush(IO::eStream* target, std::shared_ptr<eSDLCipher> cipher) override;
    void MarkEmpty() override;

private:
    struct eFree {
        void operator()(char* block) const;
    };

    unsigned long long Size() const { return static_cast<unsigned long long>(end - text.get()); }
    unsigned long long Room() const { return static_cast<unsigned long long>(roomEnd - end); }
    unsigned long long Indentation() const { return newlinePending ? layout & kDepthMask : 0; }
    void ChangeDepth(unsigned by) { layout = (layout & ~kDepthMask) | ((layout + by) & kDepthMask); }

    char* Separate(unsigned long long room);
    char* BreakLine(char* to);
    char* MakeRoom(unsigned long long room);
    void Resize(unsigned long long capacity);
    char* PutEscapedAt(char* to, std::string_view characters);
    void WriteInvalid(float value);
    void PutStructure(char character);
    void OpenBlock();
    void CloseBlock();
    bool RemoveEmptyBlock();
    bool HandOver(IO::eStream& target);
    void WriteReleasing(IO::eStream& target);
    void Empty();

    static constexpr unsigned kDepthMask = 0xFFFF;
    static constexpr unsigned kSpacePending = 0x10000;

    // For each open block, the position where it began; a negative number is minus the position of an empty-block mark.
    eIds positions;
    // The nesting depth and kSpacePending.
    unsigned layout = 0;
    // The text so far. Its memory doubles like that of an IO::eMemoryStream, but is not cleared, and moves only where
    // the system cannot extend it.
    std::unique_ptr<char, eFree> text;
    char* end = nullptr;     // of the text
    char* roomEnd = nullptr; // of its memory
};

// Closes a block.
inline eSDLWriter& endb(eSDLWriter& writer) {
    writer.Stream().WriteControl(sdlBlockEnd);
    return writer;
}

// Starts a new line before the next item.
inline eSDLWriter& endl(eSDLWriter& writer) {
    writer.Stream().newlinePending = true;
    return writer;
}

inline eSDLWriter& eSDLWriter::operator<<(const char* text) {
    Stream().WriteString(text);
    return *this;
}

inline eSDLWriter& eSDLWriter::operator<<(int value) {
    Stream().WriteInt(value);
    return *this;
}

inline eSDLWriter& eSDLWriter::operator<<(float value) {
    Stream().WriteFloat(value);
    return *this;
}

template <IO::eLongOf64Bits T>
eSDLWriter& eSDLWriter::operator<<(T value) {
    if constexpr (std::is_signed_v<T>)
        return *this << static_cast<long long>(value);
    else
        return *this << static_cast<unsigned long long>(value);
}
