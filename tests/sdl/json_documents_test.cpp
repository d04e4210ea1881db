// SPDX-License-Identifier: BSL-1.0
#include <qzl_io/sdl/json_to_sdl.h>

#include <cmath>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>
#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <qzl_base/convert.h>
#include <qzl_io/sdl/reader.h>
#include <qzl_io/streams.h>

#include "support/json_walker.h"
#include "support/reports.h"
#include "support/temp_folder.h"

namespace {

// Reads an SDL file token by token.
class eTokenReader : public eSDLReader {
public:
    using eSDLReader::eSDLReader;

    // The next token, sdlNone at the end.
    const eSDLParserToken& Read() {
        ended = !Get();
        return ended ? none : Token();
    }

private:
    const eSDLParserToken none{};
    bool ended = false;
};

// The tokens expected for a JSON text, compared one by one with those of an SDL file.
class eComparison : public eJsonContent {
public:
    explicit eComparison(eTokenReader* sdl) : reader(*sdl) {}

    void BeginObject() override { Enter(); }
    void Name(const std::string& name) override { CompareName(name.c_str()); }
    void EndMember() override { Expect(sdlBlockEnd); }
    void EndObject() override { Leave(); }
    void BeginArray() override {
        Enter();
        inArray.push_back(true);
    }
    void EndArray() override {
        inArray.pop_back();
        Leave();
    }
    void String(const std::string& text) override {
        std::string found = Expect(sdlString).text;
        ConvertEscSequence(&found, false);
        EXPECT_EQ(found, text.c_str()) << Place();
    }
    void Integer(const std::string& digits) override {
        const double value = std::stod(digits);
        if (value >= -2147483648.0 && value <= 4294967295.0)
            EXPECT_EQ(Expect(sdlInt).intValue, static_cast<int>(std::stoll(digits))) << Place();
        else if (value >= -9223372036854775808.0 && value < 18446744073709551616.0)
            EXPECT_EQ(Expect(sdlInt).intValue, 0) << Place();
        else
            CompareFloat(value);
    }
    void Float(double value) override { CompareFloat(value); }
    void Bool(bool value) override { EXPECT_EQ(Expect(sdlInt).intValue, value ? 1 : 0) << Place(); }
    void Null() override {}

    void ExpectEnd() { EXPECT_EQ(reader.Read().type, sdlNone) << Place(); }
    int Compared() const { return compared; }

private:
    // An object or array directly inside an array is a block without a name; the root and a member's value are not
    // blocks of their own.
    void Enter() {
        blocks.push_back(!inArray.empty() && inArray.back());
        if (blocks.back())
            Expect(sdlBlockStart);
        inArray.push_back(false);
    }
    void Leave() {
        inArray.pop_back();
        if (blocks.back())
            Expect(sdlBlockEnd);
        blocks.pop_back();
    }

    const eSDLParserToken& Expect(int type) {
        const eSDLParserToken& token = reader.Read();
        ++compared;
        EXPECT_EQ(token.type, type) << Place();
        return token;
    }

    void CompareFloat(double value) {
        const bool tooLarge = std::fabs(value) > static_cast<double>(std::numeric_limits<float>::max());
        const eSDLParserToken& token = reader.Read();
        ++compared;
        EXPECT_TRUE(token.type == sdlFloat || token.type == sdlInt) << Place();
        EXPECT_EQ(token.floatValue, tooLarge ? 0.0f : static_cast<float>(value)) << Place();
    }

    static bool IsIdentifier(const std::string& name) {
        const std::string letters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz_";
        return name.find_first_of(letters) == 0 && name.find_first_not_of(letters + "0123456789") == name.npos;
    }

    // A name is written without quotes: one that is not an identifier reads back as the tokens that its characters
    // form.
    void CompareName(const std::string& name) {
        if (IsIdentifier(name)) {
            Expect(sdlBlockStart);
            EXPECT_EQ(Expect(sdlIdent).text, name) << Place();
            return;
        }
        const std::string head = "{" + name + " ";
        IO::eBufferStream stream(head);
        const std::vector<eSDLKeyword*> noTables;
        eSDLParser parser("", stream, noTables, {}, nullptr);
        while (parser.Get()) {
            ASSERT_NE(parser.Token().type, sdlError) << name << " does not come back at all";
            const eSDLParserToken& token = reader.Read();
            ++compared;
            EXPECT_EQ(token.type, parser.Token().type) << Place();
            EXPECT_EQ(token.text, parser.Token().text) << Place();
        }
    }

    std::string Place() const { return "token " + std::to_string(compared); }

    eTokenReader& reader;
    std::vector<bool> inArray;
    std::vector<bool> blocks;
    int compared = 0;
};

std::string ReadAll(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

int CompareConverted(const std::filesystem::path& json) {
    SCOPED_TRACE(json.generic_string());
    const eTempFolder folder;
    const eFileName sdl(folder.Name("document.sdl"));
    eReports reports;
    EXPECT_TRUE(JsonToSdl(eFileName(json.generic_string()), sdl));
    EXPECT_TRUE(reports.errors().empty());
    eTokenReader reader(sdl, nullptr);
    eComparison comparison(&reader);
    eJsonWalker(ReadAll(json), &comparison);
    comparison.ExpectEnd();
    return comparison.Compared();
}

TEST(JsonDocuments, OurSceneComesBackValueByValue) {
    EXPECT_GT(CompareConverted(std::filesystem::path(QZL_EXAMPLES_DIR) / "scene.json"), 900);
}

TEST(JsonDocuments, RealDocumentsComeBackValueByValue) {
    if (!std::filesystem::exists(QZL_DOCUMENTS_DIR))
        GTEST_SKIP() << "no further documents in " << QZL_DOCUMENTS_DIR;
    int documents = 0;
    for (const auto& entry : std::filesystem::directory_iterator(QZL_DOCUMENTS_DIR)) {
        if (entry.path().extension() != ".json")
            continue;
        ++documents;
        EXPECT_GT(CompareConverted(entry.path()), 0);
    }
    if (documents == 0)
        GTEST_SKIP() << "no .json file in " << QZL_DOCUMENTS_DIR;
}

} // namespace
