// SPDX-License-Identifier: BSL-1.0
#pragma once

// Puts another function into a loaded module's import table for the object's lifetime.
class eReplacedImport {
public:
    // Throws std::runtime_error if the module is not loaded or does not import the call by name, so that a test never
    // passes without its replacement. `*original` receives the previous function and must outlive every call.
    eReplacedImport(const char* module, const char* call, void* replacement, void** original);
    ~eReplacedImport();
    eReplacedImport(const eReplacedImport&) = delete;
    eReplacedImport& operator=(const eReplacedImport&) = delete;

private:
    void** place;
    void* replaced;
};

// Redirects a module's calls of a system function to a function of the test, for the object's lifetime and on all
// threads:
//
//     decltype(&::DeleteFileW) systemsDelete;
//     BOOL WINAPI Refuse(LPCWSTR) { ::SetLastError(ERROR_SHARING_VIOLATION); return FALSE; }
//     ...
//     const eReplacedCall refusing("qzl_io.dll", "DeleteFileW", &Refuse, &systemsDelete);
//
// The replacement calls the system's function through the pointer. Replacements of one call nest like scopes.
template <class Call>
class eReplacedCall {
public:
    eReplacedCall(const char* module, const char* call, Call replacement, Call* original)
        : import(module, call, reinterpret_cast<void*>(replacement), reinterpret_cast<void**>(original)) {}

private:
    eReplacedImport import;
};
