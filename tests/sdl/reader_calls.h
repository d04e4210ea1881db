// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <cmath>
#include <functional>
#include <memory>
#include <sstream>
#include <string>
#include <type_traits>
#include <vector>

#include <qzl_base/convert.h>
#include <qzl_io/sdl/reader.h>
#include <qzl_io/streams.h>

#include "reader_model.h"
#include "sdl_source.h"

// Every operation of a reader as one call, for the reader and for its model, with a result that can be compared.

inline eSDLKeyword* readerWords;
inline eSDLKeyword lightOfReader(readerWords, "light", 5);
inline eSDLKeyword colorOfReader(readerWords, "Color", 7);
inline eSDLKeyword aOfReader(readerWords, "a", 3);

inline eSDLKeyword* otherReaderWords;
inline eSDLKeyword otherLightOfReader(otherReaderWords, "light", 50);
inline eSDLKeyword otherIncludeOfReader(otherReaderWords, "include", 51);
inline eSDLKeyword otherItemOfReader(otherReaderWords, "item", -4);

// A reader with the model's names for operations that have no name of their own.
class eTestedReader : public eSDLReader {
public:
    explicit eTestedReader(const std::string& text) : eSDLReader(std::make_unique<IO::eBufferStream>(text).get(), {}) {}

    using eSDLReader::Parser;
    std::string GetStrings() {
        eStrings list;
        *this >> list;
        std::string strings;
        for (const eStringKey& string : list)
            strings += string.str() + "|";
        return strings;
    }
    void TakeBlockStart() { *this >> begb; }
    void TakeBlockEnd() { *this >> endb; }
    void TakeControlStart() { *this >> begc; }
    void TakeControlEnd() { *this >> endc; }
};

struct eCallArguments {
    eSDLParserLexType type;
    int id;
    bool flag;
    eSDLKeyword* table;
    eFileName file;
};

inline std::string Of(float value) {
    std::ostringstream text;
    text << std::hexfloat << value;
    return std::isnan(value) ? "nan" : text.str();
}
inline std::string Of(int value) {
    return std::to_string(value);
}
inline std::string Of(bool value) {
    return value ? "true" : "false";
}
inline std::string Of(const std::string& value) {
    return value;
}
inline std::string Of(const std::wstring& value) {
    return ToString(value);
}
// The token as text, without values that a token of its type does not have.
inline std::string Of(const eSDLParserToken& token) {
    std::string text = std::to_string(token.type);
    if (token.type != sdlNone)
        text += "[" + token.text + "]";
    if (token.type == sdlInt || token.type == sdlFloat)
        text += Of(token.floatValue);
    if (token.type == sdlInt || token.type == sdlFloat || token.type == sdlKeyword || token.type == sdlBlockId)
        text += "=" + Of(token.intValue);
    return text;
}

// One call, for the reader and for the model.
struct eReaderCall {
    template <class eCall>
    eReaderCall(const char* operationName, eCall call)
        : name(operationName), onReader(ResultOf<eTestedReader>(call)), onModel(ResultOf<eModelReader>(call)) {}

    template <class eReader, class eCall>
    static std::function<std::string(eReader&, const eCallArguments&)> ResultOf(eCall call) {
        return [call](eReader& reader, const eCallArguments& arguments) {
            std::string result;
            const eFailure failure = FailureOf([&] {
                if constexpr (std::is_void_v<decltype(call(reader, arguments))>)
                    call(reader, arguments);
                else
                    result = Of(call(reader, arguments));
            });
            return failure == eFailure() ? result : failure.unit + std::to_string(failure.line) + failure.message;
        };
    }

    const char* name;
    std::function<std::string(eTestedReader&, const eCallArguments&)> onReader;
    std::function<std::string(eModelReader&, const eCallArguments&)> onModel;
};

using eCallArgument = const eCallArguments&;
inline const std::vector<eReaderCall> kReaderCalls = {
    {"GetInt", [](auto& r, eCallArgument) { return r.GetInt(); }},
    {"GetFloat", [](auto& r, eCallArgument) { return r.GetFloat(); }},
    {"GetBool", [](auto& r, eCallArgument) { return r.GetBool(); }},
    {"GetString", [](auto& r, eCallArgument) { return r.GetString(); }},
    {"GetStringW", [](auto& r, eCallArgument) { return r.GetStringW(); }},
    {"GetStrings", [](auto& r, eCallArgument) { return r.GetStrings(); }},
    {"GetIdent", [](auto& r, eCallArgument a) { return r.GetIdent(a.flag); }},
    {"GetKeyword", [](auto& r, eCallArgument) { return r.GetKeyword(); }},
    {"GetToken", [](auto& r, eCallArgument) { return r.GetToken(sdlNone); }},
    {"GetToken of a type", [](auto& r, eCallArgument a) { return r.GetToken(a.type); }},
    {"GetBlock", [](auto& r, eCallArgument a) { return r.GetBlock(a.id); }},
    {"GetBlock", [](auto& r, eCallArgument a) { return r.GetBlock(a.id); }},
    {"GetSignature", [](auto& r, eCallArgument) { return r.GetSignature(); }},
    {"Check", [](auto& r, eCallArgument a) { return r.Check(a.type, a.id); }},
    {"Test", [](auto& r, eCallArgument a) { return r.Test(a.type, a.id); }},
    {"Test for a keyword", [](auto& r, eCallArgument a) { return r.Test(a.id); }},
    {"Start", [](auto& r, eCallArgument) { return r.Start(); }},
    {"End", [](auto& r, eCallArgument) { return r.End(); }},
    {"Back", [](auto& r, eCallArgument) { r.Back(); }},
    {"Back", [](auto& r, eCallArgument) { r.Back(); }},
    {"SkipBlock", [](auto& r, eCallArgument a) { r.SkipBlock(a.flag); }},
    {"begb", [](auto& r, eCallArgument) { r.TakeBlockStart(); }},
    {"endb", [](auto& r, eCallArgument) { r.TakeBlockEnd(); }},
    {"begc", [](auto& r, eCallArgument) { r.TakeControlStart(); }},
    {"endc", [](auto& r, eCallArgument) { r.TakeControlEnd(); }},
    {"PushKeywords", [](auto& r, eCallArgument a) { r.PushKeywords(a.table); }},
    {"PopKeywords", [](auto& r, eCallArgument) { r.PopKeywords(); }},
    {"Grate", [](auto& r, eCallArgument a) { r.Grate().assign(1, a.flag); }},
    {"Include", [](auto& r, eCallArgument a) { r.Include(a.file); }},
    {"Include", [](auto& r, eCallArgument a) { r.Include(a.file); }},
};

// The place of a reader, after a look at its token, which makes the reader keep the token's text, or without.
template <class eReader>
std::string Place(eReader& reader, bool token) {
    auto& parser = reader.Parser();
    std::string place = parser.Name() + " line " + std::to_string(parser.Line()) + "\n" + parser.GetContext();
    return token ? place + Of(reader.Token()) : place;
}
