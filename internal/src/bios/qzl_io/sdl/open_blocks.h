// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <algorithm>
#include <cstddef>
#include <deque>
#include <optional>
#include <vector>

#include "sdl/lexer.h"

namespace xSDL {

// Offsets in ascending order, of which the last one can be removed. Takes about one byte for each.
class eOffsetStack {
public:
    std::size_t Size() const { return size; }
    void Push(std::size_t offset);
    void Pop();
    // The offset with that many others behind it.
    std::size_t FromTop(std::size_t behind) const;

private:
    std::size_t LastDistance(std::size_t* end) const;

    // The distance of each offset from the one before, in groups of 7 bits, the highest first; all groups but the first
    // of a distance have the highest bit set. It does not move when it grows, as a vector would; but it takes memory
    // even when it is empty, so there is none before the first offset.
    std::optional<std::deque<unsigned char>> distances;
    std::size_t top = 0;
    std::size_t size = 0;
};

// The blocks and control blocks that are open at a place of a source, found by a walk over the tokens from the source's
// beginning, as if every block were read and none were skipped. Within a control block, braces and parentheses end each
// other, as they do for a reader; outside, a closing parenthesis means nothing.
//
// The walk continues from where it last ended, so that all places of a source together take time linear in its size.
class eOpenBlocks {
public:
    struct eOpen {
        std::vector<std::size_t> last; // offsets of the blocks begun after `settled` and still open
        std::size_t closed = 0;        // of the blocks that were open there
        std::size_t surplus = 0;       // ends, in the whole source, of blocks that had begun outside
    };

    // Walks to the place; what begins after `settled` may be unread, so it is walked anew the next time. The source is
    // followed by kTextEnd zeros; its first token is at `begin` or later.
    eOpen Find(const char* text, std::size_t begin, std::size_t settled, std::size_t place);

    // The offset of the open block with that many others in it. Needs the result of Find, and that there are so many.
    std::size_t At(const eOpen& open, std::size_t inner) const;
    std::size_t Count(const eOpen& open) const { return stack.Size() - open.closed + open.last.size(); }

private:
    class eSettled;
    class eAfter;

    template <class eStack>
    std::size_t Walk(const char* text, std::size_t from, std::size_t to, eStack& stack, std::size_t* control) const;

    eOffsetStack stack;
    std::size_t surplus = 0;
    std::size_t at = 0;      // the end of the walk; 0: there was none
    std::size_t control = 0; // above 0: in a control block, which is the open block of that number
};

inline void eOffsetStack::Push(std::size_t offset) {
    if (!distances)
        distances.emplace();
    std::size_t distance = offset - top;
    int shift = 0;
    while (shift < 63 && distance >> shift > 0x7f)
        shift += 7;
    for (unsigned char more = 0; shift >= 0; shift -= 7, more = 0x80)
        distances->push_back(static_cast<unsigned char>((distance >> shift & 0x7f) | more));
    top = offset;
    ++size;
}

inline void eOffsetStack::Pop() {
    std::size_t end = distances->size();
    top -= LastDistance(&end);
    distances->resize(end);
    --size;
}

inline std::size_t eOffsetStack::FromTop(std::size_t behind) const {
    std::size_t offset = top;
    for (std::size_t end = distances->size(); behind > 0; --behind)
        offset -= LastDistance(&end);
    return offset;
}

// Moves the end to before the distance that ends there.
inline std::size_t eOffsetStack::LastDistance(std::size_t* end) const {
    std::size_t distance = 0;
    for (int shift = 0;; shift += 7) {
        const unsigned char group = (*distances)[--*end];
        distance |= static_cast<std::size_t>(group & 0x7f) << shift;
        if (group < 0x80)
            return distance;
    }
}

// The stack of what has been walked for good.
class eOpenBlocks::eSettled {
public:
    eSettled(eOffsetStack& theStack, std::size_t& theSurplus) : stack(theStack), surplus(theSurplus) {}

    std::size_t Size() const { return stack.Size(); }
    void Push(std::size_t offset) { stack.Push(offset); }
    void Pop() {
        if (stack.Size() > 0)
            stack.Pop();
        else
            ++surplus;
    }

private:
    eOffsetStack& stack;
    std::size_t& surplus;
};

// The changes to that stack after it.
class eOpenBlocks::eAfter {
public:
    eAfter(const eOffsetStack& theStack, eOpen& theOpen) : stack(theStack), open(theOpen) {}

    std::size_t Size() const { return stack.Size() - open.closed + open.last.size(); }
    void Push(std::size_t offset) { open.last.push_back(offset); }
    void Pop() {
        if (!open.last.empty())
            open.last.pop_back();
        else if (open.closed < stack.Size())
            ++open.closed;
        else
            ++open.surplus;
    }

private:
    const eOffsetStack& stack;
    eOpen& open;
};

// Passes the tokens that begin before `to`, and returns where the last of them ends. A character that begins no token
// is passed, too.
template <class eStack>
inline std::size_t eOpenBlocks::Walk(const char* text, std::size_t from, std::size_t to, eStack& open,
                                     std::size_t* controlBlock) const {
    const char* const end = text + to;
    const char* passed = text + from;
    for (;;) {
        int line = 0;
        const eTokenBegin begin = FindToken(passed, line);
        if (begin.at >= end || *begin.at == 0)
            return static_cast<std::size_t>(passed - text);
        eLexeme token;
        const char* const next = CutAt(begin.at, &line, &token);
        passed = std::max(next, begin.at + 1);
        switch (token.type) {
        case sdlBlockStart:
            open.Push(static_cast<std::size_t>(begin.at - text));
            break;
        case sdlOpen:
            open.Push(static_cast<std::size_t>(begin.at - text));
            if (*controlBlock == 0)
                *controlBlock = open.Size();
            break;
        case sdlClose:
            if (*controlBlock == 0)
                break;
            [[fallthrough]];
        case sdlBlockEnd:
            open.Pop();
            if (open.Size() < *controlBlock)
                *controlBlock = 0;
            break;
        default:
            break;
        }
    }
}

inline eOpenBlocks::eOpen eOpenBlocks::Find(const char* text, std::size_t begin, std::size_t settled,
                                            std::size_t place) {
    if (at == 0 || at > settled) {
        *this = {};
        at = begin;
    }
    eSettled forGood(stack, surplus);
    at = Walk(text, at, settled, forGood, &control);
    eOpen open;
    open.surplus = surplus;
    eAfter after(stack, open);
    std::size_t controlAfter = control;
    Walk(text, at, place, after, &controlAfter);
    return open;
}

inline std::size_t eOpenBlocks::At(const eOpen& open, std::size_t inner) const {
    if (inner < open.last.size())
        return open.last[open.last.size() - 1 - inner];
    return stack.FromTop(inner - open.last.size() + open.closed);
}

} // namespace xSDL
