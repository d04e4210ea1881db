// SPDX-License-Identifier: BSL-1.0
// Documents are converted while everything that this takes fails: the call is false, with one warning, or the whole
// text is in the file.
#include <set>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include <qzl_io/sdl.h>

#include "faults/kept_document.h"
#include "faults/torture.h"
#include "faults/work_folder.h"
#include "support/reports.h"

namespace {

const std::string kInput = "the document that is to be converted.json";
const std::string kOutput = "the text that it is converted to.sdl";
const std::string kOld = "{old}";

std::string Items() {
    std::string json = "[";
    for (int item = 0; item < 20; ++item)
        json += R"({"name": "a text that is longer than a short one", "list": [1, 2.5, true, null, {}]},)";
    json.back() = ']';
    return json;
}

class eConversion : public eScenario {
public:
    // Made without faults, to compare with.
    explicit eConversion(const std::string& json, bool isConvertible = true)
        : convertible(isConvertible), input(folder.Write(kInput, json)), output(folder.Name(kOutput)) {
        const eReports silent;
        JsonToSdl(input, output);
        text = convertible ? folder.Read(kOutput) : kOld;
        folder.Write(kOutput, kOld);
    }

    bool Run() override {
        const int before = eNoted::Warnings();
        converted = JsonToSdl(input, output);
        warnings = eNoted::Warnings() - before;
        said = eNoted::LastWarning();
        return converted == convertible;
    }

    void Look(const eAftermath& after) override {
        EXPECT_TRUE(converted || warnings >= 1 || after.noMemory) << "false, but no warning";
        EXPECT_TRUE(convertible || !converted);
        const eKeptDocuments left(folder, kOutput, text, said, after);
        EXPECT_EQ((std::set<std::string>{kInput, kOutput}), left.Entries());
        const std::string content = folder.Read(kOutput);
        EXPECT_TRUE(content == text || (!after.complete && content == kOld)) << content.size();
    }

    bool Expects(std::string_view) const override { return true; } // the parser's messages are its own

private:
    eWorkFolder folder;
    const bool convertible;
    const eFileName input, output;
    std::string text;
    bool converted = false;
    int warnings = 1;
    std::string said;
};

class ePlainConversion : public eConversion {
public:
    ePlainConversion() : eConversion(Items()) {}
};

class eWarnedConversion : public eConversion {
public:
    eWarnedConversion() : eConversion(R"([100000000000, 1e99, {"name of a member": 5000000000}])") {}
};

class eRefusedConversion : public eConversion {
public:
    eRefusedConversion() : eConversion(R"({"name": [1, 2)", false) {}
};

} // namespace

TEST(Faults, ConvertingADocument) {
    Torture<ePlainConversion>("convert JSON");
}

TEST(Faults, ConvertingADocumentWithWarnings) {
    Torture<eWarnedConversion>("convert JSON with values that are warned of");
}

TEST(Faults, ConvertingADocumentThatIsRefused) {
    Torture<eRefusedConversion>("convert JSON that is cut short");
}
