// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <array>
#include <atomic>
#include <cstddef>

// Faults in everything that the libraries use: each allocation and each system call is counted, and the n-th one is
// struck. The functions of platform/ stand between the libraries and the system, and ask here first.

enum class eUse {
    Allocation,
    Call,          // every system call
    Interruptible, // those that a signal may interrupt
    Transfer,      // those that may transfer fewer bytes than they are asked to
    Growth,        // those that may need room on the disk
    Handle         // those that work on a handle
};
inline constexpr std::size_t kUses = 6;

enum class eEffect {
    Fails,
    FailsFromThereOn,
    IsShort, // transfers half of the bytes
    Cuts     // from then on every call on its handle fails, as if somebody had closed that
};

struct eFaultMode {
    const char* name;
    eUse use;
    eEffect effect;
    int error;     // an error number of the C library
    bool harmless; // what is done succeeds all the same
};

inline constexpr eFaultMode kNoMemoryOnce{"no memory", eUse::Allocation, eEffect::Fails, 0, false};
inline constexpr eFaultMode kNoMemoryAtAll{"no memory from there on", eUse::Allocation, eEffect::FailsFromThereOn, 0,
                                           false};

struct eSystemCall {
    const char* function;
    long long handles[2]; // that it works on; -1 for none
    bool takesRoom;
    bool interruptible;
    std::size_t* bytes; // how many it is to transfer; null if a call that transfers fewer means something else
};

// During its lifetime counts what all threads use and strikes the n-th use that the mode is about; with 0 none. There
// is one at a time.
class eInjection {
public:
    explicit eInjection(const eFaultMode& mode, unsigned long long n = 0);
    ~eInjection();
    eInjection(const eInjection&) = delete;
    eInjection& operator=(const eInjection&) = delete;

    unsigned long long Uses(eUse kind) const { return uses[static_cast<std::size_t>(kind)]; }
    bool Struck() const { return struck; }
    const char* Function() const { return function; } // the one that was struck first

    // Whether this allocation is to fail.
    static bool TakesAllocation() noexcept;
    // The error number if this call is to fail, or 0.
    static int TakesCall(const eSystemCall& call) noexcept;

private:
    static bool IsUse(eUse kind, const eSystemCall& call) noexcept;
    // Counts a use of the kind, and tells whether it is struck.
    bool Strikes(eUse kind, const char* what) noexcept;
    int Takes(const eSystemCall& call) noexcept;
    bool IsCut(const eSystemCall& call) const noexcept;

    const eFaultMode mode;
    const unsigned long long target;
    std::array<unsigned long long, kUses> uses{};
    bool struck = false;
    const char* function = "";
    long long cut = -1;
};

// The blocks of memory that have been allocated and not freed.
class eBlocks {
public:
    static long long Live() noexcept { return live; }
    static void Count(long long more) noexcept { live += more; }

private:
    static inline std::atomic<long long> live = 0;
};
