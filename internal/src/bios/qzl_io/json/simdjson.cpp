// SPDX-License-Identifier: BSL-1.0
#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>

#include <simdjson.h>

#include "qzl_base/shared/ascii.h"
#include "json/sink.h"
#include "json/text.h"

namespace {

namespace ondemand = simdjson::ondemand;

static_assert(kRoomAfterJson >= simdjson::SIMDJSON_PADDING);

// --- Numbers that the parser does not take ---

// Passes digits; false if there are none.
bool PassDigits(std::string_view* text) {
    const auto end = std::find_if_not(text->begin(), text->end(), ascii::IsDigit);
    const auto count = static_cast<std::size_t>(end - text->begin());
    text->remove_prefix(count);
    return count > 0;
}

bool Pass(std::string_view* text, std::string_view characters) {
    if (text->empty() || characters.find(text->front()) == characters.npos)
        return false;
    text->remove_prefix(1);
    return true;
}

constexpr std::string_view kBlanks = " \t\r\n";

std::string_view WithoutBlanks(std::string_view text) {
    text = text.substr(0, text.find_last_not_of(kBlanks) + 1);
    return text.substr(std::min(text.size(), text.find_first_not_of(kBlanks)));
}

bool IsNumber(std::string_view text) {
    Pass(&text, "-");
    if (!Pass(&text, "0") && !PassDigits(&text))
        return false;
    if (Pass(&text, ".") && !PassDigits(&text))
        return false;
    if (Pass(&text, "eE")) {
        Pass(&text, "+-");
        if (!PassDigits(&text))
            return false;
    }
    return text.empty();
}

// The value of a number that is too large for the parser: an integer beyond 64 bits, or a number beyond the doubles.
double LargeNumber(std::string_view text) {
    if (!IsNumber(text))
        throw simdjson::simdjson_error(simdjson::NUMBER_ERROR);
    double value = 0;
    if (std::from_chars(text.data(), text.data() + text.size(), value).ec == std::errc::result_out_of_range)
        value = std::numeric_limits<double>::infinity() * (text.front() == '-' ? -1 : 1);
    return value;
}

// --- The document ---

// Receives a document that is only checked.
class eNoSink final : public eJsonSink {
public:
    void BeginDocument() override {}
    void BeginObject() override {}
    void Name(std::string_view) override {}
    void EndObject() override {}
    void BeginArray() override {}
    void EndArray() override {}
    void String(std::string_view) override {}
    void Signed(std::int64_t) override {}
    void Unsigned(std::uint64_t) override {}
    void Double(double) override {}
    void Bool(bool) override {}
    void Null() override {}
    void Unknown() override {}
};

constexpr std::size_t kMostDepth = 1024;

// Walks through a document, which the parser checks on the way.
class eFeeder {
public:
    eFeeder(const ondemand::parser& itsParser, eJsonSink* target) : parser(itsParser), sink(*target) {}

    // `Value` is a value or a document.
    template <class Value>
    void Feed(Value& value);

private:
    void FeedObject(ondemand::object object);
    void FeedArray(ondemand::array array);
    template <class Value>
    void FeedNumber(Value& value);
    template <class Value>
    void FeedNull(Value& value);

    void Enter();
    void Leave() { --depth; }
    void Unescape(ondemand::raw_json_string raw, std::string* text) const;

