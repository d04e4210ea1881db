// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include <qzl_io/detail/compiler.h>
#include <qzl_io/detail/current_token.h>

#include "sdl/copy.h"
#include "sdl/number.h"

// The functions of eCurrentToken, to be inline in the parser and the reader. Each token passes Accept.

namespace xSDL {

// Reported of a token that is not accepted.
inline constexpr char kTokenLimit[] = "Token limit exceeded!";

// Both values of a token as one word, which compilers do not make of two members.
QZL_IO_ALWAYS_INLINE void CopyValues(eSDLParserToken* to, const eSDLParserToken& from) {
    static_assert(offsetof(eSDLParserToken, intValue) == offsetof(eSDLParserToken, floatValue) + sizeof(float));
    constexpr std::size_t kValues = offsetof(eSDLParserToken, floatValue);
    std::memcpy(reinterpret_cast<char*>(to) + kValues, reinterpret_cast<const char*>(&from) + kValues, 8);
}

inline void eCurrentToken::Start(const char* position) {
    now = {};
    now.position = position;
    text = {{position, position}, ePlace::Copied};
    before = {};
    textBefore = {};
}

QZL_IO_ALWAYS_INLINE void eCurrentToken::Take(eSDLParserLexType type, std::string_view textInSource, int line,
                                              const char* next) {
    now.token.type = type;
    now.line = line;
    now.position = next;
    text = {textInSource, ePlace::Source};
}

QZL_IO_ALWAYS_INLINE bool eCurrentToken::Accept(eSDLParserLexType type, std::string_view textInSource, int line,
                                                const char* next) {
    Remember();
    Take(type, textInSource, line, next);
    if (lent)
        return Fill();
    return Admits(textInSource.size()) || Refuse();
}

QZL_IO_NOINLINE inline bool eCurrentToken::Refuse() {
    Back();
    return false;
}

QZL_IO_ALWAYS_INLINE void eCurrentToken::AcceptPlain(eSDLParserLexType type, std::string_view textInSource, int line,
                                                     const char* next) {
    RememberPlain();
    Take(type, textInSource, line, next);
}

QZL_IO_ALWAYS_INLINE void eCurrentToken::AcceptPlainBlock(const char* brace, int line, std::string_view keyword,
                                                          int id) {
    before.token.type = sdlBlockStart;
    CopyValues(&before.token, now.token);
    before.line = line;
    before.position = brace + 1;
    textBefore = {{brace, brace}, ePlace::Source};
    Take(sdlBlockId, keyword, line, keyword.data() + keyword.size());
    now.token.intValue = id;
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
QZL_IO_ALWAYS_INLINE void eCurrentToken::RememberPlain() {
    before.token.type = now.token.type;
    CopyValues(&before.token, now.token);
    before.line = now.line;
    before.position = now.position;
    textBefore.source = text.source;
    textBefore.place = ePlace::Source;
}

QZL_IO_ALWAYS_INLINE void eCurrentToken::Remember() {
    RememberPlain();
    if (text.place == ePlace::Own || (lent && IsChanged()))
        KeepString();
}

// Swaps instead of copying: the text of the next token goes into the other string.
inline void eCurrentToken::KeepString() {
    now.token.text.swap(before.token.text);
    textBefore.place = ePlace::Own;
}

QZL_IO_ALWAYS_INLINE bool eCurrentToken::IsChanged() const {
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

inline eCurrentToken::eBefore eCurrentToken::Before() const {
    eBefore saved{{}, textBefore.source, textBefore.place};
    saved.state.token.type = before.token.type;
    saved.state.token.floatValue = before.token.floatValue;
    saved.state.token.intValue = before.token.intValue;
    saved.state.line = before.line;
    saved.state.position = before.position;
    if (textBefore.place == ePlace::Own)
        saved.state.token.text = before.token.text;
    return saved;
}

inline void eCurrentToken::SetBefore(eBefore saved) {
    before = std::move(saved.state);
    textBefore = {saved.textInSource, saved.place};
}

// A mark's text begins after {#, and ends where reading stands; that of a plain { is the brace's place. Reading stands
// at the end of the line that breaks a string, and at any other character that begins no token.
inline const char* eCurrentToken::Begin() const {
    const char* const begin = text.source.data();
    if (!begin || now.token.type == sdlNone)
        return now.position;
    switch (now.token.type) {
    case sdlString:
        return begin - 1;
    case sdlBlockStart:
        return now.position == begin + text.source.size() ? begin - 2 : begin;
    case sdlError:
        return *now.position == '\n' || *now.position == '\r' ? begin - 1 : begin;
    default:
        return begin;
    }
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
    if (bytes < kLongestPlain)
        Lend();
    ForgetBefore();
    longest = bytes;
    filledInline = std::min(bytes, kShortText);
}

// Most texts are short. Assigning one to a string is a call, however short it is, while constructing a string of a
// known number of characters costs a few moves. So the string is constructed anew, from the text and what follows it in
// the source, and cut to the text's length.
QZL_IO_ALWAYS_INLINE bool eCurrentToken::Fill() {
    if (text.source.size() > filledInline)
        return FillLong();
    std::string* const string = &now.token.text;
    std::destroy_at(string);
    std::construct_at(string, text.source.data(), kShortText);
    string->erase(text.source.size());
    text.place = ePlace::Copied;
    return true;
}

// The limit is looked at here because a short text does not pay for it.
QZL_IO_NOINLINE inline bool eCurrentToken::FillLong() {
    if (!Admits(text.source.size()))
        return Refuse();
    now.token.text.assign(text.source);
    text.place = ePlace::Copied;
    return true;
}

QZL_IO_ALWAYS_INLINE void eCurrentToken::SetInt(int value) {
    now.token.intValue = value;
    now.token.floatValue = static_cast<float>(value);
}

QZL_IO_ALWAYS_INLINE void eCurrentToken::SetFloat(float value) {
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
