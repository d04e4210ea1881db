// SPDX-License-Identifier: BSL-1.0
#include "faults/platform/system.h"

#include <cerrno>

#include "support/platform/posix/fault.h"
#include "support/platform/posix/open_descriptors.h"
#include "support/platform/posix/watched_calls.h"

namespace {

class eRoute : public eCallWatcher {
public:
    bool Takes(eWatchedCall& call) override {
        const auto handle = [](int descriptor) { return descriptor < 0 ? -1ll : descriptor; };
        const int failure = eInjection::TakesCall({.function = call.function,
                                                   .handles = {handle(call.descriptor), handle(call.second)},
                                                   .takesRoom = call.takesRoom,
                                                   .interruptible = call.interruptible,
                                                   .bytes = call.bytes});
        if (failure != 0)
            errno = failure;
        return failure != 0;
    }
};

constexpr eFaultMode kModes[] = {
    kNoMemoryOnce,
    kNoMemoryAtAll,
    {"input/output error", eUse::Call, eEffect::Fails, EIO, false},
    {"permission denied", eUse::Call, eEffect::Fails, EACCES, false},
    {"no descriptor left", eUse::Call, eEffect::Fails, EMFILE, false},
    {"try again", eUse::Call, eEffect::Fails, EAGAIN, false},
    {"interrupted", eUse::Interruptible, eEffect::Fails, EINTR, true},
    {"short count", eUse::Transfer, eEffect::IsShort, 0, true},
    {"full disk from there on", eUse::Growth, eEffect::FailsFromThereOn, ENOSPC, false},
    {"handle closed underneath", eUse::Handle, eEffect::Cuts, EBADF, false},
};

} // namespace

void RouteCalls(bool on) {
    static eRoute route;
    WatchAll(on ? &route : nullptr);
}

bool AreCallsRouted() {
    const long long before = eBlocks::Live();
    void* const block = ::operator new(1);
    const bool counted = eBlocks::Live() == before + 1;
    ::operator delete(block);
    return counted && eFault::ReachesLibraries();
}

std::span<const eFaultMode> FaultModes() {
    return kModes;
}

long long OpenHandles() {
    return OpenDescriptors();
}
