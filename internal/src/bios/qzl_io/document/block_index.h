// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "sdl/count_bits.h"

namespace xSDL {

// A list that grows without copying more than its first part, and takes nothing while it is empty.
template <class T>
class eGrowing {
public:
    void Push(T value) {
        if (size % kPart == 0) {
            parts.emplace_back();
            if (size != 0)
                parts.back().reserve(kPart);
        }
        parts.back().push_back(value);
        ++size;
    }
    T& operator[](std::size_t index) { return parts[index / kPart][index % kPart]; }
    const T& operator[](std::size_t index) const { return parts[index / kPart][index % kPart]; }
    std::size_t Size() const { return size; }

private:
    static constexpr std::size_t kPart = std::size_t{1} << 14;

    std::size_t size = 0;
    std::vector<std::vector<T>> parts;
};

// A list of offsets, of 4 bytes each where the text they are in is short enough.
class eOffsets {
public:
    explicit eOffsets(bool areWide) : wide(areWide) {}

    void Push(std::uint64_t offset) {
        if (wide)
            wideOffsets.Push(offset);
        else
            offsets.Push(static_cast<std::uint32_t>(offset));
    }
    void Set(std::size_t index, std::uint64_t offset) {
        if (wide)
            wideOffsets[index] = offset;
        else
            offsets[index] = static_cast<std::uint32_t>(offset);
    }
    std::uint64_t operator[](std::size_t index) const { return wide ? wideOffsets[index] : offsets[index]; }
    std::size_t Size() const { return wide ? wideOffsets.Size() : offsets.Size(); }

private:
    bool wide;
    eGrowing<std::uint32_t> offsets;
    eGrowing<std::uint64_t> wideOffsets;
};

// The brackets of a text that hold something: where each begins and ends, in the order of the beginnings. A text may
// consist of nothing else, so a beginning is one bit for each byte of the text, and an end takes 4 bytes.
class eBlockIndex {
public:
    static constexpr std::size_t kNone = ~std::size_t{0};

    // For a text of that size.
    eBlockIndex(std::size_t size, bool wide) : unclosed(size + 1), ends(wide) {}

    // The beginning and the end of a bracket while the text is read. While it is open, its end stands for the one
    // around it, so that no depth needs memory of its own.
    void Open(std::size_t begin) {
        if (begins.empty())
            begins.resize(unclosed / kWord + 1);
        begins[begin / kWord] |= std::uint64_t{1} << begin % kWord;
        ends.Push(around);
        around = ends.Size();
    }
    void Close(std::size_t end) {
        const std::size_t closed = around - 1;
        around = static_cast<std::size_t>(ends[closed]);
        ends.Set(closed, end);
    }
    // The end of the text: what is open stays so, and the index is complete.
    void Finish() {
        while (around != 0)
            Close(unclosed);
        CountBegins();
        BuildMaxima();
    }

    std::size_t Size() const { return ends.Size(); }
    // The offset after the bracket, after the whole text for one that is not closed.
    std::size_t End(std::size_t index) const { return static_cast<std::size_t>(ends[index]); }
    bool IsClosed(std::size_t index) const { return ends[index] != unclosed; }

    // The number of brackets that begin before the offset: the index of one that begins there.
    std::size_t IndexAt(std::size_t offset) const {
        if (begins.empty())
            return 0;
        const std::size_t word = offset / kWord;
        std::size_t index = counts[word / kCounted];
        for (std::size_t before = word / kCounted * kCounted; before < word; ++before)
            index += Count(begins[before]);
        return index + Count(begins[word] & ((std::uint64_t{1} << offset % kWord) - 1));
    }

    std::size_t Begin(std::size_t index) const {
        const auto part = std::upper_bound(counts.begin(), counts.end(), index) - counts.begin() - 1;
        std::size_t word = static_cast<std::size_t>(part) * kCounted;
        std::size_t left = index - counts[static_cast<std::size_t>(part)];
        for (; left >= Count(begins[word]); ++word)
            left -= Count(begins[word]);
        std::uint64_t bits = begins[word];
        for (; left > 0; --left)
            bits &= bits - 1;
        return word * kWord + static_cast<std::size_t>(std::countr_zero(bits));
    }

    // The innermost bracket that begins before the offset and ends after it; kNone if there is none.
    std::size_t Around(std::size_t offset) const { return Around(offset, offset + 1); }
    // The innermost bracket that begins before the offset and has its end at the other one or after it.
    std::size_t Around(std::size_t offset, std::size_t end) const {
        std::size_t below = IndexAt(offset); // of the level: the first that may not be taken
        for (std::size_t level = 0;; ++level) {
            const bool last = level == maxima.size();
            const std::size_t first = last ? 0 : below / kGroup * kGroup;
            while (below > first)
                if (EndAt(level, --below) >= end)
                    return Descend(level, below, end);
            if (last)
                return kNone;
            below /= kGroup;
        }
    }

private:
    static constexpr std::size_t kWord = 64;
    static constexpr std::size_t kCounted = 8; // words
    static constexpr std::size_t kGroup = 64;

    static std::size_t Count(std::uint64_t bits) { return static_cast<std::size_t>(CountBits(bits)); }

    std::uint64_t EndAt(std::size_t level, std::size_t index) const {
        return level == 0 ? ends[index] : maxima[level - 1][index];
    }

    // The last bracket below an entry of the level that has its end there or later.
    std::size_t Descend(std::size_t level, std::size_t index, std::size_t end) const {
        for (; level > 0; --level) {
            index = std::min((index + 1) * kGroup, level == 1 ? Size() : maxima[level - 2].size()) - 1;
            while (EndAt(level - 1, index) < end)
                --index;
        }
        return index;
    }

    void CountBegins() {
        counts.reserve((begins.size() + kCounted - 1) / kCounted);
        std::size_t count = 0;
        for (std::size_t word = 0; word < begins.size(); ++word) {
            if (word % kCounted == 0)
                counts.push_back(count);
            count += Count(begins[word]);
        }
    }

    // Of each group the last end, and so on of these until there is one group.
    void BuildMaxima() {
        for (std::size_t count = Size(), level = 0; count > kGroup; ++level) {
            std::vector<std::uint64_t> last((count + kGroup - 1) / kGroup);
            for (std::size_t index = 0; index < count; ++index)
                last[index / kGroup] = std::max(last[index / kGroup], EndAt(level, index));
            count = last.size();
            maxima.push_back(std::move(last));
        }
    }

    std::size_t unclosed;
    std::vector<std::uint64_t> begins; // a bit for each byte
    std::vector<std::size_t> counts;   // of the bits before each part of kCounted words
    eOffsets ends;
    std::size_t around = 0; // 1 + the innermost open one
    std::vector<std::vector<std::uint64_t>> maxima;
};

} // namespace xSDL
