// SPDX-License-Identifier: BSL-1.0
#include <algorithm>
#include <bit>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <emmintrin.h>
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

// --- Numbers ---

// Passes digits; false if there are none.
bool PassDigits(std::string_view* text) {
    const auto end = std::find_if_not(text->begin(), text->end(), ascii::IsDigit);
    const auto count = static_cast<std::size_t>(end - text->begin());
    text->remove_prefix(count);
    return count > 0;
}

bool Pass(std::string_view* text, std::string_view characters) {
    if (text->empty() || characters.find(text->front()) == std::string_view::npos)
        return false;
    text->remove_prefix(1);
    return true;
}

constexpr std::string_view kBlanks = " \t\r\n";

bool IsBlank(char character) {
    return character == ' ' || character == '\t' || character == '\r' || character == '\n';
}

std::string_view WithoutBlanks(std::string_view text) {
    while (!text.empty() && IsBlank(text.back()))
        text.remove_suffix(1);
    while (!text.empty() && IsBlank(text.front()))
        text.remove_prefix(1);
    return text;
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

bool IsInteger(std::string_view text) {
    Pass(&text, "-");
    return PassDigits(&text) && text.empty();
}

// The value of a number with a fraction or an exponent, or of an integer beyond 64 bits.
double RealNumber(std::string_view text) {
    if (!IsNumber(text))
        throw simdjson::simdjson_error(simdjson::NUMBER_ERROR);
    double value = 0;
    const char* const end = text.data() + text.size();
    if (std::from_chars(text.data(), end, value).ec == std::errc::result_out_of_range)
        value = simdjson::internal::from_chars(text.data(), end); // zero or infinite
    return value;
}

// --- The document ---

// Receives a document that is only checked.
class eNoSink final : public eJsonSink {
public:
    void BeginDraft() override {}
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
    eFeeder(const ondemand::parser& itsParser, std::string* itsSource, eJsonSink* target)
        : parser(itsParser), source(*itsSource), sink(*target) {}

    // `Value` is a value or a document.
    template <class Value>
    void Feed(Value& value);

private:
    void FeedObject(ondemand::object object);
    void FeedArray(ondemand::array array);
    template <class Value>
    void FeedNumber(Value& value);
    template <class Value>
    bool FeedShortNumber(Value& value);
    void FeedInteger(std::int64_t value) {
        return value < 0 ? sink.Signed(value) : sink.Unsigned(static_cast<std::uint64_t>(value));
    }
    template <class Value>
    void FeedNull(Value& value);

    void Enter();
    void Leave() { --depth; }
    template <class eUse>
    void UseText(ondemand::raw_json_string raw, eUse use);
    std::string Unescaped(ondemand::raw_json_string raw, const char* end) const;

    const ondemand::parser& parser;
    std::string& source;
    eJsonSink& sink;
    std::size_t depth = 0;
};

void eFeeder::Enter() {
    if (++depth > kMostDepth)
        throw simdjson::simdjson_error(simdjson::DEPTH_ERROR);
}

// While this lives, a text within the source ends with a NUL instead of its quote.
class eNulInPlace {
public:
    explicit eNulInPlace(char* quote) : place(quote) { *place = '\0'; }
    ~eNulInPlace() { *place = '"'; }
    eNulInPlace(const eNulInPlace&) = delete;
    eNulInPlace& operator=(const eNulInPlace&) = delete;

private:
    char* place;
};

// The first quote or backslash. The parser has found the end of every string, and there is room to read after the text.
const char* PlainEnd(const char* text) {
    for (;; text += sizeof(__m128i)) {
        const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text));
        const __m128i found =
            _mm_or_si128(_mm_cmpeq_epi8(bytes, _mm_set1_epi8('"')), _mm_cmpeq_epi8(bytes, _mm_set1_epi8('\\')));
        if (const int mask = _mm_movemask_epi8(found); mask != 0)
            return text + std::countr_zero(static_cast<unsigned>(mask));
    }
}

