// SPDX-License-Identifier: BSL-1.0
#include "platform/saved_file.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <utility>

#include <windows.h>

#include <fcntl.h>
#include <io.h>

#include <qzl_base/convert.h>

#include "platform/file_handle.h"
#include "platform/pure/answer.h"
#include "platform/pure/beside_name.h"
#include "platform/pure/extended_name.h"
#include "platform/pure/patience.h"
#include "platform/unattended.h"
#include "platform/windows/copied_bytes.h"
#include "platform/windows/failure.h"
#include "platform/windows/file_numbers.h"
#include "platform/windows/native_name.h"
#include "platform/windows/owned_handle.h"
#include "platform/windows/pinned_folder.h"
#include "platform/windows/resemblance.h"

namespace IO::Platform {
namespace {

using System::ePatience;

constexpr unsigned kMostTries = 100;
constexpr DWORD kExchanged = ERROR_FILE_INVALID; // another file has taken the target's name

eOpenHandle Open(const std::wstring& name, DWORD access, DWORD share, DWORD how, DWORD flags = 0) {
    return eOpenHandle(::CreateFileW(name.c_str(), access, share, nullptr, how, flags, nullptr));
}

bool IsThere(const std::wstring& name) {
    return ::GetFileAttributesW(name.c_str()) != INVALID_FILE_ATTRIBUTES;
}

// Repeats a call for half a second at most while others hold the file. False, with the reason noted, if it was refused.
template <class Call>
bool Insist(const std::wstring& target, Call call) {
    DWORD error = 0;
    const bool done = ePatience(ePatience::kPausesOfSave).Get([&] {
        if (call())
            return eAnswer::Done;
        error = ::GetLastError();
        const DWORD seen = error == ERROR_ACCESS_DENIED ? ::GetFileAttributesW(target.c_str()) : 0;
        return AnswerTo(error, seen != INVALID_FILE_ATTRIBUTES &&
                                   (seen & (FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_DIRECTORY)) != 0);
    });
    return done || Refused(error);
}

// A full name in parts: the folder with the slash after it, and the file.
struct ePlace {
    explicit ePlace(const std::wstring& full)
        : folder(full.substr(0, full.rfind(L'\\') + 1)), name(full.substr(folder.size())) {}

    std::wstring Full() const { return folder + name; }
    std::wstring Beside(const wchar_t* start, const wchar_t* kind, unsigned number) const {
        return folder + System::BesideName(start, name, kind, number);
    }

    std::wstring folder;
    std::wstring name;
};

// The name as people know it: without the prefix of the extended form, with slashes.
std::string ShownName(std::wstring name) {
    constexpr std::wstring_view kStart = L"\\\\?\\";
    constexpr std::wstring_view kShareStart = L"\\\\?\\UNC\\";
    if (name.starts_with(kShareStart))
        name.replace(0, kShareStart.size(), L"\\\\");
    else if (name.starts_with(kStart))
        name.erase(0, kStart.size());
    std::replace(name.begin(), name.end(), L'\\', L'/');
    return ToString(name);
}

struct eRunTimeHandle {
    explicit eRunTimeHandle(int opened) : handle(opened) {}
    ~eRunTimeHandle() {
        if (handle != -1)
            CloseFile(handle);
    }
    eRunTimeHandle(const eRunTimeHandle&) = delete;
    eRunTimeHandle& operator=(const eRunTimeHandle&) = delete;

    const int handle;
};

// A device, a pipe or a stream within a file.
class eWrittenAtOnce : public eSavedFile {
public:
    bool TakePlace(int handle, bool toDisk) override {
        const bool isOnDisk = ::GetFileType(reinterpret_cast<HANDLE>(_get_osfhandle(handle))) == FILE_TYPE_DISK;
        const bool written = !toDisk || !isOnDisk || _commit(handle) == 0 || Refused(_doserrno);
        const bool closed = _close(handle) == 0 || Refused(_doserrno);
        return written && closed;
    }
    const std::string& Kept() const override { return none; }

private:
    std::string none;
};

// While the temporary file is open, nobody else may write or remove it: one that can be removed was left by a program
// that was killed.
//
// The folder is held, too, so that all names lead to it until the end, whatever others do to it or to those above it.
// They may exchange the target itself.
//
// ReplaceFile takes two steps, between which the target is missing. Moving a file takes one, so the temporary file gets
// what the target has besides its content, and is moved.
class eWrittenBeside : public eSavedFile {
public:
    // `facts` is null, and the identity empty, where the target is missing.
    eWrittenBeside(const std::wstring& target, const BY_HANDLE_FILE_INFORMATION* facts, const eFileId& found)
        : place(target), id(found) {
        if (facts) {
            created = facts->ftCreationTime;
            attributes = facts->dwFileAttributes & kKeptAttributes;
            inOneStep = facts->nNumberOfLinks <= 1;
        }
    }

    ~eWrittenBeside() override {
        if (pending)
            Remove();
    }

