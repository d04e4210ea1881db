// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <condition_variable>
#include <mutex>
#include <string>

#include <qzl_base/stack_entry.h>

namespace xDebug {

// The text of the calling thread's diagnostic stack, for a report.
std::string DiagnosticContext();

// The entries of all threads in the order in which they were added. No virtual function of an entry is called under the
// lock. Instead an entry is claimed while it is described, and another thread that removes it waits until it is
// released.
class eDiagnosticStack {
public:
    static eDiagnosticStack& Instance();

    // Adds the entry as the innermost of the calling thread, wherever it was before.
    void Enter(eStackEntry& entry) noexcept;
    void Leave(eStackEntry& entry) noexcept;

    // Describes the calling thread's entries, innermost first.
    std::string Describe();

private:
    class eDescription;

    void Remove(eStackEntry& entry, std::unique_lock<std::mutex>& lock) noexcept;

    std::mutex mutex;
    std::condition_variable released;
    eStackEntry* newest = nullptr;
};

} // namespace xDebug