// Calls use(text). A text without escapes is used where it is.
template <class eUse>
void eFeeder::UseText(ondemand::raw_json_string raw, eUse use) {
    const char* const begin = raw.raw();
    const char* const end = PlainEnd(begin);
    if (*end != '"')
        return use(std::string_view(Unescaped(raw, end)));
    const eNulInPlace nul(source.data() + (end - source.data()));
    use(std::string_view(begin, end));
}

std::string eFeeder::Unescaped(ondemand::raw_json_string raw, const char* end) const {
    while (*end != '"')
        end += *end == '\\' ? 2 : 1;
    std::string text(static_cast<std::size_t>(end - raw.raw()) + simdjson::SIMDJSON_PADDING, '\0');
    auto* target = reinterpret_cast<std::uint8_t*>(text.data());
    const std::string_view unescaped = parser.unescape(raw, target);
    text.resize(unescaped.size());
    return text;
}

void eFeeder::FeedObject(ondemand::object object) {
    Enter();
    sink.BeginObject();
    for (auto member : object)
        UseText(member.key(), [&](std::string_view name) {
            sink.Name(name);
            ondemand::value value = member.value();
            Feed(value);
        });
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

// False if the parser does not take the number.
template <class Value>
bool eFeeder::FeedShortNumber(Value& value) {
    ondemand::number_type type{};
    if (value.get_number_type().get(type) != simdjson::SUCCESS)
        return false;
    if (type == ondemand::number_type::floating_point_number) {
        double real = 0;
        if (value.get_double().get(real) != simdjson::SUCCESS)
            return false;
        sink.Double(real);
    } else {
        std::int64_t integer = 0;
        if (value.get_int64().get(integer) != simdjson::SUCCESS)
            return false;
        FeedInteger(integer);
    }
    return true;
}

// Of some longer numbers with a fraction the parser makes others.
template <class Value>
void eFeeder::FeedNumber(Value& value) {
    constexpr std::size_t kShort = 19;
    std::string_view token = value.raw_json_token();
    if (token.size() <= kShort && FeedShortNumber(value))
        return;
    token = WithoutBlanks(token);
    ondemand::number integer;
    if (!IsInteger(token) || value.get_number().get(integer) != simdjson::SUCCESS)
        return sink.Double(RealNumber(token));
    if (integer.is_int64())
        return FeedInteger(integer.get_int64());
    sink.Unsigned(integer.get_uint64());
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
        return UseText(value.get_raw_json_string(), [&](std::string_view text) { sink.String(text); });
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

// A JSON text, which the parser goes through as often as is wanted.
class eSource {
public:
    explicit eSource(std::string* source)
        : whole(*source), text(json_text::WithoutByteOrderMark(whole)), document(Iterate(&parser, text)) {}

    // Passes the document to a sink. Refuses what is not JSON, though the sink has then had events of it.
    void Feed(eJsonSink* sink) {
        try {
            eFeeder(parser, &whole, sink).Feed(document);
            const bool passed = document.current_location().error() == simdjson::OUT_OF_BOUNDS;
            if (!passed && !IsNumber(WithoutBlanks(text))) // the parser does not pass a number that it does not take
                throw simdjson::simdjson_error(simdjson::TRAILING_CONTENT);
        } catch (const simdjson::simdjson_error& refusal) {
            Refuse(text, PlaceOf(refusal.error(), text, &document), refusal.what());
        }
        document.rewind();
    }

    // False if the sink has something to report, which must wait until the whole text is known to be JSON.
    bool FeedDraft(eJsonSink* sink) {
        try {
            sink->BeginDraft();
            Feed(sink);
            return true;
        } catch (const eJsonDraftEnds&) {
            document.rewind();
            return false;
        }
    }

private:
    std::string& whole;
    std::string_view text;
    ondemand::parser parser;
    ondemand::document document;
};

} // namespace

const std::string_view kJsonEngine = "simdjson";

void FeedJson(std::string text, eJsonSink* sink) {
    text.reserve(text.size() + kRoomAfterJson);
    json_text::RefuseLoneSurrogates(text);
    eSource source(&text);
    if (source.FeedDraft(sink))
        return;
    eNoSink nobody;
    source.Feed(&nobody);
    sink->BeginDocument();
    source.Feed(sink);
}
