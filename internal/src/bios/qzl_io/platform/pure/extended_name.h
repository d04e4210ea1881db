// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

// Names of the system with drives, as plain texts.
//
// The plain form of a name has limits there: functions have room for a fixed number of characters, and the system
// strips dots and blanks from the end of a component, so that "a./b" means "a/b". The extended form,
// "\\?\C:\folder\name" or "\\?\UNC\server\share\name", has none of these limits: it is absolute and taken literally.
//
// A name that is not absolute is relative to `current`, an absolute name: the current folder or, for "c:x", the current
// folder of the drive. For an absolute name `current` is not used.

namespace IO::System {

// The length in characters up to which an absolute name may be in its plain form. The limits of the functions differ;
// the strictest one is for creating folders.
inline constexpr std::size_t kPlainRoom = 247;

enum class eNameKind {
    Extended, // "\\?\C:\x" with exactly these slashes
    Device,   // "//?/x", "//./x"
    Share,    // "//server/share/x"
    Drive,    // "c:/x"
    OnDrive,  // "c:x"
    Rooted,   // "/x": on the drive or share of the current folder
    Relative, // "x", and the empty name
};

namespace NameSteps {

inline constexpr std::wstring_view kSlashes = L"\\/";
inline constexpr std::wstring_view kExtendedStart = L"\\\\?\\";
inline constexpr std::wstring_view kExtendedShareStart = L"\\\\?\\UNC\\";

constexpr bool IsSlashAt(std::wstring_view name, std::size_t at) {
    return at < name.size() && kSlashes.find(name[at]) != std::wstring_view::npos;
}

constexpr bool EndsInSlash(std::wstring_view name) {
    return IsSlashAt(name, name.size() - 1);
}

// Calls `visit` with each component from left to right until it returns true, and returns whether it did.
template <class Visit>
constexpr bool AnyPart(std::wstring_view name, Visit visit) {
    for (std::size_t at = 0; at < name.size();) {
        const std::wstring_view part = name.substr(at, name.find_first_of(kSlashes, at) - at);
        if (!part.empty() && visit(part))
            return true;
        at += part.size() + 1;
    }
    return false;
}

// Whether the plain form would change a component.
constexpr bool IsOdd(std::wstring_view part) {
    return part != L"." && part != L".." && (part.ends_with(L'.') || part.ends_with(L' '));
}

} // namespace NameSteps

constexpr eNameKind KindOfName(std::wstring_view name) {
    using NameSteps::IsSlashAt;
    if (name.starts_with(NameSteps::kExtendedStart))
        return eNameKind::Extended;
    if (IsSlashAt(name, 0) && IsSlashAt(name, 1))
        return IsSlashAt(name, 3) && (name[2] == L'?' || name[2] == L'.') ? eNameKind::Device : eNameKind::Share;
    if (IsSlashAt(name, 0))
        return eNameKind::Rooted;
    if (name.size() < 2 || name[1] != L':')
        return eNameKind::Relative;
    return IsSlashAt(name, 2) ? eNameKind::Drive : eNameKind::OnDrive;
}

constexpr bool IsAbsolute(eNameKind kind) {
    return kind != eNameKind::OnDrive && kind != eNameKind::Rooted && kind != eNameKind::Relative;
}

namespace NameSteps {

// The components of an absolute name, the first `root` of which are its drive, share or device. "." is left out, and
// ".." removes the component before it, unless that belongs to the root.
class eNameParts {
public:
    explicit eNameParts(std::wstring_view absolute) {
        const eNameKind kind = KindOfName(absolute);
        bool isShare = kind == eNameKind::Share;
        if (kind == eNameKind::Extended || kind == eNameKind::Device) {
            absolute.remove_prefix(kExtendedStart.size());
            isShare = absolute.starts_with(L"UNC") && IsSlashAt(absolute, 3);
            absolute.remove_prefix(isShare ? 3 : 0);
        }
        start = isShare ? kExtendedShareStart : kExtendedStart;
        root = isShare ? 2 : 1;
        Append(absolute);
    }

    void Append(std::wstring_view relative) {
        AnyPart(relative, [this](std::wstring_view part) {
            if (part != L"." && part != L"..")
                parts.push_back(part);
            else if (part == L".." && parts.size() > root)
                parts.pop_back();
            return false;
        });
    }

    void KeepRoot() { parts.resize(std::min(parts.size(), root)); }

    bool HasRoot() const { return parts.size() >= root; }

