// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include <qzl_io/sdl/document.h>
#include <qzl_io/streams.h>

// Everything that can be done to a document, done to one that is made to cost much. The memory that this takes for
// itself does not grow with the document.

// Every item, in order.
inline std::size_t CountItems(const eSDLDocument& document) {
    std::size_t count = 0;
    eSDLNode at = document.begin() == document.end() ? eSDLNode() : *document.begin();
    while (at) {
        ++count;
        eSDLNode next = at.IsBlock() && !(at.begin() == at.end()) ? *at.begin() : at.Next();
        for (eSDLNode around = at.Parent(); !next && around.IsBlock(); around = around.Parent())
            next = around.Next();
        at = next;
    }
    return count;
}

inline void LookThrough(const eSDLDocument& document) {
    for ([[maybe_unused]] const eSDLPart& part : document.Parts()) {
    }
    CountItems(document);
    document.Find("a/a[a=1]/a");
    document.Find("*/*[1]/2");
    document.Errors(16);
    document.Root().Next();
}

// Edits every part that is so many bytes after the one before.
inline void EditEvery(eSDLDocument& document, std::size_t bytes) {
    std::vector<eSDLNode> nodes;
    std::size_t passed = 0;
    for (const eSDLPart& part : document.Parts())
        if ((passed += part.text.size()) >= bytes) {
            nodes.push_back(part.node);
            passed = 0;
        }
    std::size_t which = 0;
    for (const eSDLNode& node : nodes) {
        document.Set(node, "text");
        document.InsertBefore(node, 1);
        document.InsertAfter(node, eSDLItem::Block("b"));
        document.Append(node, 1.5F);
        document.Rename(node, "n");
        if (++which % 2)
            document.Remove(node);
    }
    if (!nodes.empty())
        nodes.back().Place();
}

inline void UseHostileDocument(const std::string& text) {
    IO::eBufferStream stream(text);
    eSDLDocument document;
    document.Open(stream);
    LookThrough(document);
}

inline void EditHostileDocument(const std::string& text) {
    eSDLDocument document(text);
    EditEvery(document, 256);
    document.ErrorCount();
}