    // -1 where the folder takes no new file.
    int NewHandle(bool exists) {
        if (!HoldFolder())
            return -1;
        eOpenHandle file = Create();
        if (!file.IsOpen()) {
            Refused(::GetLastError());
            return -1;
        }
        pending = true;
        if (exists && inOneStep)
            inOneStep = TakeRightsAndStreams(place.Full(), beside);
        const int handle = _open_osfhandle(reinterpret_cast<std::intptr_t>(file.Get()), _O_BINARY | _O_RDWR);
        if (handle == -1)
            Refused(ERROR_TOO_MANY_OPEN_FILES);
        else
            file.Release();
        return handle;
    }

    bool TakePlace(int handle, bool toDisk) override {
        const eUnattended unattended;
        if (created.dwHighDateTime != 0)
            ::SetFileTime(reinterpret_cast<HANDLE>(_get_osfhandle(handle)), &created, nullptr, nullptr);
        const bool written = !toDisk || _commit(handle) == 0 || Refused(_doserrno);
        const bool closed = _close(handle) == 0 || Refused(_doserrno);
        if (!written || !closed)
            return false;
        if (!inOneStep)
            return WriteInPlace(toDisk);
        if (!Insist(place.Full(), [&] { return Move(toDisk); })) {
            KeepRefused();
            return false;
        }
        pending = false;
        return true;
    }

    const std::string& Kept() const override { return kept; }

private:
    static constexpr DWORD kKeptAttributes =
        FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_ARCHIVE | FILE_ATTRIBUTE_NOT_CONTENT_INDEXED;

    // Not refused where the folder cannot be held: one that may be changed, but not listed.
    bool HoldFolder() {
        folder = PinFolder(place.folder, 0);
        if (folder.IsOpen())
            place.folder = PinnedName(folder, place.folder);
        const eOpenHandle there = Open(place.Full(), 0, kShareAll, OPEN_EXISTING);
        return !there.IsOpen() || IsTarget(there) || Refused(kExchanged);
    }

    // Whether a file that was opened by the target's name may be the target that was there in the beginning.
    bool IsTarget(const eOpenHandle& file) const { return MayBeOneFile(id, NumberedId(file.Get())); }

    eOpenHandle Create() {
        for (unsigned tries = 0;; ++tries) {
            beside = place.Beside(L".", L".saving", tries);
            const auto create = [&] {
                return Open(beside, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ, CREATE_NEW, attributes);
            };
            eOpenHandle file = create();
            if (!file.IsOpen() && IsThere(beside) && ::DeleteFileW(beside.c_str()))
                file = create();
            if (file.IsOpen() || tries == kMostTries || !IsTaken(::GetLastError()))
                return file;
        }
    }

    // Whether another save has the name, or has just ended.
    bool IsTaken(DWORD error) const {
        return error == ERROR_FILE_EXISTS || error == ERROR_SHARING_VIOLATION ||
               (error == ERROR_ACCESS_DENIED && IsThere(beside));
    }

    bool Move(bool toDisk) const {
        const DWORD flags = MOVEFILE_REPLACE_EXISTING | (toDisk ? MOVEFILE_WRITE_THROUGH : 0);
        return ::MoveFileExW(beside.c_str(), place.Full().c_str(), flags);
    }

    // Tries twice, since nobody else would remove the file soon.
    void Remove() const {
        if (!::DeleteFileW(beside.c_str()))
            ::DeleteFileW(beside.c_str());
    }

    // Gives the temporary file a name that no save removes. False, with the reason noted, if the system refuses; it
    // then stays where it is. Whatever takes memory comes before the renaming, so that no file is kept that is not told
    // of.
    bool Keep() {
        kept = ShownName(beside);
        DWORD error = ERROR_FILE_EXISTS;
        for (unsigned number = 0; number < kMostTries && IsThereAlready(error); ++number) {
            std::wstring lasting = place.Beside(L"", L".unsaved", number);
            std::string shown = ShownName(lasting);
            if (::MoveFileExW(beside.c_str(), lasting.c_str(), 0)) {
                pending = false;
                beside.swap(lasting);
                kept.swap(shown);
                return true;
            }
            error = ::GetLastError();
        }
        pending = false;
        return Refused(error);
    }

    static bool IsThereAlready(DWORD error) { return error == ERROR_ALREADY_EXISTS || error == ERROR_FILE_EXISTS; }

    // The reason why the document was not put in place is the one to be told.
    void KeepRefused() {
        const unsigned long reason = lastFailure;
        Keep();
        Refused(reason);
    }

    // While the target is neither the old document nor the new one, the document has a name that no save removes.
    bool WriteInPlace(bool toDisk) {
        const std::wstring name = place.Full();
        eOpenHandle target;
        const auto open = [&] {
            target = Open(name, GENERIC_WRITE, kShareAll, OPEN_EXISTING);
            return target.IsOpen();
        };
        if (!Keep() || !Insist(name, open))
            return false;
        if (!IsTarget(target))
            return Refused(kExchanged);
        if (!CopyInto(target.Get(), toDisk))
            return false;
        Remove();
        kept.clear();
        return true;
    }

