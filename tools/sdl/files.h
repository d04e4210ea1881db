// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include <qzl_io/streams.h>

// Files as arguments: "-" is standard input or output.

inline constexpr std::string_view kStandard = "-";

// The name as messages show it.
std::string ShownName(const std::string& name);

// The content of a file, or all of standard input. Throws eTrouble if there is none to be had.
std::unique_ptr<IO::eStream> OpenInput(const std::string& name);

// Where a verb puts a document. A file keeps its old content until Commit replaces it in one step. Failures throw
// eTrouble.
class eOutput {
public:
    explicit eOutput(std::string target);

    void Write(std::string_view text);
    // For what writes to streams; not together with Write.
    IO::eStream& Stream();
    void Commit();

private:
    [[noreturn]] void Fail() const;

    std::string name;
    std::unique_ptr<IO::eSaveFile> file;          // null: standard output
    std::unique_ptr<IO::eMemoryStream> collected; // what Stream has taken for standard output
};
