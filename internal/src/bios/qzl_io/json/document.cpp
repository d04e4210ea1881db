#include "json/document.h"

#include "json/text.h"

#include <mutex>
#include <stdexcept>
#include <type_traits>

#include <qzl_base/convert.h>

#include "qzl_base/shared/unicode.h"

namespace {

// The parser's setting is one for the process: it is put back as soon as a text is parsed, and parsing takes turns.
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

// The text as the parser takes it; its part from `unknownFrom` on may be ill-formed.
template <class T>
T ParserText(std::string text, std::size_t unknownFrom) {
    if constexpr (std::is_same_v<T, std::wstring>)
        return ToStringW(text);
    else
        return json_text::IsUtf8(std::string_view(text).substr(unknownFrom)) ? std::move(text)
                                                                             : ToString(ToStringW(text));
}

} // namespace

web::json::value ParseJson(std::string text) {
    DropByteOrderMark(&text);
    const std::size_t plain = json_text::PlainBlocks(text);
    if (json_text::HasLoneSurrogate(std::string_view(text).substr(plain)))
        throw std::range_error("Json text has an escaped surrogate without its other half.");
    const utility::string_t parserText = ParserText<utility::string_t>(std::move(text), plain);
    const eDocumentOrder documentOrder;
    return web::json::value::parse(parserText);
}

std::string JsonTextToUtf8(const std::wstring& text) {
    return ToString(text);
}
