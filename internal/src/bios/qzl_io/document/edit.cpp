// SPDX-License-Identifier: BSL-1.0
#include <algorithm>
#include <utility>

#include "document/body.h"
#include "qzl_base/shared/unicode.h"

namespace xSDL {
namespace {

// Where more blanks are beside a place, the layout there is not looked at.
constexpr std::size_t kMostLooked = 4096;

bool IsBlankOf(char c) {
    return Has(stBetween, c) && c != 0;
}

bool IsLineEnd(char c) {
    return c == '\n' || c == '\r';
}

// Whether two characters of different tokens need a blank between them. Most characters may be part of what is before
// or after them; brackets, quotes and a ; begin anew wherever they are.
bool NeedBlankBetween(char left, char right) {
    constexpr std::string_view kBegin = "{}()\";";
    constexpr std::string_view kEnd = "})\"*/";
    if (left == 0 || right == 0 || IsBlankOf(left) || IsBlankOf(right) || kBegin.find(right) != std::string_view::npos)
        return false;
    if (left == '{')
        return right == '#';
    return kEnd.find(left) == std::string_view::npos;
}

// Only tabs and spaces are copied.
std::string IndentOf(std::string_view blanks) {
    return std::string(blanks.substr(0, std::min(blanks.find_first_not_of(" \t"), blanks.size())));
}

// The text with other line ends, each followed by an indentation. Strings stay as they are.
std::string Relined(const std::string& text, const std::string& lineEnd, const std::string& indent) {
    if (text.find('\n') == std::string::npos)
        return text;
    const std::string padded = text + std::string(kTextEnd, '\0');
    std::string result;
    for (const char* at = padded.data(); *at != 0;) {
        const char* const begin = at;
        eLexeme token;
        int line = 0;
        if (!IsBlankOf(*at)) {
            at = *at == ';' ? PassComment(at + 1) : CutAt(at, &line, &token);
            result.append(begin, at);
            continue;
        }
        for (at = PassBlanks(at, &line); const char c : std::string_view(begin, static_cast<std::size_t>(at - begin)))
            if (c == '\n')
                result.append(lineEnd).append(indent);
            else if (c != '\r')
                result += c;
    }
    return result;
}

} // namespace

// --- Layout ---

// Of the first lines.
void eDocumentBody::LearnLayout() {
    if (!lineEnd.empty())
        return;
    constexpr std::size_t kMostRead = std::size_t{64} * 1024;
    const std::string_view text = original.Bytes(original.Begin(), std::min(original.End(), kMostRead));
    const std::size_t feed = text.find('\n');
    lineEnd = feed == std::string_view::npos || (feed > 0 && text[feed - 1] == '\r') ? "\r\n" : "\n";
    for (std::size_t line = feed; line != std::string_view::npos && unit.empty(); line = text.find('\n', line + 1))
        unit = IndentOf(text.substr(line + 1));
    if (unit.empty() || unit.front() == '\t')
        unit = "\t";
}

bool eDocumentBody::StepBack(ePosition* position) const {
    if (!IsEnd(*position) && position->offset > position->piece->begin) {
        --position->offset;
        return true;
    }
    const ePiece* const before = position->piece->before;
    if (before == &edge)
        return false;
    *position = {before, before->end - 1};
    return true;
}

char eDocumentBody::CharacterBefore(ePosition position) const {
    return StepBack(&position) ? *position.At() : '\0';
}

char eDocumentBody::CharacterAt(const ePosition& position) const {
    return IsEnd(position) ? '\0' : *position.At();
}

// Returns the number of blanks, which is kMostLooked if there are more. Blanks before the first line end may belong to
// a comment, so what is inserted goes where that line ends.
std::size_t eDocumentBody::PassBlanksBack(ePosition* position, bool withinLine, ePosition* firstEnd) const {
    std::size_t passed = 0;
    for (ePosition at = *position; passed < kMostLooked && StepBack(&at); ++passed) {
        if (!IsBlankOf(*at.At()) || (withinLine && IsLineEnd(*at.At())))
            break;
        *position = at;
        if (firstEnd && IsLineEnd(*at.At()))
            *firstEnd = at;
    }
    return passed;
}

eDocumentBody::eLineBefore eDocumentBody::LineBefore(const ePosition& position) const {
    eLineBefore line;
    line.begin = position;
    if (PassBlanksBack(&line.begin, true) >= kMostLooked)
        return line;
    const char before = CharacterBefore(line.begin);
    line.blank = before == '\n' || before == 0;
    if (line.blank)
        line.indent = IndentOf(TextBetween(line.begin, position));
    return line;
}

eDocumentBody::eLineAfter eDocumentBody::LineAfter(ePosition position) const {
    eLineAfter line;
    line.textEnd = position;
    for (;;) {
        const eFound found = See(position);
        if (found.kind == eSDLKind::None) {
            line.blank = true;
            line.end = position;
            return line;
        }
        if (found.kind == eSDLKind::Comment) {
            line.textEnd = found.after;
        } else if (found.kind != eSDLKind::Blank) {
            return line;
        } else if (const std::size_t end = found.text.find_first_of("\r\n"); end != std::string_view::npos) {
            const std::size_t feed = found.text[end] == '\r' ? end + 1 : end;
            line.blank = feed < found.text.size() && found.text[feed] == '\n';
            line.end = Normal(position.piece, position.offset + feed + (line.blank ? 1 : 0));
            return line;
        }
        position = found.after;
    }
}

// The indentation of the line that ends at the position, and whether the block's opening brace is on it.
std::string eDocumentBody::IndentOfLineBefore(ePosition position, const ePosition& opening, bool* isOpeningLine) const {
    ePosition at = position;
    std::size_t looked = 0;
    for (; looked < kMostLooked && StepBack(&at) && *at.At() != '\n'; ++looked) {
        position = at;
        *isOpeningLine = *isOpeningLine || at == opening;
    }
    if (looked == kMostLooked) {
        *isOpeningLine = true;
        return {};
    }
    std::string indent;
    for (; !IsEnd(position) && (*position.At() == ' ' || *position.At() == '\t');
         position = Normal(position.piece, position.offset + 1))
        indent += *position.At();
    return indent;
}

// --- Meaning ---

bool eDocumentBody::IsFirstItem(const ePosition& position) const {
    const eSDLNode parent = Parent(position);
    ePosition first;
    eFound found;
    return !IsRoot(parent) && FirstItem(parent, &first, &found) && first == position;
}

// Whether without the part the word after it would be the block's name.
bool eDocumentBody::WouldBeName(const ePosition& position, const eFound& found) const {
    ePosition next = found.after;
    eFound following;
    return FindItem(&next, &following) && following.kind == eSDLKind::Word && IsFirstItem(position);
}

// Whether the position, which is in the block, is before the block's first item.
bool eDocumentBody::StandsBeforeFirst(const eSDLNode& parent, const ePosition& position, const ePosition& first) const {
    ePosition at;
    eFound found;
    if (!Look(parent, &at, &found))
        return false;
    for (at = Inside(at, found); !(at == first); at = found.after) {
        if (at == position)
            return true;
        found = See(at);
        if (found.kind == eSDLKind::None || found.kind == eSDLKind::BlockEnd)
            return true;
    }
    return false;
}

// `beside` is the part before or after which the item is inserted; null: at the end.
bool eDocumentBody::MayInsert(const eSDLNode& parent, const ePosition* beside, bool before,
                              const eSDLItem& item) const {
    if (IsRoot(parent) || item.first == eSDLKind::None)
        return true;
    ePosition first;
    eFound found;
    const bool any = FirstItem(parent, &first, &found);
    bool isFirst = !any;
    if (any && beside)
        isFirst = *beside == first ? before : StandsBeforeFirst(parent, *beside, first);
    if (!isFirst)
        return true;
    return item.first != eSDLKind::Word && !(any && found.kind == eSDLKind::Word);
}

// The part beside which the item may be inserted.
bool eDocumentBody::LookBeside(const eSDLNode& node, const eSDLItem& item, ePosition* position, eFound* found) const {
    if (!item.good || !Look(node, position, found))
        return false;
    switch (found->kind) {
    case eSDLKind::Block:
    case eSDLKind::Control:
    case eSDLKind::Calculation:
        return found->closed;
    case eSDLKind::Comment:
        return true;
    default:
        return IsSingle(found->kind);
    }
}

// Whether the } also ends a control block, in which whatever is put before it would be.
bool eDocumentBody::EndsControl(const ePosition& closing) {
    const eSource& source = *closing.piece->source;
    const eBlockIndex& blocks = source.Blocks();
    std::size_t ended = blocks.Around(closing.offset, closing.offset);
    while (ended != eBlockIndex::kNone && blocks.End(ended) == closing.offset && HasOwnEnd(source, ended))
        ended = blocks.Around(blocks.Begin(ended), closing.offset);
    return ended != eBlockIndex::kNone && blocks.End(ended) == closing.offset;
}

bool eDocumentBody::MayRemove(const ePosition& position, const eFound& found) const {
    switch (found.kind) {
    case eSDLKind::Block:
        return found.closed && (found.hidden || !WouldBeName(position, found));
    case eSDLKind::Control:
        return found.closed;
    case eSDLKind::Comment:
        return true;
    case eSDLKind::Bad:
        return !EndsControl(position) && !(found.text.front() == '"' && IsEnd(found.after) && original.IsOpenAtEnd());
    case eSDLKind::Word:
        return !IsFirstItem(position);
    case eSDLKind::Calculation:
        return found.closed && !WouldBeName(position, found);
    default:
        return IsSingle(found.kind) && !WouldBeName(position, found);
    }
}

// --- Pieces ---

ePiece* eDocumentBody::Mutable(const ePiece* piece) {
    return piece == &edge ? &edge : &pieces.at({piece->id, piece->begin});
}

ePiece* eDocumentBody::Link(const ePiece& piece, ePiece* next) {
    ePiece& linked = pieces.emplace(eSpot{piece.id, piece.begin}, piece).first->second;
    linked.before = next->before;
    linked.next = next;
    next->before->next = &linked;
    next->before = &linked;
    if (piece.id != 0)
        ++fragments.at(piece.id).pieces;
    return &linked;
}

// The piece that begins at the position.
ePiece* eDocumentBody::SplitAt(const ePosition& position) {
    ePiece* const piece = Mutable(position.piece);
    if (piece == &edge || position.offset == piece->begin)
        return piece;
    const std::size_t end = std::exchange(piece->end, position.offset);
    return Link({piece->source, piece->id, position.offset, end, nullptr, nullptr}, piece->next);
}

void eDocumentBody::Release(std::uint64_t id) {
    if (id != 0 && --fragments.at(id).pieces == 0)
        fragments.erase(id);
}

// The end is split off first, so that the beginning is still where it was.
ePiece* eDocumentBody::Erase(const ePosition& begin, const ePosition& end) {
    ePiece* const next = SplitAt(end);
    ePiece* piece = SplitAt(begin);
    ePiece* const before = piece->before;
    while (piece != next) {
        ePiece* const erased = std::exchange(piece, piece->next);
        const eSpot spot{erased->id, erased->begin};
        pieces.erase(spot);
        Release(spot.source);
    }
    before->next = next;
    next->before = before;
    return next;
}

ePiece* eDocumentBody::AddText(std::string text, const eSpot& parent, ePiece* next) {
    const std::size_t size = text.size();
    eFragment& fragment = fragments[++lastFragment];
    fragment.source = std::make_unique<eSource>(std::move(text));
    fragment.parent = parent;
    return Link({fragment.source.get(), lastFragment, 0, size, nullptr, nullptr}, next);
}

// Whether the piece, now the first one, begins with bytes that would be skipped as the text's byte-order mark.
bool eDocumentBody::WouldBeMark(const ePiece& piece) const {
    return original.Begin() == 0 && &piece != &edge && piece.before == &edge &&
           piece.source->Bytes(piece.begin, piece.end).starts_with(unicode::kByteOrderMark);
}

// Puts a blank before the piece if the characters there would become one token, or none.
void eDocumentBody::AddBlankAt(ePiece* next, const eSpot& parent) {
    const ePosition position{next, next->begin};
    if (WouldBeMark(*next) || NeedBlankBetween(CharacterBefore(position), CharacterAt(position)))
        AddText(" ", parent, next);
}

void eDocumentBody::Touch() {
    LearnLayout();
    edited = true;
    lines.reset();
    current.reset();
    currentOffsets.clear();
}

// A text that has been set before is replaced where it is, so that setting a value again and again takes no more room.
bool eDocumentBody::Replace(const ePosition& position, const eFound& found, const std::string& text) {
    if (found.text == text)
        return true;
    Touch();
    const eSDLNode block = Parent(position);
    const eSpot parent{block.source, block.offset};
    ePiece* set = Mutable(position.piece);
    ePiece* next = nullptr;
    if (set->id != 0 && found.text.size() == set->source->Size()) {
        eFragment& fragment = fragments.at(set->id);
        fragment.source = std::make_unique<eSource>(text);
        set->source = fragment.source.get();
        set->end = text.size();
        next = set->next;
    } else {
        const eSpot spot = position.Spot();
        next = Erase(position, found.after);
        set = AddText(text, parent, next);
        moved[spot] = {set->id, 0};
    }
    AddBlankAt(set, parent);
    AddBlankAt(next, parent);
    return true;
}

// What is counted among the children of the block is no longer the same, unless it is appended.
void eDocumentBody::ForgetChildren(const eSDLNode& block) {
    childIndex.Forget({block.source, block.offset});
}

// A word of the block, which may be its name, is another one.
void eDocumentBody::ForgetNames(const eSDLNode& block) {
    ForgetChildren(block);
    if (!IsRoot(block))
        ForgetChildren(block.Parent());
}

// Inserts the item into the block, before the position, with what stands around it.
eSDLNode eDocumentBody::Put(const eSDLNode& block, const ePosition& at, const eSDLItem& item, const eAround& around) {
    const auto& [lead, trail, indent] = around;
    const eSpot parent{block.source, block.offset};
    ePiece* const next = SplitAt(at);
    if (!lead.empty())
        AddText(lead, parent, next);
    ePiece* const put = AddText(Relined(item.text, lineEnd, indent), parent, next);
    const char after = CharacterAt({next, next->begin});
    if (!trail.empty())
        AddText(item.endsInComment && !IsLineEnd(trail.front()) ? lineEnd + indent : trail, parent, next);
    else if (item.endsInComment && !IsLineEnd(after) && after != 0)
        AddText(lineEnd + indent, parent, next);
    AddBlankAt(put, parent);
    AddBlankAt(next, parent);
    return NodeAt({put, 0});
}

// --- Edits ---

bool eDocumentBody::Set(const eSDLNode& node, const eSDLItem& item) {
    ePosition position;
    eFound found;
    if (!item.good || !item.single || !Look(node, &position, &found) || !IsSingle(found.kind))
        return false;
    const bool word = item.first == eSDLKind::Word;
    if (word != (found.kind == eSDLKind::Word) && IsFirstItem(position))
        return false;
    if (found.kind == eSDLKind::Calculation && !found.closed)
        return false;
    if (word || found.kind == eSDLKind::Word)
        ForgetNames(Parent(position));
    return Replace(position, found, item.text);
}

bool eDocumentBody::Rename(const eSDLNode& node, std::string_view word) {
    const eSDLItem item = eSDLItem::Word(word);
    ePosition position;
    eFound found;
    if (!item.good || IsRoot(node) || !Look(node, &position, &found) || found.kind != eSDLKind::Block)
        return false;
    const ePosition inside = Inside(position, found);
    ForgetNames(node);
    if (FirstItem(node, &position, &found) && found.kind == eSDLKind::Word)
        return Replace(position, found, item.text);
    Touch();
    Put(node, inside, item, {});
    return true;
}

eSDLNode eDocumentBody::InsertBefore(const eSDLNode& node, const eSDLItem& item) {
    ePosition position;
    eFound found;
    if (!LookBeside(node, item, &position, &found) || !MayInsert(Parent(position), &position, true, item))
        return {};
    Touch();
    ForgetChildren(Parent(position));
    const eLineBefore line = LineBefore(position);
    const bool alone = line.blank && LineAfter(found.after).blank;
    return Put(Parent(position), position, item, {{}, alone ? lineEnd + line.indent : " ", line.indent});
}

eSDLNode eDocumentBody::InsertAfter(const eSDLNode& node, const eSDLItem& item) {
    ePosition position;
    eFound found;
    if (!LookBeside(node, item, &position, &found) || !MayInsert(Parent(position), &position, false, item))
        return {};
    Touch();
    ForgetChildren(Parent(position));
    const eLineBefore line = LineBefore(position);
    const eLineAfter rest = LineAfter(found.after);
    const bool alone = line.blank && rest.blank;
    const std::string lead = alone || found.kind == eSDLKind::Comment ? lineEnd + line.indent : " ";
    return Put(Parent(position), alone ? rest.textEnd : found.after, item, {lead, {}, line.indent});
}

eSDLNode eDocumentBody::Append(const eSDLNode& parent, const eSDLItem& item) {
    if (!item.good)
        return {};
    return IsRoot(parent) ? AppendToDocument(item) : AppendToBlock(parent, item);
}

// Always on a line of its own, as the last line may end with a comment.
eSDLNode eDocumentBody::AppendToDocument(const eSDLItem& item) {
    if (original.IsOpenAtEnd())
        return {};
    Touch();
    ePosition begin{&edge, 0};
    ePosition position = begin;
    if (PassBlanksBack(&begin, false, &position) >= kMostLooked)
        position = {&edge, 0};
    return Put(Root(), position, item, {CharacterBefore(position) == 0 ? std::string() : lineEnd, {}, {}});
}

eSDLNode eDocumentBody::AppendToBlock(const eSDLNode& block, const eSDLItem& item) {
    ePosition opening;
    eFound found;
    if (!Look(block, &opening, &found) || found.kind != eSDLKind::Block || !found.closed ||
        !MayInsert(block, nullptr, false, item))
        return {};
    ePosition closing = found.after;
    StepBack(&closing);
    if (EndsControl(closing))
        return {};
    Touch();
    ePosition begin = closing;
    ePosition position = closing;
    if (PassBlanksBack(&begin, false, &position) >= kMostLooked)
        return Put(block, closing, item, {});
    if (position == closing)
        return Put(block, begin, item, {CharacterBefore(begin) == '{' ? "" : " ", {}, {}});
    bool isOpeningLine = false;
    std::string indent = IndentOfLineBefore(position, opening, &isOpeningLine);
    if (isOpeningLine)
        indent = LineBefore(closing).indent + unit;
    return Put(block, position, item, {lineEnd + indent, {}, indent});
}

bool eDocumentBody::Remove(const eSDLNode& node) {
    ePosition position;
    eFound found;
    if (!Look(node, &position, &found) || !MayRemove(position, found))
        return false;
    Touch();
    const eSDLNode block = Parent(position);
    ForgetChildren(block);
    const eLineBefore line = LineBefore(position);
    const eLineAfter rest = LineAfter(found.after);
    ePosition from = position;
    ePosition to = found.after;
    if (line.blank && rest.blank) {
        from = line.begin;
        to = rest.end;
    } else if (line.blank) {
        if (const eFound gap = See(to); gap.kind == eSDLKind::Blank)
            to = Normal(to.piece, to.offset + std::min(gap.text.find_first_of("\r\n"), gap.text.size()));
    } else {
        PassBlanksBack(&from, true);
    }
    AddBlankAt(Erase(from, to), {block.source, block.offset});
    return true;
}

} // namespace xSDL
