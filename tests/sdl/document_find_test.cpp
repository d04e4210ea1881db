// SPDX-License-Identifier: BSL-1.0
#include <gtest/gtest.h>

#include <cstddef>
#include <iterator>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include <qzl_io/sdl/document.h>

#include "support/rounds.h"

namespace {

constexpr const char* kScene = R"({scene ; the file
  {light name = "sun" power = 1.5}
  {Light "lamp 1" {name "lamp"} {power 2} {color 1 0.5 (/ 1 4)}}
  {light {name lamp} mode = Fast}
  {##draft light {name "hidden"}}
  {#k mesh {vertex 1} {vertex 2 3}}
  { {id 7} } {} ("no {item}")
}
loose 0x1F)";

struct eFinding {
    const char* path;
    std::vector<std::string> texts;
};

const eFinding kFindings[] = {
    {"scene/light/power", {"power", "{power 2}"}},
    {"scene/light[0]/power", {"power"}},
    {"SCENE / LIGHT [1] / Power", {"{power 2}"}},
    {"scene/light[3]", {}},
    {"scene/light[name=\"sun\"]/power", {"power"}},
    {"scene/light[name=lamp]/mode", {"mode"}},
    {"scene/light[name=\"lamp\"]/color/2", {"(/ 1 4)"}},
    {"scene/light[name=lamp][1]", {"{light {name lamp} mode = Fast}"}},
    {"scene/light[power=2.0]/0", {"\"lamp 1\""}},
    {"scene/light[mode=FAST]/name", {"{name lamp}"}},
    {"scene/light[power=\"2\"]", {}},
    {"scene/mesh/vertex", {"{vertex 1}", "{vertex 2 3}"}},
    {"scene/mesh/vertex/0", {"1", "2"}},
    {"scene/mesh/*[1]/1", {"3"}},
    {"scene/*[4]/id/0", {"7"}},
    {"*/draft", {}},
    {"scene/draft", {}},
    {"scene/*[id=7]", {"{ {id 7} }"}},
    {"scene/light[power=1.5]/power", {"power"}},
    {"scene/light[1][power=2]/0", {"\"lamp 1\""}},
    {"scene/light[1][power=3]/0", {}},
    {"scene/*[vertex=1.0]", {"{#k mesh {vertex 1} {vertex 2 3}}"}},
    {"scene/light/power[name=1]", {}},
    {"scene/light/*[lamp=1]", {}},
    {"loose", {"loose"}},
    {"1", {"0x1F"}},
    {"0", {"loose"}},
    {"scene/no/such", {}},
    {"light", {}},
};

TEST(DocumentFind, APathNamesTheNodesThatTheHeaderSays) {
    const eSDLDocument document(kScene);
    EXPECT_EQ(document.ErrorCount(), 0U);
    for (const eFinding& finding : kFindings) {
        std::vector<std::string> texts;
        for (const eSDLNode& node : document.FindAll(finding.path))
            texts.push_back(node.Text());
        EXPECT_EQ(eSDLDocument::PathMistake(finding.path), "") << finding.path;
        EXPECT_EQ(texts, finding.texts) << finding.path;
        EXPECT_EQ(document.Find(finding.path).Text(), texts.empty() ? "" : texts.front()) << finding.path;
    }
}

TEST(DocumentFind, AWrongPathFindsNothingAndTellsItsMistake) {
    const eSDLDocument document(kScene);
    const char* const paths[] = {"",
                                 "/",
                                 "scene/",
                                 "/scene",
                                 "scene//light",
                                 "scene light",
                                 "a[",
                                 "a[]",
                                 "a[-1]",
                                 "a[1",
                                 "a[name]",
                                 "a[name 1]",
                                 "a[name=]",
                                 "a[name=*]",
                                 "a[\"name\"=1]",
                                 "a[1.5]",
                                 "1[0]",
                                 "-1",
                                 "a;b",
                                 "\"a\"",
                                 "a[name=\"x]",
                                 "99999999999999999999"};
    for (const char* const path : paths) {
        EXPECT_NE(eSDLDocument::PathMistake(path), "") << path;
        EXPECT_FALSE(document.Find(path)) << path;
    }
    EXPECT_NE(eSDLDocument::PathMistake(std::string("a\0b", 3)), "");
}

// The child with the index among those that the path names, one after the other.
eSDLNode Counted(const eSDLNode& block, std::string_view name, std::size_t index) {
    bool any = false;
    for (const bool words : {false, true}) {
        for (const eSDLNode& child : block) {
            const bool meant = name == "*"  ? child.IsBlock()
                               : name == "" ? !child.IsBlock()
                               : words      ? child.Kind() == eSDLKind::Word && child.Is(name)
                                            : child.IsBlock() && child.Is(name);
            any = any || meant;
            if (meant && index-- == 0)
                return child;
        }
        if (any || name == "*" || name == "")
            break;
    }
    return {};
}

std::string ManyChildren(std::mt19937& random) {
    constexpr const char* kChildren[] = {"{a 1}", "{B}",   "{b {a}}", "a",  "w",      "2.5",
                                         "\"s\"", "; w\n", "{##h}",   "{}", "(+ 1 2)"};
    std::string text = "{block ";
    for (int left = 150; left > 0; --left)
        text.append(kChildren[random() % std::size(kChildren)]).append(" ");
    return text + "}";
}

void EditSomewhere(eSDLDocument* document, std::mt19937& random) {
    const eSDLNode block = *document->begin();
    const eSDLNode node = Counted(block, random() % 2 ? "*" : "", random() % 60);
    switch (random() % 8) {
    case 0:
        document->InsertBefore(node, eSDLItem::Block("a"));
        break;
    case 1:
        document->InsertAfter(node, eSDLItem::Source("a {b} 7"));
        break;
    case 2:
        document->Remove(node);
        break;
    case 3:
        document->Rename(node, random() % 2 ? "a" : "b");
        break;
    case 4:
        document->Set(node, eSDLItem::Word("w"));
        break;
    case 5:
        document->Append(block, eSDLItem::Block("b"));
        break;
    case 6:
        document->Append(node, eSDLItem::Word("a"));
        break;
    default:
        document->Set(node, 5);
        break;
    }
}

TEST(DocumentFind, AChildIsFoundByItsIndexWhateverWasFoundAndEditedBefore) {
    constexpr const char* kNames[] = {"a", "B", "w", "*", "", "none"};
    std::mt19937 random(5);
    for (eRounds rounds(100, 5000); rounds.Next();) {
        eSDLDocument document(ManyChildren(random));
        for (int step = 0; step < 60; ++step) {
            if (random() % 3 == 0)
                EditSomewhere(&document, random);
            const std::string name = kNames[random() % std::size(kNames)];
            const std::size_t index = random() % 90;
            const eSDLNode block = *document.begin();
            const std::string path = name.empty() ? std::to_string(index) : name + "[" + std::to_string(index) + "]";
            ASSERT_EQ(block.Find(path), Counted(block, name, index)) << path << " in " << document.Text();
        }
    }
}

TEST(DocumentFind, ValueOfABlockAndOfAWordIsTheSameSetting) {
    const eSDLDocument document("{light power = 1.5} {light {power 2} 3} {color 1 x {y} z}");
    EXPECT_EQ(document.Find("light[0]/power").Value().As<float>(), 1.5F);
    EXPECT_EQ(document.Find("light[1]/power").Value().As<float>(), 2.0F);
    EXPECT_EQ(document.Find("color").Value(2).Text(), "z");
    EXPECT_FALSE(document.Find("color").Value(3));
    EXPECT_EQ(document.Find("color/x").Value().Kind(), eSDLKind::None);
    EXPECT_EQ(document.Find("light[1]").Value().As<int>(), 3);
    EXPECT_EQ(document.Root().Value().Kind(), eSDLKind::None);
}

TEST(DocumentFind, NodesTellWhatTheyAre) {
    const eSDLDocument document(kScene);
    const eSDLNode scene = document.Find("scene");
    const eSDLNode mesh = scene.Find("mesh");
    EXPECT_EQ(scene.Name(), "scene");
    EXPECT_TRUE(scene.Is("Scene"));
    EXPECT_TRUE(scene.IsClosed());
    EXPECT_EQ(mesh.Mark(), "k");
    EXPECT_EQ(mesh.Parent(), scene);
    EXPECT_EQ(scene.Parent(), document.Root());
    EXPECT_FALSE(document.Root().Parent());
    EXPECT_EQ(document.Root().Kind(), eSDLKind::Document);
    EXPECT_EQ(std::distance(scene.begin(), scene.end()), 6);
    EXPECT_EQ(scene.Find("light[2]/mode").Value().Next().Kind(), eSDLKind::None);
    EXPECT_EQ(scene.Find("light[1]/color/2").Kind(), eSDLKind::Calculation);
    EXPECT_EQ(scene.Find("light[1]/color/2").As<float>(), 0.25F);
    EXPECT_EQ(mesh.Place().line, 6);
    EXPECT_EQ(mesh.Place().column, 3);
    EXPECT_FALSE(eSDLNode());
    EXPECT_FALSE(eSDLNode().Next());
    EXPECT_FALSE(eSDLNode().Value());
    EXPECT_TRUE(eSDLNode() == eSDLNode());
}

TEST(DocumentFind, WhatIsNoNumberHasNoValue) {
    const eSDLDocument document("w 1 {b} (+ 1 2 \"c\") 1e99 (/ 1 0) (+ 1");
    EXPECT_EQ(document.Find("w").Value(1).Kind(), eSDLKind::None);
    EXPECT_FALSE(document.Find("w").As<float>());
    EXPECT_FALSE(eSDLNode().As<float>());
    EXPECT_EQ(document.Find("3").Text(), "1e99");
    EXPECT_FALSE(document.Find("3").As<float>());
    EXPECT_TRUE(document.Find("3").As<double>());
    const eSDLDocument words("{light power 1 2 3}");
    EXPECT_EQ(words.Find("light/power").Value(2).As<int>(), 3);
    EXPECT_FALSE(words.Find("light/power").Value(3));
    for (const char* const wrong : {"(+ 1 x)", "(+ 1 \"s\")", "(+)", "(+ 1", "(* 2 ; c"}) {
        const eSDLDocument calculation(wrong);
        for (const eSDLPart& part : calculation.Parts()) {
            EXPECT_FALSE(part.node.As<float>()) << wrong;
            EXPECT_FALSE(part.node.As<double>()) << wrong;
            EXPECT_FALSE(part.node.As<int>()) << wrong;
        }
    }
}

// The places noted for one block give way to those for others.
TEST(DocumentFind, ChildrenOfManyBlocksAreFoundByTheirIndex) {
    std::string text;
    for (int block = 0; block < 40; ++block) {
        text += "{b";
        for (int child = 0; child < 200; ++child)
            text += " {c " + std::to_string(child) + "}";
        text += "}\n";
    }
    const eSDLDocument document(text);
    for (const int child : {199, 100, 150})
        for (int block = 0; block < 40; ++block) {
            const std::string path = "b[" + std::to_string(block) + "]/c[" + std::to_string(child) + "]/0";
            ASSERT_EQ(document.Find(path).As<int>(), child) << path;
        }
}

} // namespace
