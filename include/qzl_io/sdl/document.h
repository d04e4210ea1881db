// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include <qzl_base/diagnostic.h>
#include <qzl_io/export.h>
#include <qzl_io/file_name.h>
#include <qzl_io/sdl/limits.h>
#include <qzl_io/streams/failure.h>
#include <qzl_io/streams/save_file.h>

namespace IO {
class eStream;
}

namespace xSDL {
class eDocumentBody;
struct ePiece;
} // namespace xSDL

// What a part of a document is.
enum class eSDLKind : unsigned char {
    None,        // nothing: the node has been removed, or never was one
    Document,    // the document itself, which holds what is outside all blocks
    Block,       // { to }
    BlockEnd,    // in a walk over all parts: the } of a block
    Int,         // an integer, decimal or hexadecimal
    Float,       // a number with a fraction or an exponent
    String,      // "text"
    Word,        // an identifier
    Operator,    // + - * /
    Calculation, // arithmetic such as (+ 1 2), which reads as a float
    Control,     // any other control block, which a reader skips
    Comment,     // ; to before the end of the line
    Blank,       // tabs, line ends, spaces, equals signs
    Bad,         // what begins no token, a broken string, a } or ) that closes nothing
    Outside      // a byte-order mark at the beginning; the first NUL and what follows it
};

// A part of a document: a small value to look through, made by eSDLDocument, which must live as long. It stays good
// whatever is edited, until its part is removed: its kind is then None, and everything else about it is empty.
//
// Items are what a reader reads: blocks, numbers, strings, words, operators and calculations. Hidden blocks ({##mark),
// comments and other control blocks are none. The first item of a block is its name if it is a word; the other items
// are its children.
class QZL_IO_API eSDLNode {
public:
    class eIterator;

    eSDLNode() = default;

    eSDLKind Kind() const;
    explicit operator bool() const { return Kind() != eSDLKind::None; }
    bool IsBlock() const { return Kind() == eSDLKind::Block; }

    // The text with all that is within it, as it stands in the document.
    std::string Text() const;

    // Of a block its name as written, empty if it has none; of a word the word. Valid until the document is edited.
    std::string_view Name() const;
    // Whether that is its name, regardless of the case of ASCII letters, as keywords are compared.
    bool Is(std::string_view name) const;
    // Of a block the mark, as of a reader's token: "m" for {#m. Valid until the document is edited.
    std::string_view Mark() const;
    // Whether it is a block that readers skip, as {##draft.
    bool IsHidden() const;
    // Whether it is a block that has its }.
    bool IsClosed() const;

    // The children of a block or of the document, in order:
    //
    //     for (const eSDLNode& light : scene)
    //
    // The loop may remove or set the child that it is at, and insert others, of which it meets those that are inserted
    // after the next one.
    eIterator begin() const;
    static eIterator end();

    // The next item in the same block; not good after the last one.
    eSDLNode Next() const;
    // The block that the part is in, or the document; not good for the document.
    eSDLNode Parent() const;

    // Of a block or of the document: the child that is not a block with that index, counted from 0. Of a word: the
    // items after it, up to the first block, so that both {power 1.5} and {light power = 1.5} give Value() of "power".
    eSDLNode Value(std::size_t index = 0) const;

    // The first and all nodes at a path within this one; eSDLDocument describes paths.
    eSDLNode Find(std::string_view path) const;
    std::vector<eSDLNode> FindAll(std::string_view path) const;

    // Read a value. False, and nothing is assigned, if it is of another kind or does not fit: integers that are larger
    // than the type, numbers beyond the range of floats. A float or double takes both kinds of number and calculations,
    // a bool an integer that is not 0. A hexadecimal integer gives the bits of an int or a long long, and of other
    // types the number without a sign. Strings are read with their escapes converted.
    bool Get(int* value) const;
    bool Get(long long* value) const;
    bool Get(float* value) const;
    bool Get(double* value) const;
    bool Get(bool* value) const;
    bool Get(std::string* value) const;

    // The same as a result: node.As<float>().value_or(1).
    template <class T>
    std::optional<T> As() const {
        T value{};
        return Get(&value) ? std::optional<T>(std::move(value)) : std::nullopt;
    }

