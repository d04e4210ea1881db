// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <qzl_base/convert.h>
#include <qzl_base/error.h>
#include <qzl_io/sdl/document.h>
#include <qzl_io/sdl/reader.h>
#include <qzl_io/streams.h>

// What a reader makes of a text, and what a document shows of it, in the same form: { and the mark, }, and the other
// tokens with a sign of their kind.

inline std::string ShownToken(const eSDLParserToken& token) {
    switch (token.type) {
    case sdlBlockStart:
        return "{" + token.text;
    case sdlBlockEnd:
        return "}";
    case sdlInt:
        return "i" + ToString(token.intValue, false);
    case sdlFloat:
        return "f" + ToString(token.floatValue);
    case sdlString:
        return "s" + token.text;
    case sdlOperator:
        return "o" + token.text;
    default:
        return "w" + token.text;
    }
}

// Nothing if a reader refuses the text: it reports, finds a character that begins no token, or blocks do not close.
inline std::optional<std::vector<std::string>> ReadAsReader(const std::string& text) {
    std::vector<std::string> tokens;
    long long depth = 0;
    try {
        IO::eBufferStream stream(text);
        eSDLReader reader(&stream, nullptr);
        while (reader.GetToken().type != sdlNone) {
            const eSDLParserToken& token = reader.Token();
            depth += token.type == sdlBlockStart ? 1 : token.type == sdlBlockEnd ? -1 : 0;
            if (token.type == sdlError || depth < 0)
                return std::nullopt;
            tokens.push_back(ShownToken(token));
        }
    } catch (const xError::eException&) {
        return std::nullopt;
    }
    return depth == 0 ? std::optional(tokens) : std::nullopt;
}

inline std::string ShownItem(const eSDLNode& item) {
    switch (item.Kind()) {
    case eSDLKind::Int: {
        // The reader takes the nearest int.
        int value = 0;
        const std::string text = item.Text();
        if (text != "0x")
            _FromString(&value, text.data(), text.data() + text.size());
        return "i" + ToString(value, false);
    }
    case eSDLKind::Float: {
        float value = 0;
        const std::string text = item.Text();
        _FromString(&value, text.data(), text.data() + text.size());
        return "f" + ToString(value);
    }
    case eSDLKind::Calculation:
        return "f" + ToString(item.As<float>().value_or(-12345.F));
    case eSDLKind::String:
        return "s" + item.As<std::string>().value_or("?");
    case eSDLKind::Operator:
        return "o" + item.Text();
    case eSDLKind::Word:
        return "w" + item.Text();
    default:
        return "?";
    }
}

inline std::vector<std::string> ShownItems(const eSDLDocument& document) {
    std::vector<std::string> tokens;
    std::vector<eSDLNode> open; // where to go on after each open block
    eSDLNode at = document.begin() == document.end() ? eSDLNode() : *document.begin();
    const auto enter = [&](const eSDLNode& block) {
        std::string mark(block.Mark());
        tokens.push_back("{" + mark);
        if (const std::string_view name = block.Name(); !name.empty())
            tokens.push_back("w" + std::string(name));
        open.push_back(block);
        at = block.begin() == block.end() ? eSDLNode() : *block.begin();
    };
    for (;;) {
        if (at && at.IsBlock()) {
            enter(at);
        } else if (at) {
            tokens.push_back(ShownItem(at));
            at = at.Next();
        } else if (!open.empty()) {
            tokens.push_back("}");
            at = open.back().Next();
            open.pop_back();
        } else {
            return tokens;
        }
    }
}

// The parts one after the other.
inline std::string JoinedParts(const eSDLDocument& document) {
    std::string text;
    for (const eSDLPart& part : document.Parts())
        text += part.text;
    return text;
}
