// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <string>

#include <qzl_base/export.h>

namespace xDebug {

// An object that describes the work in progress for error and warning reports.
//
// Construction, copying included, puts the entry on the calling thread's diagnostic stack; destruction removes it. A
// report's context (xError::eReport) consists of the reporting thread's entries, innermost (last added) first: for each
// entry its title and brief, a line feed, and its full text, which gets a final line feed unless it is empty. An entry
// whose three texts are empty, or one of whose texts throws, leaves no trace.
//
// Of entries that are one of many (eNumber), the innermost eight are described, and one line "... and N more" after
// them stands for the rest. The time of a report is linear in the number of entries.
//
// The texts are requested only while a report is made, on the thread whose stack has the entry. A derived class that
// may report while it is constructed or destroyed must be able to return its texts at that moment.
//
// Entries may be destroyed in any order and on any thread. A destructor on another thread waits while the entry is
// being described. A derived class whose destructor may run then calls LeaveStack() first, so that the wait comes
// before its own members are destroyed.
class QZL_BASE_API eStackEntry {
public:
    eStackEntry();
    eStackEntry(const eStackEntry&);
    // Copies nothing: each entry keeps its own place.
    eStackEntry& operator=(const eStackEntry&) noexcept;
    virtual ~eStackEntry();

    // The thing that is worked on, for example a quoted file name.
    virtual std::string DSE_Title() const;
    // The place in it, as a short continuation of the title.
    virtual std::string DSE_Brief() const;
    // Several lines that show the place, or an empty text.
    virtual std::string DSE_Full() const;

protected:
    // Whether a stack may hold great numbers of entries of this kind.
    enum class eNumber : bool { Few, Many };

    explicit eStackEntry(eNumber number);

    // Makes the entry the innermost one of the calling thread's stack, wherever it was before. For an object that moves
    // to another thread, or that reports while others are at work.
    void EnterStack() noexcept;
    // Removes the entry from the stack before its destruction. A second call does nothing.
    void LeaveStack() noexcept;

private:
    friend class eDiagnosticStack;

    // The entries added before and after this one, on any thread; null at the ends and off the stack.
    eStackEntry* older = nullptr;
    eStackEntry* newer = nullptr;
    unsigned long long thread = 0;   // number of the thread whose stack has the entry; 0 when off the stack
    eStackEntry** awaited = nullptr; // where a report in progress has noted the entry
    bool oneOfMany = false;
    bool described = false; // a report is requesting the texts
};

} // namespace xDebug
