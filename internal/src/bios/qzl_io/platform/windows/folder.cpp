#include "../folder.h"

#include <string>
#include <string_view>
#include <utility>

#include <windows.h>

#include "native_name.h"
#include "owned_handle.h"

namespace IO::Platform {

namespace {

constexpr DWORD linkFlag = 0x800; // COPY_FILE_COPY_SYMLINK
constexpr DWORD folderFlags = FILE_FLAG_BACKUP_SEMANTICS;
constexpr DWORD noLinks = FILE_FLAG_OPEN_REPARSE_POINT;

/// Without FILE_SHARE_DELETE: while the handle is open nobody can remove, rename or exchange the folder. Reading the
/// list is what makes the system compare the sharing.
eOpenHandle Pin(const std::wstring& name, DWORD flags) {
    return eOpenHandle(::CreateFileW(name.c_str(), FILE_LIST_DIRECTORY, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                     OPEN_EXISTING, folderFlags | flags, nullptr));
}

bool IsRealFolder(const BY_HANDLE_FILE_INFORMATION& opened) {
    return (opened.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0 &&
           (opened.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0;
}

eEntryKind KindOf(const WIN32_FIND_DATAW& data) {
    const bool isReparsePoint = (data.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
    if ((data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0)
        return isReparsePoint ? eEntryKind::Link : eEntryKind::Folder;
    return isReparsePoint && data.dwReserved0 == IO_REPARSE_TAG_SYMLINK ? eEntryKind::Link : eEntryKind::File;
}

/// "." and "..", and what would lead out of the folder that lists it, whoever keeps that.
bool LeadsAway(std::wstring_view name) {
    return name == L"." || name == L".." || name.find_first_of(L"\\/") != name.npos;
}

/// A root has its slash already.
std::wstring WithSlash(std::wstring name) {
    if (!name.ends_with(L'\\'))
        name += L'\\';
    return name;
}

bool IsReparsePoint(const std::wstring& name) {
    WIN32_FIND_DATAW data;
    const eFindHandle found(::FindFirstFileW(name.c_str(), &data));
    return found.IsOpen() && (data.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
}

/// Holds the folder and so do all above it that were entered on the way: what their names say stays true meanwhile.
class eWindowsFolder final : public eFolder {
public:
    /// The path is in extended form and ends in a back slash.
    eWindowsFolder(std::wstring fullPath, eOpenHandle opened, eFolderId identity)
        : path(std::move(fullPath)), pin(std::move(opened)), id(identity) {}

    static std::unique_ptr<eFolder> Open(const std::wstring& name, eNamedLink link) {
        eOpenHandle opened = Pin(name, link == eNamedLink::Refuse ? noLinks : 0);
        BY_HANDLE_FILE_INFORMATION information{};
        if (!opened.IsOpen() || !::GetFileInformationByHandle(opened.Get(), &information))
            return nullptr;
        if (link == eNamedLink::Refuse && !IsRealFolder(information))
            return nullptr;
        const auto number =
            static_cast<unsigned long long>(information.nFileIndexHigh) << 32 | information.nFileIndexLow;
        const eFolderId identity{information.dwVolumeSerialNumber, number};
        return std::make_unique<eWindowsFolder>(WithSlash(name), std::move(opened), identity);
    }

    bool Next(eEntry* entry) override {
        while (Advance()) {
            if (LeadsAway(data.cFileName))
                continue;
            *entry = {KindOf(data), data.cFileName};
            return true;
        }
        return false;
    }

    std::unique_ptr<eFolder> Enter(const eEntry& entry) override { return Open(Named(entry), eNamedLink::Refuse); }

    bool RemoveFile(const eEntry& entry) override { return ::DeleteFileW(Named(entry).c_str()) != FALSE; }
    bool RemoveLink(const eEntry& entry) override { return RemoveFile(entry) || RemoveFolder(entry); }
    bool RemoveFolder(const eEntry& entry) override { return ::RemoveDirectoryW(Named(entry).c_str()) != FALSE; }
    bool MakeFolder(const eEntry& entry) override { return ::CreateDirectoryW(Named(entry).c_str(), nullptr) != FALSE; }

    void CopyFileTo(eFolder& target, const eEntry& entry) override {
        ::CopyFileW(Named(entry).c_str(), Other(target).Named(entry).c_str(), FALSE);
    }

    void CopyLinkTo(eFolder& target, const eEntry& entry) override {
        const std::wstring from = Named(entry);
        const std::wstring to = Other(target).Named(entry);
        if (::CreateDirectoryExW(from.c_str(), to.c_str(), nullptr)) {
            // A system that cannot recreate the link has made a plain folder of it.
            if (!IsReparsePoint(to))
                ::RemoveDirectoryW(to.c_str());
        } else {
            ::CopyFileExW(from.c_str(), to.c_str(), nullptr, nullptr, nullptr, linkFlag);
        }
    }

    eFolderId Id() override { return id; }

    /// Letting go would allow the exchange; handles are not short.
    void Rest() override {}
    void Wake(eFolder&) override {}

private:
    bool Advance() {
        if (search.IsOpen())
            return ::FindNextFileW(search.Get(), &data) != FALSE;
        if (std::exchange(listed, true))
            return false;
        search = eFindHandle(::FindFirstFileW((path + L'*').c_str(), &data));
        return search.IsOpen();
    }

    std::wstring Named(const eEntry& entry) const { return path + static_cast<const wchar_t*>(entry.name); }

    static eWindowsFolder& Other(eFolder& folder) { return static_cast<eWindowsFolder&>(folder); }

    std::wstring path;
    eOpenHandle pin;
    eFolderId id;
    bool listed = false;
    eFindHandle search;
    WIN32_FIND_DATAW data;
};

} // namespace

template <class Char>
std::unique_ptr<eFolder> OpenFolder(const Char* name, eNamedLink link) {
    const std::wstring folder = FolderName(name);
    if (link == eNamedLink::Refuse && IsReparsePoint(folder))
        return nullptr;
    return eWindowsFolder::Open(folder, link);
}

template <class Char>
eMadeFolder MakeFolder(const Char* name) {
    if (::CreateDirectoryW(eNativeName(name).c_str(), nullptr))
        return eMadeFolder::Made;
    return ::GetLastError() == ERROR_ALREADY_EXISTS ? eMadeFolder::Existed : eMadeFolder::Refused;
}

template <class Char>
bool RemoveFolder(const Char* name) {
    return ::RemoveDirectoryW(eNativeName(name).c_str()) != FALSE;
}

template <class Char>
bool RemoveFolderLink(const Char*) {
    return false;
}

template std::unique_ptr<eFolder> OpenFolder(const char*, eNamedLink);
template std::unique_ptr<eFolder> OpenFolder(const wchar_t*, eNamedLink);
template eMadeFolder MakeFolder(const char*);
template eMadeFolder MakeFolder(const wchar_t*);
template bool RemoveFolder(const char*);
template bool RemoveFolder(const wchar_t*);
template bool RemoveFolderLink(const char*);
template bool RemoveFolderLink(const wchar_t*);

} // namespace IO::Platform
