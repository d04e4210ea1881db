// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <concepts>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

// What a run has left.
struct eAftermath {
    bool complete;  // every call said that it succeeded, so all of the work must have been done
    bool handleCut; // a handle was closed underneath, so what only it could reach may have been left over
    bool noMemory;  // there was no memory any more, not even to say what failed
};

// What an application does with the libraries, while everything that they use fails in turn. An object serves one
// fault: it is made without faults, and what it still holds when it is destroyed counts as leaked.
class eScenario {
public:
    virtual ~eScenario() = default;

    // Does all of the work, with faults. True if every call said, by its result, flags or report, that it succeeded.
    // May throw std::bad_alloc and what an error handler throws.
    virtual bool Run() = 0;

    // Checks what is there afterwards, without faults.
    virtual void Look(const eAftermath& after) = 0;

    // Whether a report with this message may be made when something has failed.
    virtual bool Expects(std::string_view message) const = 0;

    // Whether the results of the calls tell what was done. If not, only a run in which nothing failed must be complete.
    virtual bool Tells() const { return true; }

    // Whether the error handler returns.
    virtual bool Returns() const { return false; }
};

// The reports that have been made since Run began, kept without allocations.
class eNoted {
public:
    static int Errors();
    static int Warnings();
    static const char* LastWarning(); // its message and its context, a line each
};

// Strikes every use of every kind in turn until a run passes without a fault, or a sample of them unless long tests are
// wanted. After each fault nothing may have leaked, no handle may be open, and the same work must succeed. Prints the
// number of faults.
void Torture(const std::string& name, const std::function<std::unique_ptr<eScenario>()>& make);

template <std::derived_from<eScenario> Scenario>
void Torture(const std::string& name) {
    Torture(name, [] { return std::make_unique<Scenario>(); });
}

// Prints the number, and adds it to the sum.
void CountFaults(const std::string& name, unsigned long long faults);
