// SPDX-License-Identifier: BSL-1.0
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <exception>
#include <string>
#include <string_view>
#include <system_error>

#include <qzl_base/convert.h>
#include <qzl_base/error.h>
#include <qzl_io/sdl/json_to_sdl.h>

#include "support/json_walker.h"

#include "require.h"
#include "target.h"
#include "work_folder.h"

// Any bytes as a JSON document for JsonToSdl: it fails with one warning and leaves the target alone, or the target is
// the text that the rules give, item by item.

namespace {

constexpr char kOld[] = "old";

struct eFiles {
    eFiles() {
        xError::SetWarningHandler([this](const xError::eReport& report) {
            warnings += 1;
            values += report.message.ends_with("truncated to 0") || report.message.ends_with("parsed correctly.");
        });
    }

    bool Convert(std::string_view json) {
        warnings = values = 0;
        folder.Write("in.json", json);
        folder.Write("out.sdl", kOld);
        return JsonToSdl(folder.Name("in.json"), folder.Name("out.sdl"));
    }

    const eWorkFolder folder;
    int warnings = 0;
    int values = 0; // warnings about values
};

eFiles& Files() {
    static eFiles files;
    return files;
}

// The text of a document, composed item by item.
class eSdlText : public eJsonContent {
public:
    std::string Finished() {
        if (lineEnds && !text.empty())
            EndLine();
        return text;
    }

    void BeginObject() override { Enter('o'); }
    void Name(const std::string& name) override {
        Item('{' + std::string(name.c_str()));
        ++depth;
    }
    void EndMember() override {
        --depth;
        isSpaced = false;
        Item("}");
        lineEnds = true;
    }
    void EndObject() override { Leave(); }
    void BeginArray() override { Enter('a'); }
    void EndArray() override { Leave(); }

    void String(const std::string& string) override {
        std::string escaped = string.c_str();
        ConvertEscSequence(&escaped, true);
        Scalar('"' + escaped + '"');
    }
    void Integer(const std::string& digits) override {
        const char *const begin = digits.data(), *const end = begin + digits.size();
        std::int64_t value = 0;
        std::uint64_t large = 0;
        if (std::from_chars(begin, end, value).ec == std::errc())
            Scalar(value >= INT32_MIN && value <= UINT32_MAX ? ToString(static_cast<int>(value), false) : "0");
        else if (std::from_chars(begin, end, large).ec == std::errc())
            Scalar("0");
        else
            Float(std::strtod(digits.c_str(), nullptr));
    }
    void Float(double value) override {
        const auto narrowed = static_cast<float>(value);
        Scalar(ToString(std::isfinite(narrowed) ? narrowed : 0.0f));
    }
    void Bool(bool value) override { Scalar(value ? "1" : "0"); }
    void Null() override { EndValue(); }

private:
    bool IsElement() const { return !around.empty() && around.back() == 'a'; }

    void EndLine() { text += "\r\n" + std::string(depth, '\t'); }

    void Item(const std::string& item) {
        if (lineEnds)
            EndLine();
        else if (isSpaced)
            text += ' ';
        text += item;
        lineEnds = false;
        isSpaced = true;
    }

    void Scalar(const std::string& item) {
        Item(item);
        EndValue();
    }
    void EndValue() { lineEnds = lineEnds || IsElement(); }

    // A container in an array is a block; one in an object is the content of the member's block.
    void Enter(char kind) {
        if (IsElement()) {
            Item("{");
            isSpaced = false;
            ++depth;
        }
        lineEnds = lineEnds || !around.empty();
        around += kind;
    }
    void Leave() {
        around.pop_back();
        lineEnds = lineEnds || !around.empty();
        if (IsElement()) {
            --depth;
            isSpaced = false;
            Item("}");
            lineEnds = true;
        }
    }

    std::string text;
    std::string around; // the kinds of the containers
    std::size_t depth = 0;
    bool lineEnds = false;
    bool isSpaced = false;
};

} // namespace

void Check(std::string_view input) {
    eFiles& files = Files();
    if (!files.Convert(input)) {
        Require(files.warnings == 1 && files.values == 0, "a conversion that fails makes one warning");
        RequireEqual(files.folder.Read("out.sdl"), std::string(kOld), "the target of a conversion that failed");
        return;
    }
    Require(files.warnings == files.values, "a conversion that succeeds warns of values only");
    const std::string json = ToString(ToStringW(std::string(input)));
    eSdlText expected;
    try {
        eJsonWalker(json, &expected);
    } catch (const std::exception&) {
        return; // the parser takes comments, too
    }
    RequireEqual(files.folder.Read("out.sdl"), expected.Finished(), "the converted text");
}

// The input as a document, and as the elements of an array with a name as long as the input.
void Work(std::string_view input) {
    Files().Convert(input);
    std::string name(input.size(), 'n');
    Files().Convert("{\"" + name + "\":[" + std::string(input) + "1]}");
}
