#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include <qzl_io/detail/current_token.h>

#include "sdl/copy.h"
#include "sdl/number.h"

// The functions of eCurrentToken, to be inline in the parser and the reader. Each token passes Accept.

namespace xSDL {

// The usual libraries keep this many characters in a std::string without allocating memory.
inline constexpr std::size_t kShortText = 15;

// Reported of a token that is not accepted.
inline constexpr char kTokenLimit[] = "Token limit exceeded!";

inline void eCurrentToken::Start(const char* position) {
    now = {};
    now.position = position;
    text = {{position, position}, ePlace::Copied};
    before = {};
    textBefore = {};
}

[[gnu::always_inline]] inline bool eCurrentToken::Accept(eSDLParserLexType type, std::string_view textInSource,
                                                         int line, const char* next) {
    if (lent && textInSource.size() > longest)
        return false;
    Remember();
    now.token.type = type;
    now.line = line;
    now.position = next;
    text = {textInSource, ePlace::Source};
    if (lent)
        Fill();
    return true;
}

// The string may now be that of the token before, and is then needed twice.
inline void eCurrentToken::AcceptEnd(int line, const char* next) {
    Remember();
    now.token.type = sdlNone;
    JumpTo(next, line);
    if (textBefore.place == ePlace::Own)
        now.token.text = before.token.text;
}

inline void eCurrentToken::JumpTo(const char* next, int line) {
    now.position = next;
    now.line = line;
}

// Copies everything but the string: for most tokens it is out of date, or contains no more than the source.
[[gnu::always_inline]] inline void eCurrentToken::Remember() {
    before.token.type = now.token.type;
    before.token.floatValue = now.token.floatValue;
    before.token.intValue = now.token.intValue;
    before.line = now.line;
    before.position = now.position;
    textBefore.source = text.source;
    textBefore.place = ePlace::Source;
    if (text.place == ePlace::Own || (lent && IsChanged()))
        KeepString();
}

// Swaps instead of copying: the text of the next token goes into the other string.
inline void eCurrentToken::KeepString() {
    now.token.text.swap(before.token.text);
    textBefore.place = ePlace::Own;
}

[[gnu::always_inline]] inline bool eCurrentToken::IsChanged() const {
    const std::string& string = now.token.text;
    return string.size() != text.source.size() || !IsSameText(string.data(), text.source.data(), string.size());
}

inline void eCurrentToken::Back() {
    if (!before.position)
        return;
    now.token.type = before.token.type;
    now.token.floatValue = before.token.floatValue;
    now.token.intValue = before.token.intValue;
    JumpTo(before.position, before.line);
    text = textBefore;
    if (text.place == ePlace::Own)
        now.token.text.swap(before.token.text);
    else if (lent)
        Fill();
    ForgetBefore();
}

inline void eCurrentToken::ForgetBefore() {
    before.line = 1;
    before.position = nullptr;
}

inline void eCurrentToken::SetBefore(const eSDLParserState& state) {
    before = state;
    textBefore = {{}, ePlace::Own};
}

inline eSDLParserState eCurrentToken::Before() const {
    eSDLParserState state = before;
    if (textBefore.place == ePlace::Source)
        state.token.text.assign(textBefore.source);
    return state;
}

inline std::string_view eCurrentToken::Text() const {
    return text.place == ePlace::Source ? text.source : std::string_view(now.token.text);
}

inline const std::string& eCurrentToken::String() {
    if (text.place == ePlace::Source)
        Fill();
    return now.token.text;
}

inline std::string& eCurrentToken::OwnString() {
    String();
    text.place = ePlace::Own;
    return now.token.text;
}

inline void eCurrentToken::Lend() {
    String();
    lent = true;
}

inline void eCurrentToken::Limit(std::size_t bytes) {
    longest = bytes;
    Lend();
}

// Most texts are short. Assigning one to a string is a call, however short it is, while constructing a string of a
// known number of characters costs a few moves. So the string is constructed anew, from the text and what follows it in
// the source, and cut to the text's length.
[[gnu::always_inline]] inline void eCurrentToken::Fill() {
    std::string* const string = &now.token.text;
    if (text.source.size() <= kShortText) {
        std::destroy_at(string);
        std::construct_at(string, text.source.data(), kShortText);
        string->erase(text.source.size());
    } else {
        string->assign(text.source);
    }
    text.place = ePlace::Copied;
}

[[gnu::always_inline]] inline void eCurrentToken::SetInt(int value) {
    now.token.intValue = value;
    now.token.floatValue = static_cast<float>(value);
}

[[gnu::always_inline]] inline void eCurrentToken::SetFloat(float value) {
    now.token.floatValue = value;
    now.token.intValue = TruncateToInt(value);
}

inline void eCurrentToken::MoveSource(const char* from, const char* to) {
    const auto move = [=](const char* at) { return at ? to + (at - from) : nullptr; };
    now.position = move(now.position);
    before.position = move(before.position);
    for (eText* each : {&text, &textBefore})
        each->source = {move(each->source.data()), each->source.size()};
}

} // namespace xSDL
