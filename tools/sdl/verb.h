// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <cstddef>
#include <functional>
#include <span>
#include <stdexcept>
#include <string>

#include <CLI/CLI.hpp>

// The verbs of the program.

// How a verb ends; the program's exit code.
enum class eEnd : int {
    Fine = 0,
    Findings = 1, // mistakes in a document, or differences
    Trouble = 2   // a wrong command line, or a file that cannot be read or written
};

// Ends a verb with eEnd::Trouble after its message, which is printable, has been shown.
class eTrouble : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

struct eVerb {
    using eRun = std::function<eEnd()>;

    const char* name;
    const char* summary;
    const char* examples; // one on each line
    // Declares the arguments of the verb, and returns what it does when they have been read.
    eRun (*declare)(CLI::App* verb);
};

std::span<const eVerb> Verbs();

// Takes whole numbers from 0 to most, and has the same message with each version of the library for command lines.
CLI::Validator AtMost(std::size_t most);

eVerb::eRun DeclareCheck(CLI::App* verb);
eVerb::eRun DeclareDiff(CLI::App* verb);
eVerb::eRun DeclareFormat(CLI::App* verb);
eVerb::eRun DeclareFromJson(CLI::App* verb);
eVerb::eRun DeclareGet(CLI::App* verb);
eVerb::eRun DeclareLsp(CLI::App* verb);
eVerb::eRun DeclareRemove(CLI::App* verb);
eVerb::eRun DeclareSchema(CLI::App* verb);
eVerb::eRun DeclareSet(CLI::App* verb);
eVerb::eRun DeclareShow(CLI::App* verb);
eVerb::eRun DeclareSystem(CLI::App* verb);
eVerb::eRun DeclareToJson(CLI::App* verb);
eVerb::eRun DeclareTokens(CLI::App* verb);
