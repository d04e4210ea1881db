// SPDX-License-Identifier: BSL-1.0
#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "files/path_text.h"
#include "platform/pure/extended_name.h"

#include <qzl_io/system/path.h>

#include "require.h"
#include "script.h"
#include "target.h"

// The bytes are a path and a current folder: parts of paths, walks over them, and forms of system names.

namespace {

using namespace IO::System;

constexpr std::size_t kPartRoom = 255;

bool IsLead(char byte) {
    return static_cast<unsigned char>(byte) >= 0x81;
}
bool IsLead(wchar_t) {
    return false;
}

// The places of the characters that are single, those of which a lead byte is not one.
template <class Char>
std::vector<bool> Singles(const std::basic_string<Char>& path) {
    std::vector<bool> singles(path.size(), true);
    for (std::size_t at = 0; at < path.size(); ++at)
        if (IsLead(path[at])) {
            singles[at] = false;
            if (++at < path.size())
                singles[at] = false;
        }
    return singles;
}

template <class Char>
void CheckParts(const std::basic_string<Char>& path) {
    using eText = std::basic_string<Char>;
    const bool drive = path.size() > 1 && path[1] == Char(':');
    const eText rest = drive ? path.substr(2) : path;
    const std::vector<bool> singles = Singles(rest);
    std::size_t name = 0, extension = rest.size();
    for (std::size_t at = 0; at < rest.size(); ++at)
        if (singles[at] && (rest[at] == Char('/') || rest[at] == Char('\\')))
            name = at + 1;
    for (std::size_t at = name; at < rest.size(); ++at)
        if (singles[at] && rest[at] == Char('.'))
            extension = at;
    const ePathParts<Char> parts(path, [](Char c) { return IsLead(c); });
    RequireEqual(eText(parts.drive), path.substr(0, drive ? 2 : 0), "the drive");
    RequireEqual(eText(parts.dir), rest.substr(0, name), "the folder");
    RequireEqual(eText(parts.name), rest.substr(name, extension - name), "the name");
    RequireEqual(eText(parts.ext), rest.substr(extension), "the extension");
}

void CheckSplit(const std::string& path) {
    std::string drive = "d", dir = "f", name = "n", ext = "e";
    RequireEqual(Path::SplitPath(path, &drive, &dir, &name, &ext), path, "the path that was split");
    const std::string joined = drive + dir + name + ext;
    if (path.empty())
        RequireEqual(joined, std::string("dfne"), "the parts of an empty path");
    else
        Require(joined == path || (joined.empty() && path.size() > kPartRoom), "the parts of " + Shown(path));
}

template <class Char>
void CheckWalk(const std::basic_string<Char>& folder, eNameRoot root) {
    const std::size_t first = FirstPart(std::basic_string_view<Char>(folder), root);
    std::size_t last = 0, calls = 0;
    const bool done = MakeParts(folder, std::min(first, folder.size()), [&](const std::basic_string<Char>& part) {
        Require(folder.starts_with(part) && part.size() >= last, "a part that is no beginning of the folder");
        Require(part.size() == folder.size() || folder[part.size()] == Char('/'), "a part that ends within a name");
        last = part.size();
        ++calls;
        return true;
    });
    Require(done && last == folder.size(), "the walk does not end with the folder");
    const auto slashes = static_cast<std::size_t>(std::count(folder.begin(), folder.end(), Char('/')));
    Require(calls <= slashes + 1, "the walk has too many parts");
}

template <class Char>
void CheckFolder(const std::basic_string<Char>& executable) {
    const std::basic_string<Char> folder = FolderOf(executable);
    Require(folder.size() <= 2 + kPartRoom && folder.find(Char('\\')) == folder.npos, "the folder of an executable");
    const std::basic_string<Char> plain = PlainName(executable);
    Require(plain.starts_with(folder), "the folder begins the name of its executable");
    Require(plain.find(Char('\\')) == plain.npos && plain.size() <= executable.size(), "a plain name");
}

bool IsSlashAt(const std::wstring& name, std::size_t at) {
    return at < name.size() && (name[at] == L'/' || name[at] == L'\\');
}

// The name below a root that only extended names and devices have.
bool IsBelowDevice(const std::wstring& name) {
    return IsSlashAt(name, 0) && IsSlashAt(name, 1) && IsSlashAt(name, 3) && (name[2] == L'?' || name[2] == L'.');
}

bool IsOnDrive(const std::wstring& name) {
    return name.size() > 1 && name[1] == L':' && !IsSlashAt(name, 0);
}

bool IsAbsoluteName(const std::wstring& name) {
    return (IsSlashAt(name, 0) && IsSlashAt(name, 1)) || (IsOnDrive(name) && IsSlashAt(name, 2));
}

// The components of an absolute name. The first `*root` of them are never removed.
std::vector<std::wstring> PlainComponents(std::wstring name, std::size_t* root) {
    bool share = IsSlashAt(name, 0);
    if (IsBelowDevice(name)) {
        name.erase(0, 4);
        share = name.starts_with(L"UNC") && IsSlashAt(name, 3);
        name.erase(0, share ? 3 : 0);
    }
    *root = share ? 2 : 1;
    std::vector<std::wstring> components(1);
    for (std::size_t at = 0; at < name.size(); ++at)
        if (IsSlashAt(name, at))
            components.emplace_back();
        else
            components.back() += name[at];
    return components;
}

std::wstring PlainlyExtended(const std::wstring& name, const std::wstring& current) {
    const bool absolute = IsAbsoluteName(name);
    if (name.empty() || name.starts_with(L"\\\\?\\") || (!absolute && !IsAbsoluteName(current)))
        return name;
    std::size_t root = 0;
    std::vector<std::wstring> all = PlainComponents(absolute ? name : current, &root);
    std::vector<std::wstring> kept;
    const auto keep = [&](const std::vector<std::wstring>& components) {
        for (const std::wstring& component : components)
            if (component == L"..")
                kept.resize(kept.size() > root ? kept.size() - 1 : kept.size());
            else if (!component.empty() && component != L".")
                kept.push_back(component);
    };
    keep(all);
    if (!absolute) {
        const bool rooted = IsSlashAt(name, 0);
        kept.resize(rooted ? std::min(kept.size(), root) : kept.size());
        std::size_t none = 0;
        keep(PlainComponents(L'.' + std::wstring(1, L'/') + (!rooted && IsOnDrive(name) ? name.substr(2) : name),
                             &none));
    }
    if (kept.size() < root)
        return name;
    std::wstring extended = root == 2 ? L"\\\\?\\UNC" : L"\\\\?";
    for (const std::wstring& component : kept)
        extended += L'\\' + component;
    const bool driveRoot = kept.size() == 1 && kept.front().ends_with(L':');
    return driveRoot || IsSlashAt(name, name.size() - 1) ? extended + L'\\' : extended;
}

void CheckExtended(const std::wstring& name, const std::wstring& current) {
    const std::wstring start = NameSteps::kExtendedStart.data();
    const std::wstring extended = ExtendedName(name, current);
    RequireEqual(extended, PlainlyExtended(name, current), "the extended form");
    RequireEqual(ExtendedName(extended, current), extended, "the extended form of an extended name");
    const std::wstring system = SystemName(name, current);
    Require(system == name || system == extended, "a system name of neither form");
    Require(system == extended || name.size() <= kPlainRoom || KindOfName(name) == eNameKind::Extended,
            "a plain name that is too long");
    const std::wstring pattern = SystemPattern(name, current);
    Require(pattern == name || pattern.starts_with(start) || ExtendedName(L".", current) == L".",
            "a system pattern of neither form: " + Shown(pattern) + " for " + Shown(name) + " in " + Shown(current));
}

template <class Char>
void CheckAll(const std::basic_string<Char>& path) {
    CheckParts(path);
    CheckFolder(path);
    CheckWalk(path, eNameRoot::Slash);
    const std::size_t colon = path.find(Char(':'));
    if (colon == path.npos || colon + 2 <= path.size())
        CheckWalk(path, eNameRoot::Drive);
}

} // namespace

void Check(std::string_view input) {
    eScript script(input);
    const std::string_view current = script.Text();
    const std::string path(script.Rest());
    CheckAll(path);
    CheckAll(WideText(path));
    CheckSplit(path);
    CheckExtended(WideText(path), WideText(current));
}

void Work(std::string_view input) {
    const std::string path(input);
    const std::wstring wide = WideText(input);
    const ePathParts<char> parts(path, [](char c) { return IsLead(c); });
    FolderOf(path);
    ExtendedName(wide, L"C:\\work");
    SystemPattern(wide, L"C:\\work");
    Path::SplitPath(path, nullptr, nullptr, nullptr, nullptr);
}
