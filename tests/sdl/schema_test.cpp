// SPDX-License-Identifier: BSL-1.0
#include <qzl_io/sdl/schema.h>

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <qzl_base/diagnostic.h>

namespace {

using eDiagnostics = std::vector<xError::eDiagnostic>;

eSDLSchema SchemaOf(std::string_view rules) {
    const eSDLDocument document("{schema " + std::string(rules) + "}", "test.sdls");
    eSDLSchema schema(document);
    for (const xError::eDiagnostic& mistake : schema.Errors())
        ADD_FAILURE() << xError::Render(mistake);
    return schema;
}

// "line:column message (suggestion)", one on each line.
std::string Told(const eDiagnostics& mistakes) {
    std::string told;
    for (const xError::eDiagnostic& mistake : mistakes) {
        const xError::ePlace& place = mistake.excerpt.place;
        told += std::to_string(place.line) + ':' + std::to_string(place.column) + ' ' + mistake.message;
        told += mistake.suggestion.empty() ? "\n" : " (" + mistake.suggestion + ")\n";
    }
    return told;
}

std::string Told(std::string_view rules, std::string_view text) {
    return Told(SchemaOf(rules).Check(eSDLDocument(text, "test.sdl")));
}

std::string ToldOfSchema(std::string_view text) {
    return Told(eSDLSchema(eSDLDocument(text, "test.sdls")).Errors());
}

constexpr std::string_view kLights = R"(
{block scene
    {doc "The whole document."}
    {block camera {value float {count 3}}}
    {block light {count 0 many}
        {doc "A lamp."}
        {value string {doc "Its name."}}
        {value float {unit "W"} {default 100} {range 0 1000} {doc "Its power."}}
        {value int {count 0 1}}
        {block color {count 0 1} {value float {count 3 4} {range 0 1}}}
        {block kind {count 0 1} {value word {one_of point spot sun}}}
    }
})";

} // namespace

TEST(Schema, AcceptsWhatKeepsToIt) {
    EXPECT_EQ(Told(kLights, "{scene {camera 1 2.5 (+ 1 2)} {light \"a\" 1} {LIGHT \"b\" 1e2 7 {color 1 0 0.5} {kind "
                            "SPOT}} {light = \"c\" (/ 1 0)}} ; a comment"),
              "");
}

TEST(Schema, TellsAllThatIsWrongAndWhere) {
    const std::pair<const char*, const char*> rows[] = {
        {"{scene\n {camera 1 2 3}\n {lihgt \"a\" 1}\n {light \"b\" 1}}", "3:3 Unknown block 'lihgt'! (light)\n"},
        {"{scene {camera 1 2 3} {hut}}", "1:24 Unknown block 'hut'!\n"},
        {"{scene}", "1:2 The block 'camera' is missing!\n"},
        {"", "1:1 The block 'scene' is missing!\n"},
        {"{scene {camera 1 2 3}} {scene {camera 1 2 3}}", "1:25 More than 1 blocks 'scene'!\n"},
        {"{scene {camera 1 2}}", "1:9 A value is missing!\n"},
        {"{scene {camera 1 2 3 4 5}}", "1:22 Unexpected value!\n1:24 Unexpected value!\n"},
        {"{scene {camera 1 x \"y\"}}", "1:18 Number expected!\n1:20 Number expected!\n"},
        {"{scene {camera 1 2 3} {light 5 1}}", "1:30 String expected!\n"},
        {"{scene {camera 1 2 3} {light \"a\" 1001 5000000000}}",
         "1:34 1001 is out of range!\n1:39 5000000000 is out of range!\n"},
        {"{scene {camera 1 2 3} {light \"a\" 1 {color 0 0 -0.5}}}", "1:47 -0.5 is out of range!\n"},
        {"{scene {camera 1 2 3} {light \"a\" 1 {kind sopt}}}", "1:42 Unknown name 'sopt'! (spot)\n"},
        {"{scene {camera 1 2 3} {light \"a\" 1 {kind beam}}}", "1:42 Unknown name 'beam'!\n"},
        {"{scene {camera 1 2 3} {light \"a\" 1 {kind 1}}}", "1:42 Identifier expected!\n"},
        {"{scene {camera 1 2 3} {##x anything 1 {goes}}}", ""},
        {"{scene {camera 1 2 3} {}}", "1:23 Unknown block ''!\n"},
    };
    for (const auto& [text, told] : rows) {
        EXPECT_EQ(Told(kLights, text), told) << text;
    }
}

