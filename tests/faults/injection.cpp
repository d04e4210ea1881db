// SPDX-License-Identifier: BSL-1.0
#include "faults/injection.h"

#include <algorithm>
#include <cerrno>

#include "faults/platform/system.h"

namespace {

std::atomic<eInjection*> current = nullptr;

} // namespace

eInjection::eInjection(const eFaultMode& theMode, unsigned long long n) : mode(theMode), target(n) {
    current = this;
    RouteCalls(true);
}

eInjection::~eInjection() {
    RouteCalls(false);
    current = nullptr;
}

bool eInjection::TakesAllocation() noexcept {
    eInjection* const injection = current;
    return injection && injection->Strikes(eUse::Allocation, "an allocation");
}

int eInjection::TakesCall(const eSystemCall& call) noexcept {
    eInjection* const injection = current;
    return injection ? injection->Takes(call) : 0;
}

bool eInjection::Strikes(eUse kind, const char* what) noexcept {
    const unsigned long long number = ++uses[static_cast<std::size_t>(kind)];
    if (kind != mode.use || target == 0)
        return false;
    const bool here = number == target || (mode.effect == eEffect::FailsFromThereOn && number > target);
    if (here && !struck)
        function = what;
    struck = struck || here;
    return here;
}

bool eInjection::IsUse(eUse kind, const eSystemCall& call) noexcept {
    switch (kind) {
    case eUse::Allocation:
        return false;
    case eUse::Call:
        return true;
    case eUse::Interruptible:
        return call.interruptible;
    case eUse::Transfer:
        return call.bytes && *call.bytes > 1;
    case eUse::Growth:
        return call.takesRoom;
    case eUse::Handle:
        return call.handles[0] != -1;
    }
    return false;
}

bool eInjection::IsCut(const eSystemCall& call) const noexcept {
    return cut != -1 && std::find(std::begin(call.handles), std::end(call.handles), cut) != std::end(call.handles);
}

int eInjection::Takes(const eSystemCall& call) noexcept {
    bool strikes = false;
    for (const eUse kind : {eUse::Call, eUse::Interruptible, eUse::Transfer, eUse::Growth, eUse::Handle})
        strikes = (IsUse(kind, call) && Strikes(kind, call.function)) || strikes;
    switch (mode.effect) {
    case eEffect::Fails:
    case eEffect::FailsFromThereOn:
        return strikes ? mode.error : 0;
    case eEffect::IsShort:
        if (strikes)
            *call.bytes = (*call.bytes + 1) / 2;
        return 0;
    case eEffect::Cuts:
        cut = strikes ? call.handles[0] : cut;
        return IsCut(call) ? mode.error : 0;
    }
    return 0;
}
