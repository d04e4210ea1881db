// SPDX-License-Identifier: BSL-1.0
#include <qzl_io/system/path.h>

#include <memory>

#include <qzl_io/system/file.h>
#include <qzl_io/system/search.h>

#include "files/path_text.h"
#include "files/tree.h"
#include "platform/characters.h"
#include "platform/files.h"
#include "platform/folder.h"
#include "platform/machine.h"
#include "platform/pure/patience.h"
#include "platform/unattended.h"

namespace IO::System {

namespace {

// The system whose wide characters have 2 bytes is the one with drives.
constexpr eNameRoot kNameRoot = sizeof(wchar_t) == 2 ? eNameRoot::Drive : eNameRoot::Slash;

// As paths, these names would mean a root with everything on it.
template <class Name>
bool NamesNothing(const Name& folder) {
    const auto* text = folder.c_str();
    return text[0] == 0 || (text[1] == ':' && text[2] == 0);
}

// Null if the folder cannot be opened.
template <class Char>
std::unique_ptr<eFolder> OpenFolder(const Char* name, eNamedLink link, ePatience& patience) {
    std::unique_ptr<eFolder> opened;
    patience.Get([&] { return Platform::OpenFolder(name, link, &opened); });
    return opened;
}

// With `like`, the last part gets the permissions of that folder.
template <class Char>
bool CreateFolder(const std::basic_string<Char>& folder, ePatience& patience, eFolder* like = nullptr) {
    const Platform::eUnattended unattended;
    if (folder.empty() || Platform::MayAccess(folder.c_str(), File::Exist))
        return true;
    const auto makeFolder = [&](const std::basic_string<Char>& part) {
        const bool isLast = part.size() + 1 >= folder.size();
        return patience.Get([&] { return Platform::MakeFolder(part.c_str(), isLast ? like : nullptr); });
    };
    return MakeParts(folder, FirstPart(std::basic_string_view<Char>(folder), kNameRoot), makeFolder);
}

template <class Name>
void DeleteFolder(const Name& folder, bool recursive, ePatience& patience) {
    const Platform::eUnattended unattended;
    if (NamesNothing(folder))
        return;
    const Name path = Name(folder).GetPath();
    bool emptied = false;
    if (recursive)
        if (const auto opened = OpenFolder(path.c_str(), eNamedLink::Refuse, patience))
            emptied = DeleteContents(*opened, patience);
    if (!patience.GetRemoved(emptied, [&] { return Platform::RemoveFolder(path.c_str()); }))
        Platform::RemoveFolderLink(path.c_str());
}

template <class Name>
void CopyFolder(const Name& from, const Name& to) {
    const Platform::eUnattended unattended;
    if (NamesNothing(from) || NamesNothing(to))
        return;
    const Name source = Name(from).GetPath();
    const Name target = Name(to).GetPath();
    ePatience patience;
    DeleteFolder(target, true, patience);
    const auto openedSource = OpenFolder(source.c_str(), eNamedLink::Follow, patience);
    const bool isNew = !Platform::MayAccess(target.c_str(), File::Exist);
    CreateFolder(target.str(), patience, openedSource.get());
    const auto openedTarget = OpenFolder(target.c_str(), eNamedLink::Refuse, patience);
    if (!openedSource || !openedTarget)
        return;
    if (isNew)
        openedTarget->EndLike(*openedSource);
    CopyContents(*openedSource, *openedTarget, patience);
}

// Prepends the name, as text, to whatever it and the mask find together: on Linux a listed name may contain a
// backslash, which a name value would turn into a slash.
template <class Search, class Name, class Char>
void PurgeFound(const Name& prefix, const Char* mask) {
    ePatience patience;
    for (Search search(prefix, mask); search.Valid(); search.Next()) {
        if (!search.IsSubfolder() || search.IsLink())
            continue;
        const auto subfolder = prefix.str() + search.Name() + Char('/');
        bool emptied = false;
        if (const auto opened = OpenFolder(subfolder.c_str(), eNamedLink::Refuse, patience))
            emptied = PurgeContents(*opened, patience);
        patience.GetRemoved(emptied, [&] { return Platform::RemoveFolder(subfolder.c_str()); });
    }
}

template <class Search, class Name, class Char>
void PurgeFolder(const Name& folder, const Char* mask) {
    const Platform::eUnattended unattended;
    const Name name(folder);
    if (!name.str().ends_with(Char('/')))
        return PurgeFound<Search>(name, mask);
    ePatience patience;
    if (const auto opened = OpenFolder(name.c_str(), eNamedLink::Refuse, patience))
        PurgeContents(*opened, patience);
}

template <class Char>
bool IsLead(Char letter) {
    if constexpr (sizeof(Char) == 1)
        return Platform::IsLeadByte(letter);
    else
        return false;
}

template <class Char>
void Assign(std::basic_string<Char>* target, std::basic_string_view<Char> part, bool fits) {
    if (target)
        *target = fits ? part : std::basic_string_view<Char>();
}

template <class Char>
std::basic_string<Char> CutPath(const std::basic_string<Char>& path, std::basic_string<Char>* drive,
                                std::basic_string<Char>* dir, std::basic_string<Char>* name,
                                std::basic_string<Char>* ext) {
    std::basic_string<Char> text = path;
    if (text.empty())
        return text;
    const ePathParts<Char> parts(text, &IsLead<Char>);
    const bool fits = parts.FitRoom();
    Assign(drive, parts.drive, fits);
    Assign(dir, parts.dir, fits);
    Assign(name, parts.name, fits);
    Assign(ext, parts.ext, fits);
    return text;
}

} // namespace

namespace Path {

bool Create(const eFileName& folder) {
    ePatience patience;
    return CreateFolder(eFileName(folder).str(), patience);
}
void Copy(const eFileName& from, const eFileName& to) {
    CopyFolder(from, to);
}
void Delete(const eFileName& folder, bool recursive) {
    ePatience patience;
    DeleteFolder(folder, recursive, patience);
}
void PurgeEmpty(const eFileName& folder) {
    PurgeFolder<eSearch>(folder, "*.*");
}

std::string SplitPath(const std::string& path, std::string* drive, std::string* dir, std::string* name,
                      std::string* ext) {
    return CutPath(path, drive, dir, name, ext);
}

std::string WorkingDir() {
    return FolderOf(Platform::ExecutableName<char>());
}

} // namespace Path

namespace PathW {

bool Create(const eFileNameW& folder) {
    ePatience patience;
    return CreateFolder(eFileNameW(folder).str(), patience);
}
void Copy(const eFileNameW& from, const eFileNameW& to) {
    CopyFolder(from, to);
}
void Delete(const eFileNameW& folder, bool recursive) {
    ePatience patience;
    DeleteFolder(folder, recursive, patience);
}
void PurgeEmpty(const eFileNameW& folder) {
    PurgeFolder<eSearchW>(folder, L"*.*");
}

std::wstring SplitPath(const std::wstring& path, std::wstring* drive, std::wstring* dir, std::wstring* name,
                       std::wstring* ext) {
    return CutPath(path, drive, dir, name, ext);
}

std::wstring WorkingDir() {
    return FolderOf(Platform::ExecutableName<wchar_t>());
}

} // namespace PathW

} // namespace IO::System