TEST(Schema, TellsWhatTheDocumentItselfTells) {
    EXPECT_EQ(Told(kLights, "{scene {camera 1 2 $ 3}}"), "1:20 No token begins like this!\n");
}

TEST(Schema, SaysWhatWasFoundAndExpected) {
    const eSDLSchema schema = SchemaOf(kLights);
    const eSDLDocument document("{scene {camera 1 2 3} {ligt} {light \"a\" 2000}}", "test.sdl");
    const eDiagnostics mistakes = schema.Check(document);
    ASSERT_EQ(mistakes.size(), 2u);
    EXPECT_EQ(mistakes[0].found, "the block 'ligt'");
    EXPECT_EQ(mistakes[0].expected, "camera or light");
    EXPECT_EQ(mistakes[0].excerpt.place.source, "test.sdl");
    EXPECT_EQ(mistakes[0].excerpt.place.offset, 23u);
    EXPECT_EQ(mistakes[0].excerpt.text.substr(mistakes[0].excerpt.markBegin, 4), "ligt");
    EXPECT_EQ(mistakes[1].found, "the number 2000");
    EXPECT_EQ(mistakes[1].expected, "a number from 0 to 1000");
}

TEST(Schema, PlacesAMistakeWithinTheDocumentWhateverIsBeforeTheName) {
    for (const std::string text : {"{\xC7 c", "{(include \"\xC3\xA9\") c}", "{\xE9\xE9\xE9 c}"}) {
        const eSDLDocument document(text);
        for (const xError::eDiagnostic& mistake : eSDLSchema(eSDLDocument("{schema}")).Check(document)) {
            EXPECT_LE(mistake.excerpt.place.offset, text.size()) << text;
            EXPECT_LE(static_cast<unsigned long long>(mistake.excerpt.place.byteColumn),
                      mistake.excerpt.place.offset + 1)
                << text;
        }
    }
}

TEST(Schema, TakesAnyNumberOfMistakesAtMost) {
    const eSDLSchema schema = SchemaOf("");
    const eSDLDocument document("{a} {b} 1 $ {c} 2");
    EXPECT_EQ(schema.Check(document).size(), 6u);
    for (const std::size_t most : {0u, 1u, 3u, 6u, 7u})
        EXPECT_EQ(schema.Check(document, most).size(), std::min<std::size_t>(most, 6));
}

TEST(Schema, HasWordsWithValues) {
    constexpr std::string_view rules =
        "{block light {count 0 many} {value string {count 0 1}} {word power {count 1} {value float}} {word on} "
        "{word at {value float {count 3}}}}";
    EXPECT_EQ(Told(rules, "{light \"a\" power = 1.5 on at 1 2 3} {light on power 1} {light power 2 \"a\"}"), "");
    EXPECT_EQ(Told(rules, "{light}"), "1:2 The word 'power' is missing!\n");
    EXPECT_EQ(Told(rules, "{light power 1 pwoer 2}"), "1:16 Unknown word 'pwoer'! (power)\n1:22 Unexpected value!\n");
    EXPECT_EQ(Told(rules, "{light power on}"), "1:8 A value is missing!\n");
    EXPECT_EQ(Told(rules, "{light power 1 on on}"), "1:19 More than 1 words 'on'!\n");
    EXPECT_EQ(Told(rules, "{light power 1 at 1 2}"), "1:16 A value is missing!\n");
}

