#pragma once

#include <condition_variable>
#include <mutex>
#include <string>

#include <qzl_base/stack_entry.h>

namespace xDebug {

// The texts of the calling thread's diagnostic stack, as a report carries them.
std::string DiagnosticContext();

// The entries of all threads in the order in which they were put there. No virtual function of an entry is called under
// the lock: an entry is claimed for the time of its description instead, and removal by another thread waits for its
// release.
class eDiagnosticStack {
public:
    static eDiagnosticStack& Instance();

    // As the innermost entry of the calling thread, wherever it was.
    void Enter(eStackEntry& entry) noexcept;
    void Leave(eStackEntry& entry) noexcept;

    // The calling thread's part, innermost entry first.
    std::string Describe();

private:
    class eDescription;

    void Remove(eStackEntry& entry, std::unique_lock<std::mutex>& lock) noexcept;

    std::mutex mutex;
    std::condition_variable released;
    eStackEntry* newest = nullptr;
};

} // namespace xDebug
