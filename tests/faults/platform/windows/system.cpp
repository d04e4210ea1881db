// SPDX-License-Identifier: BSL-1.0
#include "faults/platform/system.h"

#include <cerrno>

#include <windows.h>

#include <qzl_io/system/file.h>

#include "faults/platform/windows/calls.h"

namespace {

constexpr eFaultMode kModes[] = {
    kNoMemoryOnce,
    kNoMemoryAtAll,
    {"input/output error", eUse::Call, eEffect::Fails, EIO, false},
    {"permission denied", eUse::Call, eEffect::Fails, EACCES, false},
    {"no handle left", eUse::Call, eEffect::Fails, EMFILE, false},
    {"in use", eUse::Call, eEffect::Fails, EBUSY, false},
    {"short count", eUse::Transfer, eEffect::IsShort, 0, true},
    {"full disk from there on", eUse::Growth, eEffect::FailsFromThereOn, ENOSPC, false},
    {"handle closed underneath", eUse::Handle, eEffect::Cuts, EBADF, false},
};

} // namespace

// The stand-ins stay in the tables, and ask nobody while there is no injection.
void RouteCalls(bool on) {
    if (!on)
        return;
    InstallCalls();
    InstallHeap();
}

bool AreCallsRouted() {
    const eInjection watch(kModes[0]);
    IO::System::File::Size(eFileName("no such file"));
    return watch.Uses(eUse::Call) != 0;
}

std::span<const eFaultMode> FaultModes() {
    return kModes;
}

long long OpenHandles() {
    DWORD count = 0;
    ::GetProcessHandleCount(::GetCurrentProcess(), &count);
    return count;
}