    // Where the part begins. The first call after an edit takes time and memory for the whole document, all others
    // hardly any.
    xError::ePlace Place() const;
    // The place with its line, the part marked as far as it is on that line.
    xError::eExcerpt Excerpt() const;

    // Whether both are the same part of the same document.
    bool operator==(const eSDLNode& other) const;

private:
    friend class eSDLDocument;
    friend class xSDL::eDocumentBody;

    eSDLNode(const xSDL::eDocumentBody* itsBody, std::uint64_t itsSource, std::uint64_t itsOffset)
        : body(itsBody), source(itsSource), offset(itsOffset) {}

    const xSDL::eDocumentBody* body = nullptr;
    std::uint64_t source = 0; // of which text it is a part
    std::uint64_t offset = 0; // where it begins there
};

class eSDLNode::eIterator {
public:
    using iterator_category = std::input_iterator_tag;
    using value_type = eSDLNode;
    using difference_type = std::ptrdiff_t;
    using pointer = const eSDLNode*;
    using reference = const eSDLNode&;

    eIterator() = default;
    explicit eIterator(const eSDLNode& first) : current(first), next(first.Next()) {}

    const eSDLNode& operator*() const { return current; }
    const eSDLNode* operator->() const { return &current; }
    eIterator& operator++() {
        current = next;
        next = current.Next();
        return *this;
    }
    void operator++(int) { ++*this; }
    bool operator==(const eIterator& other) const { return current == other.current; }

private:
    eSDLNode current;
    eSDLNode next; // found in advance, as the current one may be removed
};

inline eSDLNode::eIterator eSDLNode::end() {
    return {};
}

// What is inserted into a document: a value, a word, a block or a piece of SDL text. A document does not take one that
// is not good.
class QZL_IO_API eSDLItem {
public:
    eSDLItem(int value);
    eSDLItem(long long value);
    // Written as eSDLWriter writes them: the shortest text that reads back to the same bits. An infinity or a NaN gives
    // an item that is not good.
    eSDLItem(float value);
    eSDLItem(double value);
    // 1 or 0.
    eSDLItem(bool value);
    // Strings, with escapes as eSDLWriter writes them.
    eSDLItem(std::string_view value);
    eSDLItem(const std::string& value) : eSDLItem(std::string_view(value)) {}
    eSDLItem(const char* value) : eSDLItem(std::string_view(value ? value : "")) {}
    eSDLItem(const void*) = delete;

    // A number in digits of the caller's own: 2.50, 1e3 or 0x1F. Good if the text is one number, within the range of a
    // double.
    static eSDLItem Number(std::string_view text);
    // Good if the name is an identifier.
    static eSDLItem Word(std::string_view name);
    // An empty block, {NAME} or {#MARK NAME}, good if the name is an identifier or empty, and the mark of the
    // characters that marks consist of.
    static eSDLItem Block(std::string_view name, std::string_view mark = {});
    // Any SDL text that has no error, of one item or several, comments included. Its lines take the line ends of the
    // document and are indented beyond what they are in the text.
    static eSDLItem Source(std::string_view source);

    bool IsGood() const { return good; }
    // What would be inserted.
    const std::string& Text() const { return text; }

private:
    friend class xSDL::eDocumentBody;

    eSDLItem() = default;
    eSDLItem(eSDLKind itsFirst, std::string itsText, bool isGood)
        : text(std::move(itsText)), first(itsFirst), good(isGood) {}

    std::string text;
    eSDLKind first = eSDLKind::None; // of its items; None if it has only what readers skip
    bool good = false;
    bool single = true; // a value or a word
    bool endsInComment = false;
};

// A part in a walk over all of them: a block gives one part of its { and mark and, if it is closed, another of its }.
struct eSDLPart {
    eSDLKind kind = eSDLKind::None;
    std::string_view text;        // valid until the document is edited
    eSDLNode node;                // of a BlockEnd the block; of Outside none
    unsigned long long depth = 0; // number of blocks around it; of a block's own { and } likewise
};

// All parts of a document in order, whose texts together are the document's text:
//
//     for (const eSDLPart& part : document.Parts())
class QZL_IO_API eSDLParts {
public:
    class QZL_IO_API eIterator {
    public:
        using iterator_category = std::input_iterator_tag;
        using value_type = eSDLPart;
        using difference_type = std::ptrdiff_t;
        using pointer = const eSDLPart*;
        using reference = const eSDLPart&;

