// SPDX-License-Identifier: BSL-1.0
#include "support/platform/windows/import_table.h"

#include <stdexcept>
#include <string>
#include <string_view>

#include <windows.h>

namespace {

// The bytes of a loaded module, by their offset from its start.
class eModuleBytes {
public:
    explicit eModuleBytes(HMODULE module) : start(reinterpret_cast<BYTE*>(module)) {}

    template <class Record>
    Record* At(ULONGLONG distance) const {
        return reinterpret_cast<Record*>(start + distance);
    }

private:
    BYTE* start;
};

const IMAGE_IMPORT_DESCRIPTOR* FirstImported(const eModuleBytes& bytes) {
    const auto* dos = bytes.At<const IMAGE_DOS_HEADER>(0);
    const auto* headers = bytes.At<const IMAGE_NT_HEADERS64>(static_cast<ULONGLONG>(dos->e_lfanew));
    const auto& table = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    return bytes.At<const IMAGE_IMPORT_DESCRIPTOR>(table.VirtualAddress);
}

// Null if the module does not import the call by name.
void** PlaceOf(const eModuleBytes& bytes, std::string_view call) {
    for (const auto* from = FirstImported(bytes); from->Name != 0; ++from) {
        const auto* name = bytes.At<const IMAGE_THUNK_DATA64>(from->OriginalFirstThunk);
        auto* place = bytes.At<IMAGE_THUNK_DATA64>(from->FirstThunk);
        for (; name->u1.AddressOfData != 0; ++name, ++place)
            if (!IMAGE_SNAP_BY_ORDINAL64(name->u1.Ordinal) &&
                call == bytes.At<const IMAGE_IMPORT_BY_NAME>(name->u1.AddressOfData)->Name)
                return reinterpret_cast<void**>(&place->u1.Function);
    }
    return nullptr;
}

void** FindPlace(const char* module, const char* call) {
    const HMODULE loaded = ::GetModuleHandleA(module);
    void** const place = loaded ? PlaceOf(eModuleBytes(loaded), call) : nullptr;
    if (!place)
        throw std::runtime_error(std::string(module) + " does not import " + call);
    return place;
}

// The system protects the table against writing.
void* Exchange(void** place, void* function) {
    DWORD protection = 0;
    if (!::VirtualProtect(place, sizeof(*place), PAGE_READWRITE, &protection))
        throw std::runtime_error("the import table cannot be written to");
    void* const before = ::InterlockedExchangePointer(place, function);
    ::VirtualProtect(place, sizeof(*place), protection, &protection);
    return before;
}

} // namespace

eReplacedImport::eReplacedImport(const char* module, const char* call, void* replacement, void** original)
    : place(FindPlace(module, call)), replaced(*place) {
    *original = replaced;
    Exchange(place, replacement);
}

eReplacedImport::~eReplacedImport() {
    Exchange(place, replaced);
}
