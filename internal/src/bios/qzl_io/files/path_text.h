// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "platform/pure/extended_name.h"

// The decisions of path operations that depend on texts alone.

namespace IO::System {

// Calls `visit` with the position of every character except double-byte ones, which are never delimiters, even if their
// second bytes look like one.
template <class Char, class IsLead, class Visit>
constexpr void EachSingle(std::basic_string_view<Char> text, IsLead isLead, Visit visit) {
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (isLead(text[at]))
            ++at;
        else
            visit(at);
    }
}

template <class Char>
constexpr bool IsSlash(Char letter) {
    return letter == Char('/') || letter == Char('\\');
}

// The parts of a path; joined in this order, they are the path again. `isLead` recognises the first bytes of
// double-byte characters.
template <class Char>
struct ePathParts {
    static constexpr std::size_t kDriveRoom = 2; // in characters, like the others
    static constexpr std::size_t kPartRoom = 255;

    std::basic_string_view<Char> drive; // "c:", any character before the colon
    std::basic_string_view<Char> dir;   // up to and including the last slash of either kind
    std::basic_string_view<Char> name;
    std::basic_string_view<Char> ext; // from the last dot after that slash

    template <class IsLead>
    constexpr ePathParts(std::basic_string_view<Char> path, IsLead isLead) {
        const std::size_t driveEnd = path.size() >= kDriveRoom && path[1] == Char(':') ? kDriveRoom : 0;
        drive = path.substr(0, driveEnd);
        path.remove_prefix(driveEnd);
        std::size_t dirEnd = 0;
        std::size_t nameEnd = path.npos;
        EachSingle(path, isLead, [&](std::size_t at) {
            if (IsSlash(path[at]))
                dirEnd = at + 1;
            if (IsSlash(path[at]) || path[at] == Char('.'))
                nameEnd = IsSlash(path[at]) ? path.npos : at;
        });
        dir = path.substr(0, dirEnd);
        name = path.substr(dirEnd, nameEnd - dirEnd);
        ext = path.substr(dirEnd + name.size());
    }

    constexpr bool FitRoom() const {
        return dir.size() <= kPartRoom && name.size() <= kPartRoom && ext.size() <= kPartRoom;
    }
};

// How a system's names begin: with a drive letter, or with a "/".
enum class eNameRoot { Drive, Slash };

// The place where the walk over the parts of a folder's name begins, so that the first part is not the root.
//
// | name     | with drives | with slashes |
// |----------|-------------|--------------|
// | "c:/a/b" | 3           | 0            |
// | "a/b"    | 0           | 0            |
// | "/a/b"   | 0           | 1            |
template <class Char>
constexpr std::size_t FirstPart(std::basic_string_view<Char> folder, eNameRoot root) {
    if (root == eNameRoot::Slash)
        return folder.starts_with(Char('/')) ? 1 : 0;
    const std::size_t colon = folder.find(Char(':'));
    return colon == folder.npos ? 0 : colon + 2;
}

// Calls `makeFolder` with every prefix of the name that ends before a "/", from `first` on, and finally with the whole
// name. Stops and returns false when a call returns false.
template <class Char, class MakeFolder>
bool MakeParts(const std::basic_string<Char>& folder, std::size_t first, MakeFolder makeFolder) {
    for (std::size_t at = first;;) {
        const std::size_t slash = folder.find(Char('/'), at);
        if (!makeFolder(folder.substr(0, slash)))
            return false;
        if (slash == folder.npos)
            return true;
        at = slash + 1;
    }
}

// The folder of an executable's full name, with forward slashes and a trailing "/". Empty if the name has more than 519
// characters or the folder more than 255.
template <class Char>
std::basic_string<Char> FolderOf(const std::basic_string<Char>& fullName) {
    constexpr std::size_t kNameRoom = 519;
    const std::basic_string<Char> executable = PlainName(fullName);
    const ePathParts<Char> parts(executable, [](Char) { return false; });
    if (executable.size() > kNameRoom || parts.dir.size() > parts.kPartRoom)
        return {};
    return executable.substr(0, parts.drive.size() + parts.dir.size());
}

} // namespace IO::System