    bool CopyInto(HANDLE target, bool toDisk) const {
        const eOpenHandle source = Open(beside, GENERIC_READ, FILE_SHARE_READ, OPEN_EXISTING);
        if (!source.IsOpen())
            return Refused(::GetLastError());
        return CopyBytes(source.Get(), target) &&
               ((::SetEndOfFile(target) && (!toDisk || ::FlushFileBuffers(target))) || Refused(::GetLastError()));
    }

    ePlace place;
    eFileId id;
    eOpenHandle folder;
    FILETIME created{}; // zero for a new file
    DWORD attributes = FILE_ATTRIBUTE_NORMAL;
    bool inOneStep = true;
    bool pending = false;
    std::wstring beside;
    std::string kept;
};

std::unique_ptr<eSavedFile> BeginBeside(const std::wstring& target, const BY_HANDLE_FILE_INFORMATION* facts,
                                        const eFileId& id, int* handle) {
    auto saved = std::make_unique<eWrittenBeside>(target, facts, id);
    *handle = saved->NewHandle(facts != nullptr);
    return *handle != -1 ? std::move(saved) : nullptr;
}

// The final name of an open file, in which all links are followed; the name as given if the system tells none that
// leads back to the file, as one from whose end dots and blanks are stripped.
template <class Char>
std::wstring TrueName(HANDLE file, const Char* given) {
    std::wstring told = FinalName(file);
    const eOpenHandle there = Open(told, 0, kShareAll, OPEN_EXISTING);
    const bool leadsBack = there.IsOpen() && MayBeOneFile(NumberedId(file), NumberedId(there.Get()));
    return leadsBack ? told : FolderName(given);
}

template <class Char>
std::unique_ptr<eSavedFile> BeginExisting(const Char* target, const eOpenHandle& existing, int* handle) {
    BY_HANDLE_FILE_INFORMATION facts{};
    if (!::GetFileInformationByHandle(existing.Get(), &facts)) {
        Refused(::GetLastError());
        return nullptr;
    }
    if ((facts.dwFileAttributes & FILE_ATTRIBUTE_READONLY) != 0) {
        Refused(ERROR_ACCESS_DENIED);
        return nullptr;
    }
    return BeginBeside(TrueName(existing.Get(), target), &facts, NumberedId(existing.Get()), handle);
}

template <class Char>
std::unique_ptr<eSavedFile> BeginMissing(const Char* target, int* handle) {
    const std::wstring name = FolderName(target);
    if (!IsThere(name))
        return BeginBeside(name, nullptr, {}, handle);
    Refused(ERROR_CANT_RESOLVE_FILENAME);
    return nullptr;
}

bool IsDevice(const eOpenHandle& file) {
    return ::GetFileType(file.Get()) != FILE_TYPE_DISK;
}

template <class Char>
std::unique_ptr<eSavedFile> BeginAtOnce(const Char* target, int* handle) {
    auto saved = std::make_unique<eWrittenAtOnce>();
    *handle = OpenFile(target, kOpenCreate);
    return *handle == -1 ? nullptr : std::move(saved);
}

template <class Char>
std::unique_ptr<eSavedFile> BeginOnce(const Char* target, int* handle) {
    const std::wstring name = eNativeName(target).c_str();
    *handle = -1;
    if (System::NamesStream(name))
        return BeginAtOnce(target, handle);
    eOpenHandle existing;
    const auto open = [&] {
        existing = Open(name, GENERIC_WRITE, kShareAll, OPEN_EXISTING);
        return existing.IsOpen();
    };
    if (!Insist(name, open)) {
        const bool missing = lastFailure == ERROR_FILE_NOT_FOUND;
        return missing ? BeginMissing(target, handle) : nullptr;
    }
    if (!IsDevice(existing))
        return BeginExisting(target, existing, handle);
    existing.Close();
    return BeginAtOnce(target, handle);
}

} // namespace

template <class Char>
std::unique_ptr<eSavedFile> BeginSave(const Char* target, int* handle) {
    const eUnattended unattended;
    auto saved = BeginOnce(target, handle);
    // Another save may replace the target after it was opened.
    for (unsigned tries = 1; !saved && lastFailure == kExchanged && tries < kMostTries; ++tries)
        saved = BeginOnce(target, handle);
    return saved;
}

template <class Char>
bool PrepareSave(const Char* target) {
    std::wstring told;
    {
        const eRunTimeHandle opened{OpenFile(target, kOpenWrite)};
        if (opened.handle == -1)
            return false;
        const auto file = reinterpret_cast<HANDLE>(_get_osfhandle(opened.handle));
        if (::GetFileType(file) == FILE_TYPE_DISK)
            told = TrueName(file, target);
    }
    const auto mayAddFile = [&] {
        return Open(ePlace(told).folder, FILE_ADD_FILE, kShareAll, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS).IsOpen();
    };
    return told.empty() || mayAddFile() || Refused(::GetLastError());
}

template std::unique_ptr<eSavedFile> BeginSave(const char* target, int* handle);
template std::unique_ptr<eSavedFile> BeginSave(const wchar_t* target, int* handle);
template bool PrepareSave(const char* target);
template bool PrepareSave(const wchar_t* target);

} // namespace IO::Platform
