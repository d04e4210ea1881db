// SPDX-License-Identifier: BSL-1.0
#include "platform/folder.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

#include <windows.h>

#include "platform/pure/answer.h"
#include "platform/pure/entry_kind.h"
#include "platform/windows/copy_watched.h"
#include "platform/windows/failure.h"
#include "platform/windows/file_numbers.h"
#include "platform/windows/find_data.h"
#include "platform/windows/native_name.h"
#include "platform/windows/owned_handle.h"
#include "platform/windows/pinned_folder.h"

namespace IO::Platform {

namespace {

constexpr DWORD kLinkFlag = 0x800; // COPY_FILE_COPY_SYMLINK
constexpr DWORD kNoLinks = FILE_FLAG_OPEN_REPARSE_POINT;

// For a handle that was opened on the folder or link itself.
bool IsRealFolder(const eOpenHandle& opened) {
    FILE_ATTRIBUTE_TAG_INFO told{};
    if (::GetFileInformationByHandleEx(opened.Get(), FileAttributeTagInfo, &told, sizeof(told)))
        return ListedKind(told.FileAttributes, told.ReparseTag) == eEntryKind::Folder;
    // A file system without tags has no links either.
    BY_HANDLE_FILE_INFORMATION plain{};
    constexpr DWORD kLooked = FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT;
    return ::GetFileInformationByHandle(opened.Get(), &plain) &&
           (plain.dwFileAttributes & kLooked) == FILE_ATTRIBUTE_DIRECTORY;
}

constexpr DWORD kAnyAttribute = ~DWORD{0};

// False for names that cannot be seen, for example while their deletion is not complete.
bool Has(const std::wstring& name, DWORD attributes) {
    const DWORD seen = ::GetFileAttributesW(name.c_str());
    return seen != INVALID_FILE_ATTRIBUTES && (seen & attributes) != 0;
}

// The answer that a call's result means. Access is denied for good if the name visibly has one of the attributes.
eAnswer Told(BOOL done, const std::wstring& name, DWORD denying) {
    if (done)
        return eAnswer::Done;
    const DWORD error = ::GetLastError();
    Refused(error);
    return AnswerTo(error, error == ERROR_ACCESS_DENIED && Has(name, denying));
}

// Answers a request that is not made, with the reason.
eAnswer Refuse(DWORD reason) {
    Refused(reason);
    return eAnswer::Refused;
}

// "." and "..", and names that would lead out of the folder that lists them, whoever stores such names.
bool LeadsAway(const wchar_t* name) {
    return IsDots(name) || std::wstring_view(name).find_first_of(L"\\/") != std::wstring_view::npos;
}

bool IsLink(const std::wstring& name) {
    WIN32_FIND_DATAW data;
    const eFindHandle found(::FindFirstFileW(name.c_str(), &data));
    return found.IsOpen() && IsListedLink(data.dwFileAttributes, data.dwReserved0);
}

// Holds the folder, as do all folders above it that were entered on the way, so their names stay true meanwhile.
class eWindowsFolder final : public eFolder {
public:
    // Takes a path in extended form that ends in a backslash.
    eWindowsFolder(std::wstring fullPath, eOpenHandle opened) : path(std::move(fullPath)), pin(std::move(opened)) {}

    // Opens the root of a walk.
    static eAnswer OpenRoot(const std::wstring& name, eNamedLink link, std::unique_ptr<eFolder>* opened) {
        eOpenHandle pin;
        const eAnswer answer = OpenReal(name, link, &pin);
        if (answer == eAnswer::Done)
            *opened = std::make_unique<eWindowsFolder>(PinnedName(pin, name), std::move(pin));
        return answer;
    }

    bool Next(eEntry* entry) override {
        while (Advance()) {
            if (LeadsAway(data.cFileName))
                continue;
            *entry = {ListedKind(data.dwFileAttributes, data.dwReserved0), data.cFileName};
            return true;
        }
        return false;
    }

    bool IsListedWhole() override { return notListed == 0 || Refused(notListed); }