        eIterator() = default;

        const eSDLPart& operator*() const { return part; }
        const eSDLPart* operator->() const { return &part; }
        eIterator& operator++() {
            Advance();
            return *this;
        }
        void operator++(int) { Advance(); }
        bool operator==(const eIterator& other) const { return part.kind == other.part.kind; } // with the end alone

    private:
        friend class eSDLParts;

        void Advance();
        void TakeAt();

        const xSDL::eDocumentBody* body = nullptr;
        const xSDL::ePiece* piece = nullptr; // where the next part begins
        std::size_t offset = 0;
        unsigned long long depth = 0;
        enum class eStage : unsigned char { Before, Within, After } stage = eStage::Before;
        eSDLPart part;
    };

    eIterator begin() const;
    static eIterator end() { return {}; }

private:
    friend class eSDLDocument;

    explicit eSDLParts(const xSDL::eDocumentBody* itsBody) : body(itsBody) {}

    const xSDL::eDocumentBody* body;
};

// An SDL text that people and programs edit: every byte of it comes back, and what is not edited stays as it is,
// comments and layout included.
//
//     eSDLDocument document;
//     if (!document.Open(eFileName("scene.sdl")))
//         Show(document.Failure().text);
//     if (const eSDLNode power = document.Find("scene/light[name=\"sun\"]/power").Value())
//         document.Set(power, 2.5f);
//     document.Save(eFileName("scene.sdl"));
//
// Any bytes are a document. What is wrong in them is listed (Errors), and does not end the reading: after an illegal
// character or a broken string, the next token is read; a } or ) that closes nothing is passed; a block that is not
// closed ends with the text. Text that a reader accepts, however it is called, has no error. Control blocks are not
// executed and parameters not replaced; of included files nothing is read.
//
// A path names nodes within a node, here the document:
//
//     path      = step { "/" step }
//     step      = name { filter } | "*" { filter } | number
//     filter    = "[" number "]" | "[" name "=" value "]"
//     value     = string | number | word                 (as in SDL)
//
// - A name is that of blocks, regardless of the case of ASCII letters. In the last step, where no block has the name,
//   it stands for a word among the children: light/power finds {power 1.5} as well as the word in {light power = 1.5},
//   and Value() of both is 1.5.
// - "*" is any block, with or without a name.
// - A number is the value with that index, counted from 0: color/2.
// - A filter [2] takes the third of what the step finds in one block; [name="sun"] takes blocks with a child of that
//   name, block or word, whose first value is that one. Numbers are compared as such, words regardless of case; a word
//   in a filter also equals a string of the same characters. Filters apply one after the other.
//
// Costs, for a document of n bytes, whatever is in it:
//
// - Parsing: time n; memory for the text, a seventh of that, and 4 bytes for each { and (, so 6n at most (beyond 4 GB 8
//   bytes, so 10n).
// - Next, loops, Value, Find: time for what is passed, without what is in the blocks and control blocks passed. What is
//   sought by an index takes hardly any time once it has been passed: for that, Value and Find keep notes in at most
//   half as much memory as the text.
// - Parent, kind, text, value: time for the part itself and the logarithms of the numbers of brackets and edits.
// - An edit: likewise, and for the blanks and the comment beside the place and, if it is about a block's first item,
//   what stands before that; memory for the text inserted and 2 KB. The notes about a block's children are lost with an
//   edit that inserts or removes one before others, or changes a name.
// - Text, Save: time n, and once for each edit made.
// - Errors, ErrorCount, Place: likewise after an edit, and memory for the text once more; otherwise next to nothing.
//
// Nothing is recursive, so depth takes no stack.
//
// A document is used by one thread at a time, its nodes included, even if only const functions are called.
class QZL_IO_API eSDLDocument {
public:
    static constexpr std::size_t kAll = ~std::size_t{0};

    // An empty document.
    eSDLDocument();
    // A document of the text; the name is for places. If the text exceeds the limit, it is not taken, and Failure says
    // "Source limit exceeded!". Tokens that exceed the limit are errors ("Token limit exceeded!").
    explicit eSDLDocument(std::string_view text, std::string name = {}, const eSDLLimits& limits = {});
    explicit eSDLDocument(const char* text, std::string name = {}, const eSDLLimits& limits = {});
    eSDLDocument(const eSDLDocument&) = delete;
    eSDLDocument& operator=(const eSDLDocument&) = delete;
    // The nodes go with the document. What was moved from is empty.
    // NOLINTBEGIN(performance-noexcept-move-constructor): an empty document takes memory
    eSDLDocument(eSDLDocument&& other);
    eSDLDocument& operator=(eSDLDocument&& other);
    // NOLINTEND(performance-noexcept-move-constructor)
    ~eSDLDocument();

