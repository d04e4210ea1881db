#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

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

// The brackets of a text that hold something: where each begins and ends, in the order of the beginnings.
class eBlockIndex {
public:
    static constexpr std::size_t kNone = ~std::size_t{0};

    // For a text of that size. Offsets after the end of one that is not closed are size + 1.
    explicit eBlockIndex(std::uint64_t size, bool wide) : unclosed(size + 1), begins(wide), ends(wide) {}

    // The beginning and the end of a bracket while the text is read. While it is open, its end stands for the one
    // around it, so that no depth needs memory of its own.
    void Open(std::uint64_t begin) {
        begins.Push(begin);
        ends.Push(around);
        around = begins.Size();
    }
    void Close(std::uint64_t end) {
        const std::size_t closed = around - 1;
        around = static_cast<std::size_t>(ends[closed]);
        ends.Set(closed, end);
    }
    // The end of the text: what is open stays so, and the index is complete.
    void Finish() {
        while (around != 0)
            Close(unclosed);
        BuildMaxima();
    }

    std::size_t Size() const { return begins.Size(); }
    std::uint64_t Begin(std::size_t index) const { return begins[index]; }
    // The offset after the bracket, after the whole text for one that is not closed.
    std::uint64_t End(std::size_t index) const { return ends[index]; }
    bool IsClosed(std::size_t index) const { return ends[index] != unclosed; }

    // The first bracket that begins at the offset or after it. As a rule it is near the hint.
    std::size_t FirstFrom(std::uint64_t offset, std::size_t hint) const {
        std::size_t low = std::min(hint, Size());
        if (low > 0 && begins[low - 1] >= offset)
            low = 0;
        std::size_t step = 1;
        std::size_t high = low;
        while (high < Size() && begins[high] < offset) {
            low = high + 1;
            high = std::min(Size(), high + step);
            step *= 2;
        }
        while (low < high) {
            const std::size_t middle = low + (high - low) / 2;
            if (begins[middle] < offset)
                low = middle + 1;
            else
                high = middle;
        }
        return low;
    }

    // The innermost bracket that begins before the offset and ends after it; kNone if there is none.
    std::size_t Around(std::uint64_t offset) const {
        std::size_t below = FirstFrom(offset, 0); // of the level: the first that may not be taken
        std::size_t level = 0;
        for (;;) {
            const std::size_t first = below / kGroup * kGroup;
            while (below > first)
                if (EndAt(level, --below) > offset)
                    return Descend(level, below, offset);
            if (below == 0)
                return kNone;
            below /= kGroup;
            ++level;
        }
    }

private:
    static constexpr std::size_t kGroup = 64;

    std::uint64_t EndAt(std::size_t level, std::size_t index) const {
        return level == 0 ? ends[index] : maxima[level - 1][index];
    }

    // The last bracket below an entry of the level that ends after the offset.
    std::size_t Descend(std::size_t level, std::size_t index, std::uint64_t offset) const {
        for (; level > 0; --level) {
            index = std::min((index + 1) * kGroup, level == 1 ? Size() : maxima[level - 2].size()) - 1;
            while (EndAt(level - 1, index) <= offset)
                --index;
        }
        return index;
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

    std::uint64_t unclosed;
    eOffsets begins;
    eOffsets ends;
    std::size_t around = 0; // 1 + the innermost open one
    std::vector<std::vector<std::uint64_t>> maxima;
};

} // namespace xSDL