TEST(Schema, HasKindsOfValues) {
    const struct {
        const char* kind;
        std::string_view right;
        std::string_view wrong;
    } rows[] = {
        {"int", "1 -2147483648 0xffffffff", "1.5 2147483648 (+ 1 2) \"1\" x"},
        {"float", "1 1.5 (+ 1 2) 5000000000", "\"1\" x"},
        {"bool", "0 1 0x1", "2 -1 1.0 x"},
        {"string", "\"\" \"a\"", "1 x"},
        {"word", "x %y", "1 \"x\""},
        {"any", "1 1.5 \"\" x (+ 1 2)", ""},
        {"int {range 0 5000000000}", "0 5000000000", "-1 5000000001"},
        {"int {range 5}", "5 6", "4"},
        {"string {one_of \"a b\" c}", "\"a b\" \"c\"", "\"A b\" \"d\""},
        {"int {one_of 1 2}", "1 2", "3"},
    };
    for (const auto& row : rows) {
        const std::string rules = std::string("{value ") + row.kind + "}";
        const auto check = [&](std::string_view values, bool right) {
            const eSDLDocument all(values);
            for (const eSDLNode& value : all)
                EXPECT_EQ(Told(rules, value.Text()).empty(), right) << rules << ' ' << value.Text();
        };
        check(row.right, true);
        check(row.wrong, false);
    }
}

TEST(Schema, HasOrdersMarksOthersIncludesAndBlocksWithoutNames) {
    constexpr std::string_view kOrder =
        "{order fixed} {block a {count 0 1}} {block b {count 0 many}} {block c {count 0 1}}";
    EXPECT_EQ(Told(kOrder, "{a} {b} {b} {c}"), "");
    EXPECT_EQ(Told(kOrder, "{b} {c}"), "");
    EXPECT_EQ(Told(kOrder, "{c} {b} {a}"), "1:6 The block 'b' stands too late!\n1:10 The block 'a' stands too late!\n");
    EXPECT_EQ(Told("{block a {marks no}}", "{#m a}"), "1:5 The block 'a' takes no mark!\n");
    EXPECT_EQ(Told("{block a}", "{#m a}"), "");
    EXPECT_EQ(Told("{others} {block a}", "{a} {b {c 1}}"), "");
    EXPECT_EQ(Told("{includes no}", "(\"include\") ( Include \"x\")"), "1:13 Files may not be included here!\n");
    EXPECT_EQ(Told("{includes yes}", "(include \"x\")"), "");
    EXPECT_EQ(Told("{block {count 2} {value int}}", "{1} {2}"), "");
    EXPECT_EQ(Told("{block {count 1} {value int}}", "{1} {2}"), "1:5 More than 1 blocks ''!\n");
}