    const ondemand::parser& parser;
    eJsonSink& sink;
    std::size_t depth = 0;
    std::string string; // the last one
};

void eFeeder::Enter() {
    if (++depth > kMostDepth)
        throw simdjson::simdjson_error(simdjson::DEPTH_ERROR);
}

// The parser has found the end of every string.
void eFeeder::Unescape(ondemand::raw_json_string raw, std::string* text) const {
    const char* const begin = raw.raw();
    const char* end = begin;
    while (*end != '"' && *end != '\\')
        ++end;
    text->assign(begin, end);
    if (*end == '"')
        return;
    while (*end != '"')
        end += *end == '\\' ? 2 : 1;
    text->resize(static_cast<std::size_t>(end - begin) + simdjson::SIMDJSON_PADDING);
    auto* target = reinterpret_cast<std::uint8_t*>(text->data());
    const std::string_view unescaped = parser.unescape(raw, target);
    text->resize(unescaped.size());
}

void eFeeder::FeedObject(ondemand::object object) {
    Enter();
    sink.BeginObject();
    std::string name;
    for (auto member : object) {
        Unescape(member.key(), &name);
        sink.Name(name);
        ondemand::value value = member.value();
        Feed(value);
    }
    sink.EndObject();
    Leave();
}

void eFeeder::FeedArray(ondemand::array array) {
    Enter();
    sink.BeginArray();
    for (auto element : array) {
        ondemand::value value = element.value();
        Feed(value);
    }
    sink.EndArray();
    Leave();
}

template <class Value>
void eFeeder::FeedNumber(Value& value) {
    const std::string_view token = WithoutBlanks(value.raw_json_token());
    ondemand::number number;
    if (value.get_number().get(number) != simdjson::SUCCESS)
        return sink.Double(LargeNumber(token));
    switch (number.get_number_type()) {
    case ondemand::number_type::signed_integer: {
        const std::int64_t integer = number.get_int64();
        return integer < 0 ? sink.Signed(integer) : sink.Unsigned(static_cast<std::uint64_t>(integer));
    }
    case ondemand::number_type::unsigned_integer:
        return sink.Unsigned(number.get_uint64());
    default:
        return sink.Double(number.get_double());
    }
}

template <class Value>
void eFeeder::FeedNull(Value& value) {
    if (!value.is_null())
        throw simdjson::simdjson_error(simdjson::N_ATOM_ERROR);
    sink.Null();
}

template <class Value>
void eFeeder::Feed(Value& value) {
    const ondemand::json_type type = value.type();
    switch (type) {
    case ondemand::json_type::object:
        return FeedObject(value.get_object());
    case ondemand::json_type::array:
        return FeedArray(value.get_array());
    case ondemand::json_type::string:
        Unescape(value.get_raw_json_string(), &string);
        return sink.String(string);
    case ondemand::json_type::number:
        return FeedNumber(value);
    case ondemand::json_type::boolean:
        return sink.Bool(value.get_bool());
    case ondemand::json_type::null:
        return FeedNull(value);
    }
    sink.Unknown();
}

// --- Refusal ---

// Refuses the text for a reason of the parser, at a place in it.
[[noreturn]] void Refuse(std::string_view text, std::size_t at, const char* reason) {
    const std::string_view before = text.substr(0, at);
    const auto line = 1 + std::count(before.begin(), before.end(), '\n');
    const std::size_t column = at - before.rfind('\n'); // before the first line is npos, which is -1
    throw std::runtime_error("Line " + std::to_string(line) + ", Column " + std::to_string(column) + ": " + reason);
}

ondemand::document Iterate(ondemand::parser* parser, std::string_view text) {
    ondemand::document document;
    auto error = parser->allocate(text.size(), kMostDepth + 2); // of the document, and of a value at the greatest depth
    if (error == simdjson::SUCCESS)
        error = parser->iterate(text, text.size() + simdjson::SIMDJSON_PADDING).get(document);
    if (error == simdjson::UTF8_ERROR)
        Refuse(text, json_text::WellFormedBytes(text), simdjson::error_message(error));
    if (error != simdjson::SUCCESS)
        throw simdjson::simdjson_error(error);
    return document;
}

// Where the parser stopped. That a text ends too early it finds out at its beginning.
std::size_t PlaceOf(simdjson::error_code error, std::string_view text, ondemand::document* document) {
    const char* stopped = nullptr;
    const bool early = error == simdjson::INCOMPLETE_ARRAY_OR_OBJECT;
    if (early || document->current_location().get(stopped) != simdjson::SUCCESS)
        return text.find_last_not_of(kBlanks);
    return static_cast<std::size_t>(stopped - text.data());
}

void Check(std::string_view text, ondemand::document* document, const ondemand::parser& parser) {
    try {
        eNoSink nobody;
        eFeeder(parser, &nobody).Feed(*document);
        const bool passed = document->current_location().error() == simdjson::OUT_OF_BOUNDS;
        if (!passed && !IsNumber(WithoutBlanks(text))) // the parser does not pass a number that it does not take
            throw simdjson::simdjson_error(simdjson::TRAILING_CONTENT);
    } catch (const simdjson::simdjson_error& refusal) {
        Refuse(text, PlaceOf(refusal.error(), text, document), refusal.what());
    }
}

} // namespace

const std::string_view kJsonEngine = "simdjson";

void FeedJson(std::string text, eJsonSink* sink) {
    text.reserve(text.size() + kRoomAfterJson);
    json_text::RefuseLoneSurrogates(text);
    const std::string_view json = json_text::WithoutByteOrderMark(text);
    ondemand::parser parser;
    ondemand::document document = Iterate(&parser, json);
    Check(json, &document, parser);
    document.rewind();
    sink->BeginDocument();
    eFeeder(parser, sink).Feed(document);
}
