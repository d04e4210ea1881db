// SPDX-License-Identifier: BSL-1.0
#include "support/wine.h"

#include <windows.h>

bool IsUnderWine() {
    const HMODULE ntdll = ::GetModuleHandleW(L"ntdll.dll");
    return ntdll && ::GetProcAddress(ntdll, "wine_get_version") != nullptr;
}
