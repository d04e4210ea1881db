#include "../folder.h"

#include <utility>

#include "owned_handle.h"
#include "service_calls.h"

namespace IO::Platform {

namespace {

constexpr DWORD linkFlag = 0x800; // COPY_FILE_COPY_SYMLINK
constexpr DWORD folderFlags = FILE_FLAG_BACKUP_SEMANTICS;
constexpr DWORD noLinks = FILE_FLAG_OPEN_REPARSE_POINT;

/// Without FILE_SHARE_DELETE: while the handle is open nobody can remove, rename or exchange the folder. Reading the
/// list is what makes the system compare the sharing.
template <class Char>
eOpenHandle Pin(const Char* name, DWORD flags) {
    return eOpenHandle(
        Calls::OpenFile(name, FILE_LIST_DIRECTORY, FILE_SHARE_READ | FILE_SHARE_WRITE, folderFlags | flags));
}

bool IsRealFolder(const BY_HANDLE_FILE_INFORMATION& opened) {
    return (opened.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0 &&
           (opened.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0;
}

template <class Data>
eEntryKind KindOf(const Data& data) {
    const bool isReparsePoint = (data.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
    if ((data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0)
        return isReparsePoint ? eEntryKind::Link : eEntryKind::Folder;
    return isReparsePoint && data.dwReserved0 == IO_REPARSE_TAG_SYMLINK ? eEntryKind::Link : eEntryKind::File;
}

template <class Char>
bool IsDots(const Char* name) {
    return name[0] == '.' && (name[1] == 0 || (name[1] == '.' && name[2] == 0));
}

template <class Char>
bool IsReparsePoint(const Char* name) {
    Calls::eFindData<Char> data;
    const eFindHandle found(Calls::FindFirst(name, &data));
    return found.IsOpen() && (data.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
}

/// Holds the folder and so do all above it that were entered on the way: what their names say stays true meanwhile.
template <class Char>
class eWindowsFolder final : public eFolder {
public:
    using eText = std::basic_string<Char>;

    /// The path ends in "/".
    eWindowsFolder(eText fullPath, eOpenHandle opened, eFolderId identity)
        : path(std::move(fullPath)), pin(std::move(opened)), id(identity) {}

    static std::unique_ptr<eFolder> Open(const eText& name, eNamedLink link) {
        eOpenHandle opened = Pin(name.c_str(), link == eNamedLink::Refuse ? noLinks : 0);
        BY_HANDLE_FILE_INFORMATION information{};
        if (!opened.IsOpen() || !::GetFileInformationByHandle(opened.Get(), &information))
            return nullptr;
        if (link == eNamedLink::Refuse && !IsRealFolder(information))
            return nullptr;
        const auto number =
            static_cast<unsigned long long>(information.nFileIndexHigh) << 32 | information.nFileIndexLow;
        const eFolderId identity{information.dwVolumeSerialNumber, number};
        return std::make_unique<eWindowsFolder>(name + Char('/'), std::move(opened), identity);
    }

    bool Next(eEntry* entry) override {
        while (Advance()) {
            if (IsDots(data.cFileName))
                continue;
            *entry = {KindOf(data), data.cFileName};
            return true;
        }
        return false;
    }

    std::unique_ptr<eFolder> Enter(const eEntry& entry) override { return Open(Named(entry), eNamedLink::Refuse); }

    bool RemoveFile(const eEntry& entry) override { return Calls::Erase(Named(entry).c_str()) != FALSE; }
    bool RemoveLink(const eEntry& entry) override { return RemoveFile(entry) || RemoveFolder(entry); }
    bool RemoveFolder(const eEntry& entry) override { return Calls::RemoveFolder(Named(entry).c_str()) != FALSE; }
    bool MakeFolder(const eEntry& entry) override { return Calls::MakeFolder(Named(entry).c_str()) != FALSE; }

    void CopyFileTo(eFolder& target, const eEntry& entry) override {
        Calls::Copy(Named(entry).c_str(), Other(target).Named(entry).c_str());
    }

    void CopyLinkTo(eFolder& target, const eEntry& entry) override {
        const eText from = Named(entry);
        const eText to = Other(target).Named(entry);
        if (Calls::MakeFolderLike(from.c_str(), to.c_str())) {
            // A system that cannot recreate the link has made a plain folder of it.
            if (!IsReparsePoint(to.c_str()))
                Calls::RemoveFolder(to.c_str());
        } else {
            Calls::CopyWith(from.c_str(), to.c_str(), nullptr, nullptr, linkFlag);
        }
    }

    eFolderId Id() override { return id; }

    /// Letting go would allow the exchange; handles are not short.
    void Rest() override {}
    void Wake(eFolder&) override {}

private:
    bool Advance() {
        if (search.IsOpen())
            return Calls::FindNext(search.Get(), &data) != FALSE;
        if (std::exchange(listed, true))
            return false;
        const Char all[] = {'*', '.', '*', 0};
        search = eFindHandle(Calls::FindFirst((path + all).c_str(), &data));
        return search.IsOpen();
    }

    eText Named(const eEntry& entry) const { return path + static_cast<const Char*>(entry.name); }

    static eWindowsFolder& Other(eFolder& folder) { return static_cast<eWindowsFolder&>(folder); }

    eText path;
    eOpenHandle pin;
    eFolderId id;
    bool listed = false;
    eFindHandle search;
    Calls::eFindData<Char> data;
};

/// The slash of a drive's root belongs to its name.
template <class Char>
std::basic_string<Char> WithoutSlashes(std::basic_string<Char> name) {
    while (name.size() > 1 && name.back() == Char('/') && name[name.size() - 2] != Char(':'))
        name.pop_back();
    return name;
}

} // namespace

template <class Char>
std::unique_ptr<eFolder> OpenFolder(const Char* name, eNamedLink link) {
    const auto text = WithoutSlashes(std::basic_string<Char>(name));
    if (link == eNamedLink::Refuse && IsReparsePoint(text.c_str()))
        return nullptr;
    return eWindowsFolder<Char>::Open(text, link);
}

template <class Char>
eMadeFolder MakeFolder(const Char* name) {
    if (Calls::MakeFolder(name))
        return eMadeFolder::Made;
    return ::GetLastError() == ERROR_ALREADY_EXISTS ? eMadeFolder::Existed : eMadeFolder::Refused;
}

template <class Char>
bool RemoveFolder(const Char* name) {
    return Calls::RemoveFolder(name) != FALSE;
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
