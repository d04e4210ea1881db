// SPDX-License-Identifier: BSL-1.0
#include <cstddef>
#include <mutex>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

#include <cpprest/json.h>
#include <qzl_base/convert.h>

#include "qzl_base/shared/unicode.h"
#include "json/sink.h"
#include "json/text.h"

namespace {

using web::json::value;

// Sets the order of members for one parse. The parser has one setting for the process, so it is restored when a text
// has been parsed, and threads parse in turn.
class eDocumentOrder {
public:
    eDocumentOrder() : turn(Turns()), previous(web::json::details::g_keep_json_object_unsorted) {
        web::json::keep_object_element_order(true);
    }
    ~eDocumentOrder() { web::json::keep_object_element_order(previous); }
    eDocumentOrder(const eDocumentOrder&) = delete;
    eDocumentOrder& operator=(const eDocumentOrder&) = delete;

private:
    static std::mutex& Turns() {
        static std::mutex turns;
        return turns;
    }

    std::lock_guard<std::mutex> turn;
    bool previous;
};

void DropByteOrderMark(std::string* text) {
    if (text->starts_with(unicode::kByteOrderMark))
        text->erase(0, unicode::kByteOrderMark.size());
}

// The text in the form that the parser takes; the part from `unknownFrom` on may be ill-formed.
template <class T>
T ParserText(std::string text, std::size_t unknownFrom) {
    if constexpr (std::is_same_v<T, std::wstring>)
        return ToStringW(text);
    else
        return json_text::IsUtf8(std::string_view(text).substr(unknownFrom)) ? std::move(text)
                                                                             : ToString(ToStringW(text));
}

value Parsed(std::string&& text) {
    DropByteOrderMark(&text);
    const std::size_t plain = json_text::PlainBlocks(text);
    json_text::RefuseLoneSurrogates(std::string_view(text).substr(plain));
    const auto parserText = ParserText<utility::string_t>(std::move(text), plain);
    const eDocumentOrder documentOrder;
    return value::parse(parserText);
}

// The parser's texts are UTF-8 on one system and UTF-16 on the other.
template <class T>
decltype(auto) Utf8(const T& text) {
    if constexpr (std::is_same_v<T, std::wstring>)
        return ToString(text);
    else
        return (text);
}

// Takes a document apart: each object and array is freed after it has been fed, while it is in the cache.
class eFeeder {
public:
    explicit eFeeder(eJsonSink* target) : sink(*target) {}

    void FeedValue(value* json);

private:
    void FeedNumber(const web::json::number& number);
    void FeedObject(value object);
    void FeedArray(value array);

    eJsonSink& sink;
};

void eFeeder::FeedNumber(const web::json::number& number) {
    if (!number.is_integral())
        sink.Double(number.to_double());
    else if (number.is_uint64())
        sink.Unsigned(number.to_uint64());
    else
        sink.Signed(number.to_int64());
}

void eFeeder::FeedObject(value object) {
    sink.BeginObject();
    for (auto& [name, member] : object.as_object()) {
        const std::string& utf8 = Utf8(name);
        sink.Name(utf8);
        FeedValue(&member);
    }
    sink.EndObject();
}

void eFeeder::FeedArray(value array) {
    sink.BeginArray();
    for (value& element : array.as_array())
        FeedValue(&element);
    sink.EndArray();
}

void eFeeder::FeedValue(value* json) {
    switch (json->type()) {
    case value::Number:
        return FeedNumber(json->as_number());
    case value::Boolean:
        return sink.Bool(json->as_bool());
    case value::String:
        return sink.String(Utf8(json->as_string()));
    case value::Object:
        return FeedObject(std::move(*json));
    case value::Array:
        return FeedArray(std::move(*json));
    case value::Null:
        return sink.Null();
    }
    sink.Unknown();
}

} // namespace

const std::string_view kJsonEngine = "cpprestsdk";

void FeedJson(std::string text, eJsonSink* sink) {
    value document = Parsed(std::move(text));
    sink->BeginDocument();
    eFeeder(sink).FeedValue(&document);
}
