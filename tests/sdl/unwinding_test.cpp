// SPDX-License-Identifier: BSL-1.0
#include <qzl_io/detail/unwinding.h>

#include <optional>
#include <stdexcept>
#include <utility>

#include <gtest/gtest.h>

namespace {

// Records what its destructor learns.
class eObject {
public:
    explicit eObject(bool* underWayAtEnd) : told(underWayAtEnd) {}
    eObject(const eObject&) = default;
    eObject& operator=(const eObject&) = default;
    ~eObject() { *told = unwinding.IsUnderWay(); }

private:
    bool* told;
    xSDL::eUnwinding unwinding;
};

// Calls an action while an exception is on its way.
template <class eAction>
void WhileUnwinding(eAction action) {
    struct eCaller {
        eAction& action;
        ~eCaller() { action(); }
    };
    try {
        const eCaller caller{action};
        throw std::runtime_error("on its way");
    } catch (const std::runtime_error&) {
    }
}

TEST(Unwinding, IsUnderWayForWhatAnExceptionEnds) {
    bool told = false;
    try {
        const eObject object(&told);
        throw std::runtime_error("on its way");
    } catch (const std::runtime_error&) {
    }
    EXPECT_TRUE(told);
}

TEST(Unwinding, IsNotUnderWayForWhatLivesAndEndsWhileAnExceptionPasses) {
    bool told = true;
    WhileUnwinding([&] { const eObject object(&told); });
    EXPECT_FALSE(told);
}

TEST(Unwinding, StartsAnewWithACopyAndGoesOnThroughAnAssignment) {
    bool told = false;
    bool toldOfCopy = true;
    const eObject object(&told);
    WhileUnwinding([&] {
        eObject copy(object);
        copy = eObject(&toldOfCopy);
    });
    EXPECT_FALSE(toldOfCopy);
    std::optional<eObject> assigned(std::in_place, &told);
    WhileUnwinding([&] {
        bool unused = false;
        *assigned = eObject(&unused);
        *assigned = eObject(&told);
        assigned.reset();
    });
    EXPECT_TRUE(told);
}

} // namespace
