// SPDX-License-Identifier: BSL-1.0
#include <cstddef>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/long_tests.h"
#include "support/seconds_of.h"

#include "counted_memory.h"
#include "hostile_documents.h"
#include "hostile_shapes.h"
#include "painted_stack.h"

// A document of n bytes takes at most 6n + 64 KiB of memory, its text included, and 64 KiB of stack, whatever is in it.

namespace {

constexpr std::size_t kConstantPart = 64 * 1024;
constexpr std::size_t kLeftAtMost = 1024;

std::size_t SizeOfDocuments() {
    return LongTests() ? 4'000'000 : 100'000;
}

std::vector<eHostileShape> DocumentShapes() {
    std::vector<eHostileShape> shapes = HostileShapes();
    shapes.push_back({"braces in pairs", "", "{}", ""});
    shapes.push_back({"blocks of a word", "", "{a}", ""});
    shapes.push_back({"parentheses within a hidden block", "{##a ", "(", ""});
    shapes.push_back({"illegal characters on lines", "", "$\n", ""});
    shapes.push_back({"broken strings", "", "\"\n", ""});
    return shapes;
}

// All braces, each with its end.
std::string Deep(std::size_t depth) {
    return std::string(depth, '{') + std::string(depth, '}');
}

} // namespace

TEST(DocumentBounds, HostileDocumentsTakeSixTimesTheirSizeAtMostAndLeaveNothing) {
    for (const eHostileShape& shape : DocumentShapes()) {
        const std::string text = shape.OfSize(SizeOfDocuments());
        const eCountedMemory memory;
        UseHostileDocument(text);
        const std::size_t most = memory.Peak();
        const std::size_t left = memory.Left();
        EXPECT_GE(most, text.size()) << shape.name;
        EXPECT_LE(most, 6 * text.size() + kConstantPart) << shape.name;
        EXPECT_LE(left, kLeftAtMost) << shape.name;
    }
}

TEST(DocumentBounds, HostileDocumentsAreReadAndEditedOn64KiBOfStack) {
    for (const eHostileShape& shape : DocumentShapes()) {
        const std::string text = shape.OfSize(SizeOfDocuments());
        EXPECT_LE(StackOf([&] { UseHostileDocument(text); }), kConstantPart) << shape.name;
    }
    const std::string deep = Deep(LongTests() ? 10'000'000 : 100'000);
    EXPECT_LE(StackOf([&] { UseHostileDocument(deep); }), kConstantPart);
    for (const eHostileShape& shape : DocumentShapes()) {
        const std::string text = shape.OfSize(20'000);
        EXPECT_LE(StackOf([&] { EditHostileDocument(text); }), kConstantPart) << shape.name;
    }
}

// With edits that took time for the whole document this would take hours.
TEST(DocumentBounds, AMillionChildrenAreEditedAtAnyPlace) {
    const std::size_t count = LongTests() ? 1'000'000 : 20'000;
    const std::string texts[] = {eHostileShape{"", "{a\n", "{b 1} ; c\n", "}"}.OfSize(10 * count),
                                 eHostileShape{"", "{a ", "1 ", "}"}.OfSize(2 * count)};
    for (const std::string& text : texts) {
        eSDLDocument document(text);
        std::vector<eSDLNode> nodes;
        for (const eSDLNode& child : document.Find("a"))
            nodes.push_back(child);
        std::mt19937 random(1);
        const eSDLNode a = document.Find("a");
        for (int edit = 0; edit < 10'000; ++edit) {
            const eSDLNode& node = nodes[random() % nodes.size()];
            if (node.IsBlock())
                document.Set(node.Value(), edit);
            document.InsertAfter(node, eSDLItem::Block("c"));
            ASSERT_TRUE(document.Append(a, edit));
            if (edit % 2)
                document.Remove(node);
        }
        EXPECT_EQ(document.ErrorCount(), 0U);
    }
}

// If each were counted from the beginning, this would take hours.
TEST(DocumentBounds, AMillionChildrenAreFoundByTheirIndexWithinHalfTheMemoryOfTheText) {
    const std::size_t count = LongTests() ? 1'000'000 : 100'000;
    const std::string texts[] = {eHostileShape{"", "{a ", "{b 1} ", "}"}.OfSize(6 * count),
                                 eHostileShape{"", "{a ", "{}", "}"}.OfSize(2 * count),
                                 eHostileShape{"", "{a ", "1 ", "}"}.OfSize(2 * count)};
    const char* const names[] = {"b[", "*[", ""};
    for (std::size_t which = 0; which < std::size(texts); ++which) {
        const eSDLDocument document(texts[which]);
        const eSDLNode a = document.Find("a");
        const std::string end = *names[which] ? "]" : "";
        const eCountedMemory memory;
        for (std::size_t index = count - 10; index > count / 2; --index)
            ASSERT_TRUE(a.Find(names[which] + std::to_string(index) + end)) << names[which] << index;
        EXPECT_LE(memory.Peak(), texts[which].size() / 2 + kConstantPart);
    }
}

TEST(DocumentBounds, SixteenMegabytesAreReadWithinASecond) {
    if (!LongTests())
        GTEST_SKIP() << "takes a second; set QZL_LONG_TESTS=1";
    for (const eHostileShape& shape : DocumentShapes()) {
        const std::string text = shape.OfSize(16'000'000);
        EXPECT_LE(SecondsOf([&] { eSDLDocument document(text); }), 1) << shape.name;
    }
}
