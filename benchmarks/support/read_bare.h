// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <cstdint>
#include <string>

#include "bare_tokenizer.h"
#include "checksum.h"

namespace bench {

// Replaces the escapes in a string's text.
inline void Unescape(std::string& text) {
    size_t kept = 0;
    for (size_t i = 0; i < text.size(); ++i) {
        char c = text[i];
        if (c == '\\' && i + 1 < text.size()) {
            c = text[++i];
            c = c == 'n' ? '\n' : c == 't' ? '\t' : c == 'r' ? '\r' : c;
        }
        text[kept++] = c;
    }
    text.resize(kept);
}

// The checksum of the values of a text. `look` is called with every identifier.
template <class T>
std::uint64_t ReadBare(const char* source, T look) {
    using eType = eBareTokenizer::eType;
    eBareTokenizer tokens(source);
    eChecksum sum;
    bool isName = false;
    for (eType type; (type = tokens.Next()) != eType::End && type != eType::Error;) {
        if (type == eType::Ident) {
            look(tokens.text);
            if (!isName)
                sum.Text(tokens.text);
        } else if (type == eType::String) {
            if (tokens.isEscaped)
                Unescape(tokens.text);
            sum.Text(tokens.text);
        } else if (type == eType::Int)
            sum.Integer(tokens.integer);
        else if (type == eType::Float)
            sum.Real(tokens.real);
        isName = type == eType::BlockStart;
    }
    return sum.Value();
}

inline std::uint64_t ReadBare(const char* source) {
    return ReadBare(source, [](const std::string&) {});
}

} // namespace bench
