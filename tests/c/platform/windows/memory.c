// SPDX-License-Identifier: BSL-1.0
#include <stdint.h>
#include <string.h>
#include <windows.h>

#include "check.h"

// The DLL allocates with the malloc of the C library, which it imports: its import table is given another one.

static void* (*original)(size_t size);
static long left;

static void* Failing(size_t size) {
    return left > 0 && --left == 0 ? NULL : original(size);
}

// The entry of the DLL's import table for the function, or null.
static void** ImportOf(unsigned char* base, const char* function) {
    const IMAGE_DOS_HEADER* const dos = (const IMAGE_DOS_HEADER*)base;
    const IMAGE_NT_HEADERS* const headers = (const IMAGE_NT_HEADERS*)(base + dos->e_lfanew);
    const IMAGE_DATA_DIRECTORY* const directory = &headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    const IMAGE_IMPORT_DESCRIPTOR* library = (const IMAGE_IMPORT_DESCRIPTOR*)(base + directory->VirtualAddress);
    for (; library->Name; ++library) {
        const IMAGE_THUNK_DATA* name = (const IMAGE_THUNK_DATA*)(base + library->OriginalFirstThunk);
        IMAGE_THUNK_DATA* entry = (IMAGE_THUNK_DATA*)(base + library->FirstThunk);
        for (; name->u1.AddressOfData; ++name, ++entry) {
            if (IMAGE_SNAP_BY_ORDINAL(name->u1.Ordinal))
                continue;
            const IMAGE_IMPORT_BY_NAME* const import = (const IMAGE_IMPORT_BY_NAME*)(base + name->u1.AddressOfData);
            if (strcmp((const char*)import->Name, function) == 0)
                return (void**)&entry->u1.Function;
        }
    }
    return NULL;
}

static int Replace(void) {
    HMODULE library = GetModuleHandleA("qzl_io_c.dll");
    void** const entry = library ? ImportOf((unsigned char*)library, "malloc") : NULL;
    DWORD before = 0;
    if (!entry || !VirtualProtect(entry, sizeof *entry, PAGE_READWRITE, &before))
        return 0;
    void* (*const failing)(size_t) = Failing;
    memcpy(&original, entry, sizeof original);
    memcpy(entry, &failing, sizeof failing);
    return VirtualProtect(entry, sizeof *entry, before, &before) != 0;
}

int FailAllocations(long first) {
    if (!original && !Replace())
        return 0;
    left = first;
    return 1;
}
