// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <span>

#include "faults/injection.h"

// While it is on, the libraries' system calls ask eInjection before they reach the system.
void RouteCalls(bool on);

// False if something else (a sanitizer) takes the libraries' calls or allocations before they are asked about.
bool AreCallsRouted();

// Every kind of fault that this system knows.
std::span<const eFaultMode> FaultModes();

// The handles that this process has open.
long long OpenHandles();
