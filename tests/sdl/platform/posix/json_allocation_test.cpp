#include <cstdlib>
#include <new>
#include <string>

#include <gtest/gtest.h>

#include <qzl_io/sdl.h>

#include "support/reports.h"
#include "support/temp_folder.h"

namespace {

// The number of this thread's allocations that succeed before one (or all) fails; -1: none fails.
thread_local long long allocationsLeft = -1;
thread_local bool failsForGood = false;
thread_local bool failed = false;

bool Fails() {
    if (allocationsLeft < 0)
        return false;
    if (allocationsLeft > 0) {
        --allocationsLeft;
        return false;
    }
    failed = true;
    if (!failsForGood)
        allocationsLeft = -1;
    return true;
}

} // namespace

// These operators serve the whole program, the libraries included.
[[gnu::noinline]] void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return Fails() ? nullptr : std::malloc(size > 0 ? size : 1);
}

[[gnu::noinline]] void* operator new(std::size_t size) {
    void* const block = operator new(size, std::nothrow);
    if (!block)
        throw std::bad_alloc();
    return block;
}

[[gnu::noinline]] void operator delete(void* block) noexcept {
    std::free(block);
}

[[gnu::noinline]] void operator delete(void* block, std::size_t) noexcept {
    std::free(block);
}

[[gnu::noinline]] void operator delete(void* block, const std::nothrow_t&) noexcept {
    std::free(block);
}

namespace {

class Allocations : public testing::TestWithParam<bool> {
protected:
    // Converts with a failure at each allocation in turn, until a conversion has no failure.
    void FailEach(const std::string& json, bool convertible) {
        const eFileName input(folder.Write("in.json", json));
        const eFileName output(folder.Name("out.sdl"));
        ASSERT_EQ(Converted(input, output, -1), convertible);
        const std::string text = convertible ? folder.Read("out.sdl") : "";
        long long point = 0;
        for (failed = true; failed; ++point) {
            failed = false;
            if (Converted(input, output, point)) {
                EXPECT_EQ(folder.Read("out.sdl"), text);
            }
        }
        EXPECT_GT(point, 20);
    }

private:
    bool Converted(const eFileName& input, const eFileName& output, long long allocations) {
        const eReports reports;
        bool converted = false;
        failsForGood = GetParam();
        allocationsLeft = allocations;
        try {
            converted = JsonToSdl(input, output);
        } catch (...) {
            allocationsLeft = -1;
            ADD_FAILURE() << "an exception at allocation " << allocations;
            return false;
        }
        allocationsLeft = -1;
        if (!converted && !failsForGood) {
            EXPECT_GE(reports.warnings().size(), 1u) << "at allocation " << allocations;
        }
        return converted;
    }

    const eTempFolder folder;
};

TEST_P(Allocations, ThatFailEndAConversionWithFalseAndAWarning) {
    FailEach(R"({"name": "text that is longer than a short one", "list": [1, 2.5, {"inner": [true, null]}]})", true);
}

TEST_P(Allocations, ThatFailDuringAWarningEndAConversionLikewise) {
    FailEach(R"([100000000000, 1e99, {"name": 5000000000}])", true);
    FailEach(R"({"name": [1, 2)", false);
}

INSTANTIATE_TEST_SUITE_P(OnceOrForGood, Allocations, testing::Bool());

} // namespace
