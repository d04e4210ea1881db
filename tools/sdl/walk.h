// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <cstddef>
#include <string>

#include <qzl_io/sdl.h>

// Reads every token of a document as an application's reader finds it, whatever the names of its blocks: without
// comments, with the results of calculations, without hidden blocks.
class eWalk : public eSDLReader {
public:
    // Throws eTrouble if there is no such file.
    explicit eWalk(const std::string& name);

protected:
    // Reads the next token; false at the end of the document. Shows progress. Shows the first mistake and throws
    // eTrouble at a character that begins no token, a } too many and at an end within a block or a string.
    bool Next();

    // The word directly after a block's {, which it reads; false if there is none.
    bool TakeName(std::string* word);

    std::size_t Depth() const { return depth; }
    int Line() const { return Parser().Line(); }

    // Continues at the place of the text, as if what is before it had been read.
    void MoveTo(const char* position, int line);
    // Continues at the beginning of the document.
    void Rewind();

private:
    [[noreturn]] void Fail() const;
    void RequireEnd(const char* before);
    void ReportProgress();

    std::string fileName;
    const char* begin;
    std::size_t size = 0; // in bytes, once progress is reported
    std::size_t depth = 0;
    unsigned tokens = 0;
};
