// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <functional>
#include <string>

#include "../support/documents.h"
#include "../support/scene_words.h"
#include "../support/suite.h"

namespace bench {

// The name of the work "read this document value by value".
inline std::string ReadWork(eDocument document, unsigned kilobytes) {
    return std::string("read value by value: ") + Name(document) + ", " + SizeName(kilobytes);
}

inline std::string FileWork(unsigned kilobytes) {
    return "read value by value from a file: records, " + SizeName(kilobytes);
}

inline std::string LexWork(eDocument document, unsigned kilobytes) {
    return std::string("lexing alone: ") + Name(document) + ", " + SizeName(kilobytes);
}

// Calls `each` for the documents and sizes that the options select: records at every size, the others at the first
// size, or at every size in a full run.
inline void ForEachDocument(const eOptions& options, const std::function<void(eDocument, unsigned)>& each) {
    for (const unsigned kilobytes : options.kilobytes)
        each(eDocument::Records, kilobytes);
    for (const eDocument document : {eDocument::Strings, eDocument::Numbers, eDocument::Nested, eDocument::Comments})
        for (const unsigned kilobytes : options.kilobytes)
            if (options.full || kilobytes == options.kilobytes.front())
                each(document, kilobytes);
}

} // namespace bench
