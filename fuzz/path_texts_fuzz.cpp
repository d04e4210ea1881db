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

void CheckExtended(const std::wstring& name, const std::wstring& current) {
    const std::wstring start = NameSteps::kExtendedStart.data();
    const std::wstring extended = ExtendedName(name, current);
    RequireEqual(ExtendedName(extended, current), extended, "the extended form of an extended name");
    if (extended != name) {
        Require(extended.starts_with(start), "an extended name begins otherwise");
        Require(extended.find(L'/') == extended.npos, "an extended name with a forward slash");
        const std::wstring_view parts = std::wstring_view(extended).substr(start.size());
        Require(parts.find(L"\\\\") == parts.npos && !parts.starts_with(L'\\'), "an extended name with an empty part");
        const bool dots =
            NameSteps::AnyPart(parts, [](std::wstring_view part) { return part == L"." || part == L".."; });
        Require(!dots || KindOfName(name) == eNameKind::Device || KindOfName(current) == eNameKind::Extended,
                "an extended name with dots: " + Shown(extended) + " of " + Shown(name) + " in " + Shown(current));
    }
    const std::wstring system = SystemName(name, current);
    Require(system == name || system == extended, "a system name of neither form");
    Require(system == extended || name.size() <= kPlainRoom || KindOfName(name) == eNameKind::Extended,
            "a plain name that is too long");
    const std::wstring pattern = SystemPattern(name, current);
    Require(pattern == name || pattern.starts_with(start) || ExtendedName(L".", current) == L".",
            "a system pattern of neither form");
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
