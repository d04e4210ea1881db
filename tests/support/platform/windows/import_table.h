#pragma once

// A place in a loaded module's import table that holds another function during the object's life.
class eReplacedImport {
public:
    // Throws std::runtime_error when the module is not loaded or does not import the call by name, so that a test never
    // passes for want of a replacement. `*original`, which must outlive every call, is what stood there.
    eReplacedImport(const char* module, const char* call, void* replacement, void** original);
    ~eReplacedImport();
    eReplacedImport(const eReplacedImport&) = delete;
    eReplacedImport& operator=(const eReplacedImport&) = delete;

private:
    void** place;
    void* replaced;
};

// Lets a module's calls of a system function go to one of the test's, for the life of the object and on all threads:
//
//     decltype(&::DeleteFileW) systemsDelete;
//     BOOL WINAPI Refuse(LPCWSTR) { ::SetLastError(ERROR_SHARING_VIOLATION); return FALSE; }
//     ...
//     const eReplacedCall refusing("qzl_io.dll", "DeleteFileW", &Refuse, &systemsDelete);
//
// The replacement reaches the system's function by the pointer. Replacements of one call nest like scopes.
template <class Call>
class eReplacedCall {
public:
    eReplacedCall(const char* module, const char* call, Call replacement, Call* original)
        : import(module, call, reinterpret_cast<void*>(replacement), reinterpret_cast<void**>(original)) {}

private:
    eReplacedImport import;
};