    // Take the place of the content with the file's or with the rest of the stream. False if that cannot be read to its
    // end or exceeds the limit; Failure then tells why, and the document is empty.
    bool Open(const eFileName& file, const eSDLLimits& limits = {});
    bool Open(const eFileNameW& file, const eSDLLimits& limits = {});
    bool Open(IO::eStream& stream, const eSDLLimits& limits = {});

    // Save the text in the file, in one step as IO::eSaveFile does. False if it could not be saved; Failure then tells
    // why.
    bool Save(const eFileName& file, IO::eSaveEnd end = IO::eSaveEnd::OnDisk) const;
    bool Save(const eFileNameW& file, IO::eSaveEnd end = IO::eSaveEnd::OnDisk) const;
    // Writes the text to the stream, whose Failure tells whether all of it arrived.
    void Write(IO::eStream& stream) const;

    // Why the last Open or Save, or the constructor, failed; says nothing if it did not.
    const IO::eFailure& Failure() const;

    const std::string& Name() const;
    std::string Text() const;
    // The number of bytes of the text.
    unsigned long long Size() const;

    // What is wrong in the text as it is now, in the order of the places, at most so many. A text of n bytes may have
    // n/2 mistakes, each of which takes much more memory than a byte. Warnings are what readers pass in silence: a )
    // that closes nothing, and a string outside all blocks in which the text ends.
    std::vector<xError::eDiagnostic> Errors(std::size_t most = kAll) const;
    // The number of errors, warnings not counted.
    std::size_t ErrorCount() const;

    eSDLNode Root() const;
    eSDLNode::eIterator begin() const { return Root().begin(); }
    static eSDLNode::eIterator end() { return {}; }
    eSDLNode Find(std::string_view path) const { return Root().Find(path); }
    std::vector<eSDLNode> FindAll(std::string_view path) const { return Root().FindAll(path); }
    // What is wrong with a path, for people; empty if nothing is. A wrong path finds nothing.
    static std::string PathMistake(std::string_view path);

    eSDLParts Parts() const;

    // --- Edits. What is not edited stays byte for byte, and no edit changes what stands beside it: where two tokens
    // would become one, a blank is put between them. What cannot be done is refused, with false or a node that is not
    // good, and changes nothing: an item that is not good; a node of another document, a blank or what is outside; what
    // would take a block's name from it or make a word its name that is not; and what is in or after something that is
    // not closed. ---

    // Replaces a value, word or operator by a value or a word.
    bool Set(const eSDLNode& node, const eSDLItem& value);
    // Gives a block another name, or one at all. The name must be an identifier.
    bool Rename(const eSDLNode& block, std::string_view name);

    // Insert something before or after a node, which may also be a comment or a control block, and return the first
    // part of it. If the node stands alone on its line, or its lines, apart from a comment at the end, what is inserted
    // gets lines of its own, with the same indentation; otherwise it is put on the same line.
    eSDLNode InsertBefore(const eSDLNode& node, const eSDLItem& item);
    eSDLNode InsertAfter(const eSDLNode& node, const eSDLItem& item);
    // Inserts something at the end of a block or of the document. If the block's } begins a line, and always in the
    // document, it gets a line of its own, indented like the line before; otherwise it is put before the }.
    eSDLNode Append(const eSDLNode& parent, const eSDLItem& item);

    // Removes a block, an item, a comment, a control block or what is bad. If it stands alone on its line, or its
    // lines, apart from a comment at the end, these are removed with the comment; otherwise a comment stays, and the
    // blanks before the part go. Comments on the lines above stay.
    bool Remove(const eSDLNode& node);

private:
    bool Take(IO::eStream& stream, std::string name, const eSDLLimits& limits);
    bool SaveTo(IO::eSaveFile& file) const;
    bool IsOwn(const eSDLNode& node) const;

    std::unique_ptr<xSDL::eDocumentBody> body;
};