    eEntryFacts Facts(const eEntry&) override {
        return {(data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0, ListedSize(data), ListedTime(data)};
    }

    bool ReachableName(const eEntry&, std::string* name) override { return ListedName(data, name); }

    eAnswer Enter(const eEntry& entry, std::unique_ptr<eFolder>* opened) override {
        const std::wstring name = Named(entry);
        eOpenHandle inner;
        const eAnswer answer = OpenReal(name, eNamedLink::Refuse, &inner);
        if (answer == eAnswer::Done)
            *opened = std::make_unique<eWindowsFolder>(WithSlash(name), std::move(inner));
        return answer;
    }

    eAnswer RemoveFile(const eEntry& entry) override {
        const std::wstring name = Named(entry);
        return Told(::DeleteFileW(name.c_str()), name, FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_DIRECTORY);
    }
    eAnswer RemoveLink(const eEntry& entry) override {
        return Has(Named(entry), FILE_ATTRIBUTE_DIRECTORY) ? RemoveFolder(entry) : RemoveFile(entry);
    }
    eAnswer RemoveFolder(const eEntry& entry) override {
        const std::wstring name = Named(entry);
        return Told(::RemoveDirectoryW(name.c_str()), name, FILE_ATTRIBUTE_READONLY);
    }
    // Permissions are inherited from the folder above.
    eAnswer Make(const eEntry& entry, eFolder&, std::unique_ptr<eFolder>* opened) override {
        const std::wstring name = Named(entry);
        const eAnswer made = Told(::CreateDirectoryW(name.c_str(), nullptr), name, kAnyAttribute);
        return made == eAnswer::Done ? Enter(entry, opened) : made;
    }
    void EndLike(eFolder&) override {}

    eAnswer CopyFileTo(eFolder& target, const eEntry& entry, eNamedLink link, const eCopyWatch& watch) override {
        const std::wstring from = Named(entry);
        const std::wstring to = Other(target).Named(entry);
        if (link == eNamedLink::Follow && Has(from, FILE_ATTRIBUTE_DIRECTORY))
            return Refuse(ERROR_PRIVILEGE_NOT_HELD);
        const BOOL copied =
            watch ? CopyWatched(from.c_str(), to.c_str(), watch) : ::CopyFileW(from.c_str(), to.c_str(), FALSE);
        return Told(copied, to, kAnyAttribute);
    }

    eAnswer CopyLinkTo(eFolder& target, const eEntry& entry) override {
        const std::wstring from = Named(entry);
        const std::wstring to = Other(target).Named(entry);
        if (!Has(from, FILE_ATTRIBUTE_DIRECTORY))
            return Told(::CopyFileExW(from.c_str(), to.c_str(), nullptr, nullptr, nullptr, kLinkFlag), to,
                        kAnyAttribute);
        const eAnswer made = Told(::CreateDirectoryExW(from.c_str(), to.c_str(), nullptr), to, kAnyAttribute);
        if (made != eAnswer::Done || IsLink(to))
            return made;
        // A system that cannot recreate the link has made it a plain folder.
        ::RemoveDirectoryW(to.c_str());
        return Refuse(ERROR_NOT_SUPPORTED);
    }

    const eFileId& Id() override {
        if (!std::exchange(identified, true))
            id = FolderId(pin.Get());
        return id;
    }

    // Releasing the handle would allow a replacement, and handles are not scarce. But the paths of all folders above a
    // deep one would take the square of its depth, and each path begins that of the folder below.
    void Rest() override {
        length = path.size();
        path = std::wstring();
    }
    void Wake(eFolder& child) override { path = Other(child).path.substr(0, length); }

private:
    static eAnswer OpenReal(const std::wstring& name, eNamedLink link, eOpenHandle* opened) {
        *opened = PinFolder(name, link == eNamedLink::Refuse ? kNoLinks : 0);
        if (!opened->IsOpen())
            return Told(FALSE, name, kAnyAttribute);
        return IsRealFolder(*opened) ? eAnswer::Done : Refuse(ERROR_DIRECTORY);
    }

    bool Advance() {
        if (search.IsOpen())
            return ::FindNextFileW(search.Get(), &data) || NoteEnd(ERROR_NO_MORE_FILES);
        if (std::exchange(listed, true))
            return false;
        search = eFindHandle(::FindFirstFileW((path + L'*').c_str(), &data));
        return search.IsOpen() || NoteEnd(ERROR_FILE_NOT_FOUND);
    }

    // Always false. A listing ends with the error that says so, or before its end with any other.
    bool NoteEnd(DWORD atEnd) {
        const DWORD error = ::GetLastError();
        notListed = error == atEnd ? 0 : error;
        return false;
    }

    std::wstring Named(const eEntry& entry) const { return path + static_cast<const wchar_t*>(entry.name); }

    static eWindowsFolder& Other(eFolder& folder) { return static_cast<eWindowsFolder&>(folder); }

    std::wstring path;
    std::size_t length = 0; // of the path, while the folder rests
    eOpenHandle pin;
    eFileId id;
    bool identified = false;
    bool listed = false;
    DWORD notListed = 0; // why entries are missing from the listing
    eFindHandle search;
    WIN32_FIND_DATAW data;
};

} // namespace

template <>
bool EntryText(const eEntry& entry, std::wstring* text) {
    *text = static_cast<const wchar_t*>(entry.name);
    return true;
}

template <>
bool EntryText(const eEntry& entry, std::string* text) {
    const std::wstring_view name = static_cast<const wchar_t*>(entry.name);
    if (NarrowName(name, text))
        return true;
    *text = ShownName(name);
    return false;
}

template <class Char>
eAnswer OpenFolder(const Char* name, eNamedLink link, std::unique_ptr<eFolder>* opened) {
    const std::wstring folder = FolderName(name);
    if (link == eNamedLink::Refuse && IsLink(folder))
        return Refuse(ERROR_DIRECTORY);
    return eWindowsFolder::OpenRoot(folder, link, opened);
}

template <class Char>
eAnswer MakeFolder(const Char* name, eFolder*) {
    const std::wstring folder = eNativeName(name).c_str();
    const BOOL done = ::CreateDirectoryW(folder.c_str(), nullptr) || ::GetLastError() == ERROR_ALREADY_EXISTS;
    return Told(done, folder, kAnyAttribute);
}

template <class Char>
eAnswer RemoveFolder(const Char* name) {
    const std::wstring folder = eNativeName(name).c_str();
    return Told(::RemoveDirectoryW(folder.c_str()), folder, FILE_ATTRIBUTE_READONLY);
}

template <class Char>
bool RemoveFolderLink(const Char*) {
    return Refused(ERROR_DIRECTORY);
}

template eAnswer OpenFolder(const char*, eNamedLink, std::unique_ptr<eFolder>*);
template eAnswer OpenFolder(const wchar_t*, eNamedLink, std::unique_ptr<eFolder>*);
template eAnswer MakeFolder(const char*, eFolder*);
template eAnswer MakeFolder(const wchar_t*, eFolder*);
template eAnswer RemoveFolder(const char*);
template eAnswer RemoveFolder(const wchar_t*);
template bool RemoveFolderLink(const char*);
template bool RemoveFolderLink(const wchar_t*);

} // namespace IO::Platform
