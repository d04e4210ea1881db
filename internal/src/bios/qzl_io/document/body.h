// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include <qzl_io/sdl/document.h>

#include "document/child_index.h"
#include "document/lines.h"
#include "document/source.h"

namespace xSDL {

// A part of a source that is in the document. Its borders are borders of tokens, or within blanks.
struct ePiece {
    const eSource* source = nullptr;
    std::uint64_t id = 0; // of the source
    std::size_t begin = 0;
    std::size_t end = 0;
    ePiece* before = nullptr;
    ePiece* next = nullptr;
};

// The place of a character in the document: within a piece, or at the beginning of the edge.
struct ePosition {
    const ePiece* piece = nullptr;
    std::size_t offset = 0;

    const char* At() const { return piece->source->At(offset); }
    eSpot Spot() const { return {piece->id, offset}; }
    bool operator==(const ePosition&) const = default;
};

// What begins at a position.
struct eFound {
    eSDLKind kind = eSDLKind::None; // BlockEnd is also the end of a block that is being looked through
    std::string_view text;          // of a block its brace and mark
    ePosition after;                // of a block after its end
    bool hidden = false;            // it is a block that readers skip
    bool closed = false;            // it is a block or a control block that has its end
};

// Whether it is an item that is no block.
bool IsSingle(eSDLKind kind);

// The content of a document: pieces of texts that do not change, in the order of the document. The first text is the
// one that was loaded, and each edit adds a text of its own. A node is a place in one of them, so it outlives edits
// elsewhere.
class eDocumentBody {
public:
    static constexpr const char* kSourceLimit = "Source limit exceeded!";
    static constexpr std::uint64_t kRoot = ~std::uint64_t{0}; // the source of the node that is the document

    eDocumentBody(std::string loaded, std::string itsName, const eSDLLimits& limits);
    eDocumentBody(const eDocumentBody&) = delete;
    eDocumentBody& operator=(const eDocumentBody&) = delete;
    ~eDocumentBody() = default;

    const std::string& Name() const { return name; }
    IO::eFailure& Failure() const { return failure; }

    // --- Texts ---

    unsigned long long Size() const;
    // Calls the function with all bytes, part by part.
    void ForEachPart(const std::function<void(std::string_view)>& take) const;
    std::string Text() const;
    std::string TextBetween(const ePosition& begin, const ePosition& end) const;
    // The bytes before and after what is read.
    std::string_view Before() const { return original.Bytes(0, original.Begin()); }
    std::string_view After() const { return original.Bytes(original.End(), original.Size()); }

    // --- Looking through ---

    ePosition First() const { return {edge.next, edge.next->begin}; }
    bool IsEnd(const ePosition& position) const { return position.piece == &edge; }
    // What begins at a position that is the border of a token.
    eFound See(const ePosition& position) const;
    // The position after the brace and mark.
    static ePosition Inside(const ePosition& brace, const eFound& found);
    // The place after some characters of a piece.
    static ePosition Normal(const ePiece* piece, std::size_t offset);
    // The first item from the position on in the same block; false if there is none.
    bool FindItem(ePosition* position, eFound* found) const;
    // The bracket that ends with the closing one at the position; kNone if none does.
    static std::size_t EndedAt(const ePosition& position);
    // Whether the bracket ends with a closing one of its own.
    static bool HasOwnEnd(const eSource& source, std::size_t index);

    // --- Nodes ---

    eSDLNode NodeAt(const ePosition& position) const { return {this, position.piece->id, position.offset}; }
    eSDLNode Root() const { return {this, kRoot, 0}; }
    static bool IsRoot(const eSDLNode& node) { return node.source == kRoot; }
    // Where the node is now; false if it has been removed.
    bool Locate(const eSDLNode& node, ePosition* position) const;
    // The same, and what is there.
    bool Look(const eSDLNode& node, ePosition* position, eFound* found) const;
    static bool IsSame(const eSDLNode& left, const eSDLNode& right);
    // The first item within a block or the document.
    bool FirstItem(const eSDLNode& node, ePosition* position, eFound* found) const;
    // The first that is not a block's name.
    bool FirstChild(const eSDLNode& node, ePosition* position, eFound* found) const;
    // The name of a block or the text of a word; empty for other parts.
    std::string_view NameAt(const ePosition& position, const eFound& found) const;
    // The child with that index among those that are counted; not good if there are not so many.
    static eSDLNode Child(const eSDLNode& block, eCounted what, std::string_view name, std::size_t index);
    eSDLNode Parent(const ePosition& position) const;

    // --- Edits; false and a node that is not good if the document does not take one ---

