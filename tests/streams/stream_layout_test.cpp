// SPDX-License-Identifier: BSL-1.0
#include <gtest/gtest.h>

#include <cstddef>
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

} // namespace

TEST(StreamLayout, FieldsKeepTheirOrderFromTheFirstByteOn) {
    EXPECT_EQ(eLayout().Offsets(), (std::vector<std::ptrdiff_t>{8, 16, 24, 32, 40, 48, 56}));
}