    // The root of a drive always ends in a slash.
    std::wstring Extended(bool endsInSlash) const {
        std::wstring name(start);
        for (const std::wstring_view part : parts)
            (name += part) += kSlashes[0];
        if (!endsInSlash && !(parts.size() == 1 && parts.front().ends_with(L':')))
            name.pop_back();
        return name;
    }

private:
    std::wstring_view start;
    std::size_t root;
    std::vector<std::wstring_view> parts;
};

// Whether the plain form keeps a name whose part `literal` is taken literally.
constexpr bool IsPlainEnough(std::wstring_view name, std::wstring_view literal, std::wstring_view current) {
    const eNameKind kind = KindOfName(name);
    if (kind == eNameKind::Extended || name.empty())
        return true;
    const std::size_t length = name.size() + (IsAbsolute(kind) ? 0 : current.size() + 1);
    return length <= kPlainRoom && !AnyPart(literal, IsOdd) && (IsAbsolute(kind) || !AnyPart(current, IsOdd));
}

// The start of the mask in a pattern.
constexpr std::size_t MaskStart(std::wstring_view pattern) {
    const std::size_t slash = pattern.find_last_of(kSlashes);
    if (slash != std::wstring_view::npos)
        return slash + 1;
    return KindOfName(pattern) == eNameKind::OnDrive ? 2 : 0;
}

// A mask in the form in which it is compared if dots and blanks at its end are not stripped. A final "*." means any
// characters but the last dot, for which the system has a special character. If "*.*" remains, it means every name.
inline std::wstring ExtendedMask(std::wstring_view mask) {
    std::wstring extended(mask.substr(0, mask.find_last_not_of(L". ") + 1));
    if (mask.ends_with(L'.') && extended.ends_with(L'*') && extended != L"*.*")
        extended.back() = L'<';
    return extended;
}

} // namespace NameSteps

// The extended form of a name. "." and ".." are resolved; a slash at the end stays. Names that mean nothing ("",
// "//server") and names in extended form are unchanged.
inline std::wstring ExtendedName(std::wstring_view name, std::wstring_view current) {
    const eNameKind kind = KindOfName(name);
    const std::wstring_view absolute = IsAbsolute(kind) ? name : current;
    if (name.empty() || kind == eNameKind::Extended || !IsAbsolute(KindOfName(absolute)))
        return std::wstring(name);
    NameSteps::eNameParts parts(absolute);
    if (kind == eNameKind::Rooted)
        parts.KeepRoot();
    if (!IsAbsolute(kind))
        parts.Append(kind == eNameKind::OnDrive ? name.substr(2) : name);
    return parts.HasRoot() ? parts.Extended(NameSteps::EndsInSlash(name)) : std::wstring(name);
}

// The name unchanged if the plain form keeps it, otherwise its extended form.
inline std::wstring SystemName(std::wstring_view name, std::wstring_view current) {
    return NameSteps::IsPlainEnough(name, name, current) ? std::wstring(name) : ExtendedName(name, current);
}

// Whether the name's last component is that of a stream within a file, as in "c:/file:stream".
constexpr bool NamesStream(std::wstring_view name) {
    return name.find(L':', NameSteps::MaskStart(name)) != std::wstring_view::npos;
}

// SystemName for the pattern of a search, whose last component may contain wild cards. The mask means the same in both
// forms.
inline std::wstring SystemPattern(std::wstring_view pattern, std::wstring_view current) {
    const std::size_t cut = NameSteps::MaskStart(pattern);
    const std::wstring_view folder = pattern.substr(0, cut);
    const std::wstring_view mask = pattern.substr(cut);
    if (mask.find_first_of(L"*?") == std::wstring_view::npos)
        return SystemName(pattern, current);
    if (NameSteps::IsPlainEnough(pattern, folder, current))
        return std::wstring(pattern);
    std::wstring extended = ExtendedName(folder.empty() ? L"." : folder, current);
    if (KindOfName(extended) != eNameKind::Extended)
        return std::wstring(pattern);
    if (!NameSteps::EndsInSlash(extended))
        extended += NameSteps::kSlashes[0];
    return extended += NameSteps::ExtendedMask(mask);
}

// The plain form of a full name from the system: without the prefix of the extended form ("\\?\C:\x",
// "\\?\UNC\server\share\x") and with forward slashes.
template <class Char>
std::basic_string<Char> PlainName(std::basic_string<Char> name) {
    constexpr Char kExtended[] = {Char('\\'), Char('\\'), Char('?'), Char('\\'), Char()};
    constexpr Char kShare[] = {Char('U'), Char('N'), Char('C'), Char('\\'), Char()};
    if (name.starts_with(kExtended)) {
        name.erase(0, std::size(kExtended) - 1);
        if (name.starts_with(kShare))
            name.replace(0, std::size(kShare) - 2, 1, Char('\\'));
    }
    std::replace(name.begin(), name.end(), Char('\\'), Char('/'));
    return name;
}

} // namespace IO::System
