#pragma once

#include <string>

#include <qzl_base/export.h>

namespace xDebug {

// An object that can say where work stands, for error and warning reports.
//
// Construction, copying included, puts the entry on the calling thread's diagnostic stack; destruction takes it off.
// A report's context (xError::eReport) is made from the reporting thread's entries, innermost (last put there) first:
// for each of them title and brief, a line feed, and the full text, ended by a line feed unless empty. An entry whose
// three texts are empty, or one of whose texts throws, leaves no trace.
//
// Of entries that are one of many (eNumber) the innermost eight are described, and a line "... and N more" behind them
// stands for the rest. The time that a report takes grows with the number of entries, but only as fast.
//
// The texts are asked for only while a report is made, on the thread on whose stack the entry is. A derived class that
// may report while it is constructed or destroyed must be able to give its texts at that moment.
//
// Entries may be destroyed in any order and on any thread. A destructor on another thread waits while the entry is
// being described; a derived class whose destructor may run then calls LeaveStack() first, so that the wait comes
// before its own members are gone.
class QZL_BASE_API eStackEntry {
public:
    eStackEntry();
    eStackEntry(const eStackEntry&);
    // Assignment copies nothing: each entry keeps its own place.
    eStackEntry& operator=(const eStackEntry&) noexcept;
    virtual ~eStackEntry();

    // What is being worked on, for example a quoted file name.
    virtual std::string DSE_Title() const;
    // Where in it, as a short continuation of the title.
    virtual std::string DSE_Brief() const;
    // Several lines that show the place, or an empty text.
    virtual std::string DSE_Full() const;

protected:
    // May a stack hold great numbers of entries of this kind?
    enum class eNumber : bool { Few, Many };

    explicit eStackEntry(eNumber number);

    // Makes the entry the innermost one of the calling thread's stack, wherever it was before. For an object that goes
    // to work on another thread, or that reports while others are at work.
    void EnterStack() noexcept;
    // Takes the entry off the stack before its destruction. Calling it again does nothing.
    void LeaveStack() noexcept;

private:
    friend class eDiagnosticStack;

    // The entry that was put there before and after this one, on whatever thread; null at the ends and off the stack.
    eStackEntry* older = nullptr;
    eStackEntry* newer = nullptr;
    unsigned long long thread = 0;   // number of the thread on whose stack it is; 0 when off the stack
    eStackEntry** awaited = nullptr; // where a report under way has noted the entry
    bool oneOfMany = false;
    bool described = false; // a report is asking for the texts just now
};

} // namespace xDebug