    bool Set(const eSDLNode& node, const eSDLItem& item);
    bool Rename(const eSDLNode& node, std::string_view word);
    bool Remove(const eSDLNode& node);
    eSDLNode InsertBefore(const eSDLNode& node, const eSDLItem& item);
    eSDLNode InsertAfter(const eSDLNode& node, const eSDLItem& item);
    eSDLNode Append(const eSDLNode& parent, const eSDLItem& item);

    // --- The text as it is now ---

    // A text without edits.
    const eSource& Current() const;
    // Where the position is in that.
    std::size_t CurrentOffset(const ePosition& position) const;
    const eLines& Lines() const;
    xError::eExcerpt Excerpt(const ePosition& position, std::size_t length) const;

private:
    struct eFragment {
        std::unique_ptr<eSource> source;
        eSpot parent; // the block that it is in
        std::size_t pieces = 0;
    };

    // What is on the line before a place: only blanks, or something else.
    struct eLineBefore {
        bool blank = false;
        ePosition begin;    // of the line, if there are only blanks
        std::string indent; // likewise
    };
    // What is on the line after a place.
    struct eLineAfter {
        bool blank = false; // apart from a comment
        ePosition textEnd;  // after the comment
        ePosition end;      // after the line's end
    };

    // What is inserted with an item: before it, after it, and in it after each line end.
    struct eAround {
        std::string lead;
        std::string trail;
        std::string indent;
    };

    eSDLNode FindChild(const eSDLNode& block, eCounted what, std::string_view name, std::size_t index) const;
    bool IsCounted(eCounted what, std::string_view name, const ePosition& position, const eFound& found) const;

    const ePiece* PieceOf(eSpot spot) const;
    eSpot Followed(eSpot spot) const;
    ePosition AfterBracket(const ePosition& begin, std::size_t index) const;

    // Layout.
    void LearnLayout();
    bool StepBack(ePosition* position) const;
    char CharacterBefore(ePosition position) const;
    char CharacterAt(const ePosition& position) const;
    std::size_t PassBlanksBack(ePosition* position, bool withinLine, ePosition* firstEnd = nullptr) const;
    eLineBefore LineBefore(const ePosition& position) const;
    eLineAfter LineAfter(ePosition position) const;
    std::string IndentOfLineBefore(ePosition position, const ePosition& opening, bool* isOpeningLine) const;

    // Meaning.
    bool IsFirstItem(const ePosition& position) const;
    bool WouldBeName(const ePosition& position, const eFound& found) const;
    bool StandsBeforeFirst(const eSDLNode& parent, const ePosition& position, const ePosition& first) const;
    bool MayInsert(const eSDLNode& parent, const ePosition* beside, bool before, const eSDLItem& item) const;
    static bool EndsControl(const ePosition& closing);
    bool MayRemove(const ePosition& position, const eFound& found) const;
    bool LookBeside(const eSDLNode& node, const eSDLItem& item, ePosition* position, eFound* found) const;

    // Pieces.
    ePiece* Mutable(const ePiece* piece);
    ePiece* Link(const ePiece& piece, ePiece* next);
    ePiece* SplitAt(const ePosition& position);
    ePiece* Erase(const ePosition& begin, const ePosition& end);
    void Release(std::uint64_t id);
    ePiece* AddText(std::string text, const eSpot& parent, ePiece* next);
    bool WouldBeMark(const ePiece& piece) const;
    void AddBlankAt(ePiece* next, const eSpot& parent);
    void ForgetChildren(const eSDLNode& block);
    void ForgetNames(const eSDLNode& block);
    bool Replace(const ePosition& position, const eFound& found, const std::string& text);
    eSDLNode Put(const eSDLNode& block, const ePosition& at, const eSDLItem& item, const eAround& around);
    eSDLNode AppendToDocument(const eSDLItem& item);
    eSDLNode AppendToBlock(const eSDLNode& block, const eSDLItem& item);
    void Touch();

    std::string name;
    mutable IO::eFailure failure;
    eSource original;
    std::unordered_map<std::uint64_t, eFragment> fragments;
    std::uint64_t lastFragment = 0;
    std::map<eSpot, ePiece> pieces; // by their beginnings
    std::map<eSpot, eSpot> moved;   // where nodes are that have been set
    ePiece edge;                    // before the first piece and after the last one
    bool edited = false;
    std::string lineEnd; // as in the text, once it has been edited
    std::string unit;    // of indentation
    mutable eChildIndex childIndex;

    // Made when asked for, until the next edit.
    mutable std::unique_ptr<eSource> current;
    mutable std::unordered_map<const ePiece*, std::size_t> currentOffsets;
    mutable std::unique_ptr<eLines> lines;
};

} // namespace xSDL
