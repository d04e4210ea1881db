// SPDX-License-Identifier: BSL-1.0
#include "document/body.h"

#include <algorithm>
#include <utility>

#include <qzl_io/sdl/names.h>

namespace xSDL {
namespace {

// A text that is too long is not taken.
std::string Admitted(std::string text, const eSDLLimits& limits, IO::eFailure* failure) {
    if (text.size() <= limits.sourceBytes)
        return text;
    *failure = {0, eDocumentBody::kSourceLimit};
    return {};
}

// What follows the parenthesis tells what a control block is to a reader.
bool IsCalculation(const char* parenthesis) {
    const char* at = parenthesis + 1;
    int line = 0;
    eLexeme head;
    CutToken(&at, &line, &head);
    return head.type == sdlOperator;
}

// Items are what a reader reads.
bool IsItem(const eFound& found) {
    return IsSingle(found.kind) || (found.kind == eSDLKind::Block && !found.hidden);
}

eSDLKind KindOf(eSDLParserLexType type) {
    switch (type) {
    case sdlIdent:
        return eSDLKind::Word;
    case sdlInt:
    case sdlHex:
        return eSDLKind::Int;
    case sdlFloat:
        return eSDLKind::Float;
    case sdlString:
        return eSDLKind::String;
    case sdlOperator:
        return eSDLKind::Operator;
    default:
        return eSDLKind::Bad;
    }
}

} // namespace

bool IsSingle(eSDLKind kind) {
    switch (kind) {
    case eSDLKind::Int:
    case eSDLKind::Float:
    case eSDLKind::String:
    case eSDLKind::Word:
    case eSDLKind::Operator:
    case eSDLKind::Calculation:
        return true;
    default:
        return false;
    }
}

eDocumentBody::eDocumentBody(std::string loaded, std::string itsName, const eSDLLimits& limits)
    : name(std::move(itsName)),
      original(Admitted(std::move(loaded), limits, &failure), limits.tokenBytes),
      childIndex(original.Size() / 2) {
    edge.before = edge.next = &edge;
    if (original.Begin() != original.End())
        Link({&original, 0, original.Begin(), original.End(), nullptr, nullptr}, &edge);
}

// --- Texts ---

unsigned long long eDocumentBody::Size() const {
    unsigned long long size = 0;
    ForEachPart([&size](std::string_view part) { size += part.size(); });
    return size;
}

void eDocumentBody::ForEachPart(const std::function<void(std::string_view)>& take) const {
    take(Before());
    for (const ePiece* piece = edge.next; piece != &edge; piece = piece->next)
        take(piece->source->Bytes(piece->begin, piece->end));
    take(After());
}

// With room for what a source needs behind it.
std::string eDocumentBody::Text() const {
    std::string text;
    text.reserve(static_cast<std::size_t>(Size()) + kTextEnd);
    ForEachPart([&text](std::string_view part) { text += part; });
    return text;
}

std::string eDocumentBody::TextBetween(const ePosition& begin, const ePosition& end) const {
    std::string text;
    std::size_t from = begin.offset;
    for (const ePiece* piece = begin.piece; piece != end.piece; piece = piece->next, from = piece->begin)
        text += piece->source->Bytes(from, piece->end);
    if (!IsEnd(end))
        text += end.piece->source->Bytes(from, end.offset);
    return text;
}

// --- Looking through ---

ePosition eDocumentBody::Normal(const ePiece* piece, std::size_t offset) {
    return offset == piece->end ? ePosition{piece->next, piece->next->begin} : ePosition{piece, offset};
}

ePosition eDocumentBody::Inside(const ePosition& brace, const eFound& found) {
    return Normal(brace.piece, brace.offset + found.text.size());
}

ePosition eDocumentBody::AfterBracket(const ePosition& begin, std::size_t index) const {
    const eBlockIndex& blocks = begin.piece->source->Blocks();
    if (!blocks.IsClosed(index))
        return {&edge, 0};
    const auto end = blocks.End(index);
    const ePiece* const piece = end <= begin.piece->end ? begin.piece : PieceOf({begin.piece->id, end - 1});
    return Normal(piece, end);
}

// A control block may also end where the } of the block around it stands.
bool eDocumentBody::HasOwnEnd(const eSource& source, std::size_t index) {
    const eBlockIndex& blocks = source.Blocks();
    const std::uint64_t last = blocks.End(index) - 1;
    return blocks.IsClosed(index) && last != blocks.Begin(index) && blocks.Around(last) == index &&
           (*source.At(last) == ')' || *source.At(last) == '}');
}

std::size_t eDocumentBody::EndedAt(const ePosition& position) {
    const eBlockIndex& blocks = position.piece->source->Blocks();
    const std::size_t around = blocks.Around(position.offset);
    const bool ended = around != eBlockIndex::kNone && blocks.End(around) == position.offset + 1;
    return ended ? around : eBlockIndex::kNone;
}

eFound eDocumentBody::See(const ePosition& position) const {
    if (IsEnd(position))
        return {};
    const ePiece& piece = *position.piece;
    const char* const begin = position.At();
    const char* const most = piece.source->At(piece.end);
    const auto found = [&](eSDLKind kind, const char* end) {
        end = std::min(end, most);
        return eFound{kind,
                      {begin, static_cast<std::size_t>(end - begin)},
                      Normal(&piece, static_cast<std::size_t>(end - piece.source->At(0)))};
    };
    int line = 0;
    switch (*begin) {
    case ';':
        return found(eSDLKind::Comment, PassComment(begin + 1));
    case '}':
    case ')':
        return found(EndedAt(position) != eBlockIndex::kNone ? eSDLKind::BlockEnd : eSDLKind::Bad, begin + 1);
    case '{': {
        eLexeme mark;
        eFound block = found(eSDLKind::Block, CutMark(begin + 1, &mark));
        const std::size_t index = piece.source->Blocks().IndexAt(position.offset);
        block.after = AfterBracket(position, index);
        block.closed = piece.source->Blocks().IsClosed(index);
        block.hidden = mark.length > 1 && IsHiddenAt(begin);
        return block;
    }
    case '(': {
        const eBlockIndex& blocks = piece.source->Blocks();
        const std::size_t index = blocks.IndexAt(position.offset);
        const std::size_t end = blocks.IsClosed(index) ? blocks.End(index) : piece.end;
        eFound control = found(IsCalculation(begin) ? eSDLKind::Calculation : eSDLKind::Control, piece.source->At(end));
        control.closed = HasOwnEnd(*piece.source, index);
        return control;
    }
    default:
        break;
    }
    if (Begins(*begin) == eBegins::Gap)
        return found(eSDLKind::Blank, PassBlanks(begin, &line));
    if (IsIllegal(*begin))
        return found(eSDLKind::Bad, PassIllegal(begin));
    eLexeme token;
    const char* const end = CutAt(begin, &line, &token);
    return found(KindOf(token.type), end);
}

bool eDocumentBody::FindItem(ePosition* position, eFound* found) const {
    for (;; *position = found->after) {
        *found = See(*position);
        if (IsItem(*found))
            return true;
        if (found->kind == eSDLKind::None || found->kind == eSDLKind::BlockEnd)
            return false;
    }
}

// --- Nodes ---

const ePiece* eDocumentBody::PieceOf(eSpot spot) const {
    if (!edited) {
        const bool within = spot.source == 0 && spot.offset >= edge.next->begin && spot.offset < edge.next->end;
        return within ? edge.next : nullptr;
    }
    const auto after = pieces.upper_bound(spot);
    if (after == pieces.begin())
        return nullptr;
    const ePiece& piece = std::prev(after)->second;
    return piece.id == spot.source && spot.offset < piece.end ? &piece : nullptr;
}

bool eDocumentBody::Locate(const eSDLNode& node, ePosition* position) const {
    const eSpot spot = Followed({node.source, node.offset});
    const ePiece* const piece = PieceOf(spot);
    *position = {piece, static_cast<std::size_t>(spot.offset)};
    return piece != nullptr;
}

bool eDocumentBody::Look(const eSDLNode& node, ePosition* position, eFound* found) const {
    if (!Locate(node, position))
        return false;
    *found = See(*position);
    return true;
}

eSpot eDocumentBody::Followed(eSpot spot) const {
    if (moved.empty())
        return spot;
    const auto found = moved.find(spot);
    return found == moved.end() ? spot : found->second;
}

bool eDocumentBody::IsSame(const eSDLNode& left, const eSDLNode& right) {
    if (left.body != right.body || !left.body)
        return left.body == right.body;
    return left.body->Followed({left.source, left.offset}) == right.body->Followed({right.source, right.offset});
}

bool eDocumentBody::FirstItem(const eSDLNode& node, ePosition* position, eFound* found) const {
    if (IsRoot(node)) {
        *position = First();
        return FindItem(position, found);
    }
    if (!Look(node, position, found) || found->kind != eSDLKind::Block)
        return false;
    *position = Inside(*position, *found);
    return FindItem(position, found);
}

bool eDocumentBody::FirstChild(const eSDLNode& node, ePosition* position, eFound* found) const {
    if (!FirstItem(node, position, found))
        return false;
    if (IsRoot(node) || found->kind != eSDLKind::Word)
        return true;
    *position = found->after;
    return FindItem(position, found);
}

std::string_view eDocumentBody::NameAt(const ePosition& position, const eFound& found) const {
    if (found.kind != eSDLKind::Block)
        return found.kind == eSDLKind::Word ? found.text : std::string_view();
    ePosition first = Inside(position, found);
    eFound item;
    return FindItem(&first, &item) && item.kind == eSDLKind::Word ? item.text : std::string_view();
}

bool eDocumentBody::IsCounted(eCounted what, std::string_view word, const ePosition& position,
                              const eFound& found) const {
    const bool block = found.kind == eSDLKind::Block;
    switch (what) {
    case eCounted::Named:
        return block && IsSameWord(NameAt(position, found), word);
    case eCounted::Blocks:
        return block;
    case eCounted::Words:
        return found.kind == eSDLKind::Word && IsSameWord(found.text, word);
    case eCounted::Values:
        break;
    }
    return !block;
}

eSDLNode eDocumentBody::Child(const eSDLNode& block, eCounted what, std::string_view name, std::size_t index) {
    return block.body ? block.body->FindChild(block, what, name, index) : eSDLNode();
}

// The first children need no index.
eSDLNode eDocumentBody::FindChild(const eSDLNode& block, eCounted what, std::string_view word,
                                  std::size_t index) const {
    eChildIndex::ePlaces* places = nullptr;
    const eChildIndex::ePlace* begin = nullptr;
    if (index >= eChildIndex::kEvery) {
        places = &childIndex.Of({block.source, block.offset}, what, word);
        begin = places->Before(index);
        if (!places->IsLast(begin))
            places = nullptr; // there are places beyond
    }
    ePosition position;
    eFound found;
    bool any = begin ? Look({this, begin->child.source, begin->child.offset}, &position, &found)
                     : FirstChild(block, &position, &found);
    std::size_t before = begin ? begin->before : 0;
    for (std::size_t passed = 0; any; any = FindItem(&position, &found)) {
        if (places)
            passed = childIndex.Pass(places, {position.Spot(), before}, passed);
        if (IsCounted(what, word, position, found) && before++ == index)
            return NodeAt(position);
        position = found.after;
    }
    return {};
}

eSDLNode eDocumentBody::Parent(const ePosition& position) const {
    const eBlockIndex& blocks = position.piece->source->Blocks();
    if (const std::size_t around = blocks.Around(position.offset); around != eBlockIndex::kNone)
        return {this, position.piece->id, blocks.Begin(around)};
    if (position.piece->id == 0)
        return Root();
    const eSpot parent = fragments.at(position.piece->id).parent;
    return {this, parent.source, parent.offset};
}

// --- The text as it is now ---

const eSource& eDocumentBody::Current() const {
    if (!edited)
        return original;
    if (!current)
        current = std::make_unique<eSource>(Text(), original.LongestToken());
    return *current;
}

std::size_t eDocumentBody::CurrentOffset(const ePosition& position) const {
    if (IsEnd(position))
        return Current().End();
    if (currentOffsets.empty()) {
        std::size_t offset = original.Begin();
        for (const ePiece* piece = edge.next; piece != &edge; offset += piece->end - piece->begin, piece = piece->next)
            currentOffsets[piece] = offset;
    }
    return currentOffsets.at(position.piece) + position.offset - position.piece->begin;
}

const eLines& eDocumentBody::Lines() const {
    if (!lines)
        lines = std::make_unique<eLines>(Current());
    return *lines;
}

xError::eExcerpt eDocumentBody::Excerpt(const ePosition& position, std::size_t length) const {
    return Lines().Excerpt(name, CurrentOffset(position), length);
}

} // namespace xSDL
