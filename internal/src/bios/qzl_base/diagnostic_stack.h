#pragma once

#include <condition_variable>
#include <mutex>
#include <string>
#include <vector>

#include <qzl_base/stack_entry.h>

namespace xDebug {

// The texts of the calling thread's diagnostic stack, as a report carries them.
std::string DiagnosticContext();

// The entries of all threads in the order of construction. No virtual function of an entry is called under the lock:
// an entry is claimed for the time of its description instead, and removal by another thread waits for its release.
class eDiagnosticStack {
public:
    static eDiagnosticStack& Instance();

    void Enter(eStackEntry& entry) noexcept;
    void Leave(eStackEntry& entry) noexcept;

    // The calling thread's part, innermost entry first.
    std::string Describe();

private:
    std::vector<eStackEntry*> EntriesOf(unsigned long long thread);
    bool Listed(const eStackEntry* entry) const noexcept;
    bool Claim(eStackEntry* entry);
    void Release(eStackEntry* entry);
    void Unlink(eStackEntry& entry) noexcept;

    std::mutex mutex;
    std::condition_variable released;
    eStackEntry* newest = nullptr;
};

} // namespace xDebug
