// SPDX-License-Identifier: BSL-1.0
#include <qzl_io/system/path.h>

#include <memory>

#include <qzl_io/system/file.h>
#include <qzl_io/system/search.h>

#include "files/path_text.h"
#include "files/tree.h"
#include "files/tree_report.h"
#include "files/whole_name.h"
#include "platform/characters.h"
#include "platform/file_handle.h"
#include "platform/files.h"
#include "platform/folder.h"
#include "platform/machine.h"
#include "platform/pure/patience.h"
#include "platform/unattended.h"

namespace IO::System {

namespace {

// The system whose wide characters have 2 bytes is the one with drives.
constexpr eNameRoot kNameRoot = sizeof(wchar_t) == 2 ? eNameRoot::Drive : eNameRoot::Slash;

// As paths, these names would mean a root with everything on it; or they go on after the end that the system sees.
template <class Name>
bool NamesNothing(const Name& folder) {
    const auto* text = folder.c_str();
    return text[0] == 0 || (text[1] == ':' && text[2] == 0) || !IsWhole(folder.str());
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
    if (!IsWhole(folder))
        return false;
    if (folder.empty() || Platform::MayAccess(folder.c_str(), File::Exist))
        return true;
    const auto makeFolder = [&](const std::basic_string<Char>& part) {
        const bool isLast = part.size() + 1 >= folder.size();
        return patience.Get([&] { return Platform::MakeFolder(part.c_str(), isLast ? like : nullptr); });
    };
    return MakeParts(folder, FirstPart(std::basic_string_view<Char>(folder), kNameRoot), makeFolder);
}

// What has become of the root of a deleted tree.
struct eRootEnd {
    bool removed = false;
    bool failed = false; // by itself, not because of what is still in it
    eTreeStep step = eTreeStep::Remove;
    int reason = 0;
};

// Takes the folder as a path, which names something.
template <class Name>
eRootEnd DeletePath(const Name& path, bool recursive, ePatience& patience, eTreeWatch* watch) {
    eRootEnd end;
    bool emptied = false;
    if (recursive) {
        if (const auto opened = OpenFolder(path.c_str(), eNamedLink::Refuse, patience))
            emptied = DeleteContents(*opened, patience, watch);
        else
            end = {false, true, eTreeStep::Open, Platform::TakeRefusal()};
    }
    if (watch && watch->IsStopped())
        return end;
    end.removed = patience.GetRemoved(emptied, [&] { return Platform::RemoveFolder(path.c_str()); });
    if (!end.removed && emptied)
        end = {false, true, eTreeStep::Remove, Platform::TakeRefusal()};
    end.removed = end.removed || Platform::RemoveFolderLink(path.c_str());
    return end;
}

template <class Name>
void DeleteFolder(const Name& folder, bool recursive) {
    const Platform::eUnattended unattended;
    ePatience patience;
    if (!NamesNothing(folder))
        DeletePath(folder.GetPath(), recursive, patience, nullptr);
    Platform::TakeRefusal();
}

// Tells what is wrong with the root of a copy's target: it is not there, or what was in it could not be looked at.
void TellTarget(bool opened, bool isNew, const eRootEnd& cleared, eTreeWatch& watch) {
    const eTreeWatch::eClearing clearing(&watch);
    if (!opened)
        watch.FolderFailed(eTreeStep::Create, Platform::TakeRefusal());
    else if (!isNew && cleared.step == eTreeStep::Open && !cleared.removed)
        watch.FolderFailed(cleared.step, cleared.reason);
}

template <class Name>
void CopyPath(const Name& source, const Name& target, ePatience& patience, eTreeWatch* watch) {
    eRootEnd cleared;
    {
        const eTreeWatch::eClearing clearing(watch);
        cleared = DeletePath(target, true, patience, watch);
    }
    if (watch && watch->IsStopped())
        return;
    const auto openedSource = OpenFolder(source.c_str(), eNamedLink::Follow, patience);
    if (!openedSource && watch)
        watch->FolderFailed(eTreeStep::Open, Platform::TakeRefusal());
    const bool isNew = !Platform::MayAccess(target.c_str(), File::Exist);
    CreateFolder(target.str(), patience, openedSource.get());
    const auto openedTarget = OpenFolder(target.c_str(), eNamedLink::Refuse, patience);
    if (watch)
        TellTarget(openedTarget != nullptr, isNew, cleared, *watch);
    if (!openedSource || !openedTarget)
        return;
    if (isNew)
        openedTarget->EndLike(*openedSource);
    CopyContents(*openedSource, *openedTarget, patience, watch);
    if (watch && !watch->IsStopped())
        watch->Done(eEntryKind::Folder, 0);
}

template <class Name>
void CopyFolder(const Name& from, const Name& to) {
    const Platform::eUnattended unattended;
    ePatience patience;
    if (!NamesNothing(from) && !NamesNothing(to))
        CopyPath(Name(from).GetPath(), Name(to).GetPath(), patience, nullptr);
    Platform::TakeRefusal();
}

// Prepends the name, as text, to whatever it and the mask find together: on Linux a listed name may contain a
// backslash, which a name value would turn into a slash.
template <class Search, class Name, class Char>
void PurgeFound(const Name& prefix, const Char* mask, ePatience& patience) {
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
    ePatience patience;
    if (!name.str().ends_with(Char('/')))
        PurgeFound<Search>(name, mask, patience);
    else if (const auto opened = OpenFolder(WholeText(name), eNamedLink::Refuse, patience))
        PurgeContents(*opened, patience);
    Platform::TakeRefusal();
}

// --- The operations that tell ---

template <class Name>
void PurgePath(const Name& path, ePatience& patience, eTreeReport<Name>& report) {
    if (const auto opened = OpenFolder(path.c_str(), eNamedLink::Refuse, patience))
        PurgeContents(*opened, patience, &report);
    else
        report.FolderFailed(eTreeStep::Open, Platform::TakeRefusal());
}

// Counts what is in a folder, if that is asked for; `whole` with the folder itself and the sizes of files. False if the
// folder cannot be opened.
template <class Name>
bool CountTree(const Name& root, eNamedLink link, bool whole, ePatience& patience, eTreeReport<Name>& report) {
    const auto opened = OpenFolder(root.c_str(), link, patience);
    if (opened && report.Counts()) {
        report.BeginCount();
        if (whole)
            report.Counted(eEntryKind::Folder, 0);
        CountContents(*opened, patience, report, whole);
        report.EndCount();
    }
    return opened != nullptr;
}

template <class Name>
eTreeResultOf<Name> CopyTelling(const Name& from, const Name& to, const eTreeTask& task) {
    const Platform::eUnattended unattended;
    const Name source = from.GetPath();
    const Name target = to.GetPath();
    eTreeReport<Name> report(task, source.str(), target.str());
    ePatience patience;
    if (NamesNothing(from) || NamesNothing(to))
        report.NamesNothing(NamesNothing(from) ? from.str() : to.str());
    else if (!CountTree(source, eNamedLink::Follow, true, patience, report))
        report.FolderFailed(eTreeStep::Open, Platform::TakeRefusal());
    else if (!report.IsStopped())
        CopyPath(source, target, patience, &report);
    return report.Take();
}

template <class Name>
void DeleteTold(const Name& path, ePatience& patience, eTreeReport<Name>& report) {
    const eRootEnd end = DeletePath(path, true, patience, &report);
    if (report.IsStopped())
        return;
    if (end.removed)
        return report.Done(eEntryKind::Folder, 0);
    if (end.failed)
        report.FolderFailed(end.step, end.reason);
    report.Passed(eEntryKind::Folder, 0);
}

template <class Name>
eTreeResultOf<Name> DeleteTelling(const Name& folder, const eTreeTask& task) {
    const Platform::eUnattended unattended;
    const Name path = folder.GetPath();
    eTreeReport<Name> report(task, path.str(), path.str());
    ePatience patience;
    if (NamesNothing(folder))
        report.NamesNothing(folder.str());
    else if (CountTree(path, eNamedLink::Refuse, true, patience, report); !report.IsStopped())
        DeleteTold(path, patience, report);
    return report.Take();
}

template <class Name>
eTreeResultOf<Name> PurgeTelling(const Name& folder, const eTreeTask& task) {
    const Platform::eUnattended unattended;
    const Name path = folder.GetPath();
    eTreeReport<Name> report(task, path.str(), path.str());
    ePatience patience;
    if (NamesNothing(folder))
        report.NamesNothing(folder.str());
    else if (!CountTree(path, eNamedLink::Refuse, false, patience, report))
        report.FolderFailed(eTreeStep::Open, Platform::TakeRefusal());
    else if (!report.IsStopped())
        PurgePath(path, patience, report);
    return report.Take();
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
    DeleteFolder(eFileName(folder), recursive);
}
void PurgeEmpty(const eFileName& folder) {
    PurgeFolder<eSearch>(folder, "*.*");
}

eTreeResult CopyTree(const eFileName& from, const eFileName& to, const eTreeTask& task) {
    return CopyTelling(eFileName(from), eFileName(to), task);
}
eTreeResult DeleteTree(const eFileName& folder, const eTreeTask& task) {
    return DeleteTelling(eFileName(folder), task);
}
eTreeResult PurgeTree(const eFileName& folder, const eTreeTask& task) {
    return PurgeTelling(eFileName(folder), task);
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
    DeleteFolder(eFileNameW(folder), recursive);
}
void PurgeEmpty(const eFileNameW& folder) {
    PurgeFolder<eSearchW>(folder, L"*.*");
}

eTreeResultW CopyTree(const eFileNameW& from, const eFileNameW& to, const eTreeTask& task) {
    return CopyTelling(eFileNameW(from), eFileNameW(to), task);
}
eTreeResultW DeleteTree(const eFileNameW& folder, const eTreeTask& task) {
    return DeleteTelling(eFileNameW(folder), task);
}
eTreeResultW PurgeTree(const eFileNameW& folder, const eTreeTask& task) {
    return PurgeTelling(eFileNameW(folder), task);
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