TEST(Schema, HasTypesThatMayContainThemselves) {
    constexpr std::string_view rules =
        "{block tree {is node}} {type node {doc \"A node.\"} {value int} {block node {is node} {count 0 many}}}";
    EXPECT_EQ(Told(rules, "{tree 1 {node 2 {node 3}} {NODE 4}}"), "");
    EXPECT_EQ(Told(rules, "{tree 1 {node 2 {node}}}"), "1:18 A value is missing!\n");
    std::string deep = "{tree 1 ";
    for (int level = 0; level < 100'000; ++level)
        deep += "{node 1 ";
    EXPECT_EQ(Told(rules, deep + "{nod}" + std::string(100'001, '}')),
              "1:" + std::to_string(deep.size() + 2) + " Unknown block 'nod'! (node)\n");
}

TEST(Schema, IsItselfChecked) {
    EXPECT_EQ(ToldOfSchema("{schema {block a {value int}}}"), "");
    EXPECT_EQ(ToldOfSchema(""), "1:1 The block 'schema' is missing!\n");
    EXPECT_EQ(ToldOfSchema("{schema {blok a}}"), "1:10 Unknown block 'blok'! (block)\n");
    EXPECT_EQ(ToldOfSchema("{schema {block a {value itn}}}"), "1:25 Unknown name 'itn'! (int)\n");
    EXPECT_EQ(ToldOfSchema("{schema {block a {is ndoe}} {type node}}"), "1:22 Unknown type 'ndoe'! (node)\n");
    EXPECT_EQ(ToldOfSchema("{schema {block a {is node}} {type node {is leaf}} {type leaf}}"),
              "1:22 A type cannot be that of a type!\n");
    EXPECT_EQ(ToldOfSchema("{schema {block a {count 3 2}}}"), "1:27 No count can be between these!\n");
    EXPECT_EQ(ToldOfSchema("{schema {value int {range 3 2}}}"), "1:29 No number can be between these!\n");
    EXPECT_EQ(ToldOfSchema("{schema {block a {count -1}}}"), "1:25 -1 is out of range!\n");
}

TEST(Schema, OfAnyDepthIsRead) {
    std::string text = "{schema ";
    for (int level = 0; level < 20'000; ++level)
        text += "{block a ";
    EXPECT_EQ(ToldOfSchema(text + std::string(20'001, '}')), "");
}

TEST(Schema, OfSchemasAcceptsItself) {
    const eSDLDocument document(eSDLSchema::TextOfSchemas(), "schema.sdls");
    EXPECT_EQ(Told(eSDLSchema::OfSchemas().Check(document)), "");
    EXPECT_EQ(Told(eSDLSchema(document).Errors()), "");
    EXPECT_EQ(Told(eSDLSchema::OfSchemas().Errors()), "");
}

TEST(Schema, SaysWhatPartsAre) {
    const eSDLSchema schema = SchemaOf(kLights);
    const eSDLDocument document("{scene {light \"a\" 5 {kind spot}} {hut 1}}");
    EXPECT_EQ(schema.Says(document.Find("scene")).doc, "The whole document.");
    EXPECT_EQ(schema.Says(document.Find("scene/light")).doc, "A lamp.");
    const auto power = schema.Says(document.Find("scene/light/1"));
    EXPECT_EQ(power.doc, "Its power.");
    EXPECT_EQ(power.kind, "float");
    EXPECT_EQ(power.unit, "W");
    EXPECT_EQ(power.defaultValue, "100");
    EXPECT_EQ(schema.Says(document.Find("scene/light/kind/0")).choices,
              (std::vector<std::string>{"point", "spot", "sun"}));
    EXPECT_EQ(schema.Says(document.Find("scene/hut")).doc, "");
    EXPECT_EQ(schema.Says(document.Find("scene/hut/0")).kind, "");
    EXPECT_EQ(schema.Says(eSDLDocument("{scene 5}").Find("scene/0")).kind, "");
    EXPECT_EQ(schema.Says(eSDLNode()).doc, "");
    EXPECT_EQ(schema.NamesIn(document.Root()), (std::vector<std::string>{"scene"}));
    EXPECT_EQ(schema.NamesIn(document.Find("scene")), (std::vector<std::string>{"camera", "light"}));
    EXPECT_EQ(schema.NamesIn(document.Find("scene/hut")), std::vector<std::string>());
}

TEST(Schema, SaysWhatWordsAndTheirValuesAre) {
    const eSDLSchema schema =
        SchemaOf("{block light {value string} {word power {doc \"Power.\"} {value float {unit \"W\"}}}}");
    const eSDLDocument document("{light \"a\" power = 5}");
    EXPECT_EQ(schema.Says(document.Find("light/power")).doc, "Power.");
    EXPECT_EQ(schema.Says(document.Find("light/power").Value()).unit, "W");
    EXPECT_EQ(schema.Says(document.Find("light").Value()).kind, "string");
    EXPECT_EQ(schema.NamesIn(document.Find("light")), (std::vector<std::string>{"power"}));
}

TEST(Schema, ShortensLongValuesBetweenCharacters) {
    std::string text;
    for (int character = 0; character < 200; ++character)
        text += "\u20ac";
    const std::string told =
        Told("{value word {one_of a}} {block b {value string {one_of \"x\"}}}", "a {b \"" + text + "\"}");
    EXPECT_NE(told.find("\u20ac..."), std::string::npos) << told;
    EXPECT_EQ(told.find("\xE2..."), std::string::npos);
    EXPECT_EQ(told.find("\xE2\x82..."), std::string::npos);
}

TEST(Schema, ANumberBeyondDoublesIsOutOfAnyRange) {
    EXPECT_EQ(Told("{block a {value float {range 0 1}}}", "{a 1e999}"), "1:4 1e999 is out of range!\n");
}

TEST(Schema, IsMovedWithItsRules) {
    eSDLSchema schema = SchemaOf("{block a}");
    schema = SchemaOf("{block b}");
    EXPECT_EQ(Told(schema.Check(eSDLDocument("{b}"))), "");
}

// --- Drafts ---

namespace {

std::string DraftOf(const std::vector<std::string>& texts) {
    std::vector<eSDLDocument> documents;
    for (const std::string& text : texts)
        documents.emplace_back(text);
    std::vector<const eSDLDocument*> pointers;
    for (const eSDLDocument& document : documents)
        pointers.push_back(&document);
    const std::string draft = eSDLSchema::Draft(pointers);
    const eSDLSchema schema(eSDLDocument(draft, "draft.sdls"));
    EXPECT_EQ(Told(schema.Errors()), "") << draft;
    for (const eSDLDocument& document : documents)
        EXPECT_EQ(Told(schema.Check(document)), "") << draft;
    return draft;
}

} // namespace

TEST(SchemaDraft, SaysWhatIsInAllDocuments) {
    EXPECT_EQ(DraftOf({"{scene 1 {light \"a\" 1 on}}",
                       "{scene {light \"b\" 1.5 off {color 1 2 3 4 5 6}} {light \"c\" 2 on}}"}),
              "{schema\r\n"
              "\t{block scene\r\n"
              "\t\t{value int {count 0 1}}\r\n"
              "\t\t{block light {count 1 many}\r\n"
              "\t\t\t{value string}\r\n"
              "\t\t\t{value float}\r\n"
              "\t\t\t{value word {one_of on off}}\r\n"
              "\t\t\t{block color {count 0 1}\r\n"
              "\t\t\t\t{value int {count 6 many}}\r\n"
              "\t\t\t}\r\n"
              "\t\t}\r\n"
              "\t}\r\n"
              "}\r\n");
}

TEST(SchemaDraft, GivesUpToFourValuesARuleEach) {
    const std::string rule = "\t\t{value int}\r\n";
    EXPECT_EQ(DraftOf({"{a 1 2 3 4}"}), "{schema\r\n\t{block a\r\n" + rule + rule + rule + rule + "\t}\r\n}\r\n");
}

TEST(SchemaDraft, AcceptsItsDocuments) {
    DraftOf({});
    DraftOf({""});
    DraftOf({"1 2.5 \"x\" y (+ 1 2) * 5000000000"});
    DraftOf({"{a 1} {a} {A x}", "{b} {a {c}}"});
    DraftOf({"{ 1 } {} { {x 1} }"});
    DraftOf({"{a 1 x} {a x 1} {a \"s\" x y z 1 2 3 4}"});
    DraftOf({"{a u} {a v} {a w} {a x} {a y} {a z} {a aa} {a bb} {a cc} {a dd}"});
    std::string deep;
    for (int level = 0; level < 2'000; ++level)
        deep += "{a 1 ";
    DraftOf({deep + std::string(2'000, '}')});
}

// Its lines are indented, so a rule for each of many levels would take their square.
TEST(SchemaDraft, HasOthersInPlaceOfRulesBelowThe32ndLevel) {
    const auto nested = [](int levels) {
        std::string text;
        for (int level = 0; level < levels; ++level)
            text += "{a";
        return text + std::string(static_cast<std::size_t>(levels), '}');
    };
    EXPECT_EQ(DraftOf({nested(32)}).find("{others}"), std::string::npos);
    const std::string draft = DraftOf({nested(33)});
    EXPECT_NE(draft.find("\r\n" + std::string(33, '\t') + "{others}\r\n" + std::string(32, '\t') + "}\r\n"),
              std::string::npos);
    EXPECT_EQ(DraftOf({nested(100'000)}), draft);
}

// A block that many blocks of one name might hold is looked at where it stands alone.
TEST(SchemaDraft, OfManyBlocksWithManyNamesTakesTimeInProportion) {
    std::string text = "{a";
    for (int name = 0; name < 30'000; ++name)
        text += "{b" + std::to_string(name) + "}";
    text += "}";
    for (int block = 0; block < 100'000; ++block)
        text += "{a}";
    const eSDLDocument document(text);
    const std::string draft = eSDLSchema::Draft({&document});
    EXPECT_NE(draft.find("{block b29999 {count 0 1}}"), std::string::npos);
}

TEST(Schema, TellsTheFirstThousandMistakesOfASchemaAtMost) {
    std::string text;
    for (int count = 0; count < 5000; ++count)
        text += "1 ";
    EXPECT_EQ(eSDLSchema(eSDLDocument(text)).Errors().size(), eSDLSchema::kMostErrors);
}
