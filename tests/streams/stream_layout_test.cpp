#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <utility>
#include <vector>

#include <qzl_io/streams.h>

namespace {

class eLayout : public IO::eMemoryStream {
public:
    std::vector<std::ptrdiff_t> Offsets() const {
        return {At(buffer), At(bufferEnd), At(bufferSize), At(offset), At(eos), At(ptr), At(flags)};
    }

private:
    template <class T>
    std::ptrdiff_t At(const T& field) const {
        return reinterpret_cast<const char*>(&field) -
               reinterpret_cast<const char*>(static_cast<const IO::eStream*>(this));
    }
};

// A pointer to a virtual function holds 1 plus the place in the table of functions, in bytes.
template <class Function>
int Slot(Function function) {
    static_assert(sizeof function == 2 * sizeof(std::ptrdiff_t));
    std::ptrdiff_t words[2];
    std::memcpy(words, &function, sizeof words);
    return words[0] % 8 == 1 ? static_cast<int>(words[0] / 8) : -1;
}

struct eFileSlots : IO::eFileStreamBase {
    static std::vector<std::pair<int, int>> Appended() {
        return {{Slot(&eFileSlots::CreateHandle), 8}, {Slot(&eFileSlots::CreateHandleError), 9}};
    }
};

struct eMemorySlots : IO::eMemoryStream {
    static std::vector<std::pair<int, int>> Appended() {
        return {{Slot(&eMemorySlots::AllocateBuffer), 8}, {Slot(&eMemorySlots::DeallocateBuffer), 9}};
    }
    static int OfDump() { return Slot(&eMemorySlots::Dump); }
};

} // namespace

TEST(StreamLayout, FieldsStandInTheirOrderFromTheFirstByteOn) {
    EXPECT_EQ(eLayout().Offsets(), (std::vector<std::ptrdiff_t>{8, 16, 24, 32, 40, 48, 56}));
}

// Slots 0 and 1 are the destructor's.
TEST(StreamLayout, VirtualFunctionsHaveTheirSlots) {
    const std::pair<int, int> rows[] = {
        {Slot(&IO::eStream::Trunc), 2},     {Slot(&IO::eStream::Flush), 3}, {Slot(&IO::eStream::Overflow), 4},
        {Slot(&IO::eStream::Underflow), 5}, {Slot(&IO::eStream::Skip), 6},  {eMemorySlots::OfDump(), 7},
    };
    for (const auto& [slot, expected] : rows)
        EXPECT_EQ(slot, expected);
    for (const auto& appended : {eFileSlots::Appended(), eMemorySlots::Appended()})
        for (const auto& [slot, expected] : appended)
            EXPECT_EQ(slot, expected);
}
